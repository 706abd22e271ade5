#pragma once

// Links in a terminal: those that the host gave (OSC 8) and addresses that stand in the text. What may be opened
// is a short list of schemes, and only the user opens anything.

#include <emulator/engine/terminal.h>

#include <QString>

#include <optional>
#include <vector>

namespace kestrune {

struct LinkSpan // columns of one row, first to one past the last
{
    int row = 0;
    int first = 0;
    int last = 0;
    bool operator==(const LinkSpan&) const = default;
};

struct Link
{
    QString target; // as it would be opened: ASCII alone, so that nothing in it is hidden or looks like another
    std::vector<LinkSpan> spans;
    bool operator==(const Link&) const = default;
};

// Nothing: there is no link, or one that is never opened.
std::optional<Link> LinkAt(const emu::Terminal& screen, int row, int column);

enum class LinkUse
{
    Open,
    Ask, // the user is shown what it is first
    Never
};
LinkUse UseOf(const QString& target);

} // namespace kestrune
