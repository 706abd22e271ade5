#pragma once

// A piece of the screen that a program keeps and puts back: text with its looks, for GetBlock and SetBlock. Opaque to
// scripts: it has no members. Rows that it holds whole keep their size, too.

#include <dispatch/object.h>
#include <emulator/engine/terminal.h>

#include <string>
#include <vector>

namespace kestrune {

class ScreenBlock final : public Object
{
public:
    // from and to are on the screen, and both in the block.
    ScreenBlock(const emu::Terminal& screen, emu::Position from, emu::Position to);

    // Where it was taken from; what no longer fits on the screen is left out.
    void PutOn(emu::Terminal& screen) const;

    QString ClassName() const override { return QStringLiteral("ScreenBlock"); }
    std::optional<int> IndexOfArgument(MemberId, const QString&) const override { return std::nullopt; }
    Variant Invoke(MemberId member, quint8 kinds, const CallArguments& arguments) override; // it has no members

protected:
    std::optional<MemberId> FindName(const QString&) const override { return std::nullopt; }

private:
    struct Run // of one style in one row
    {
        emu::Position at;
        int cols = 0;
        emu::Style style;
        std::string link; // the style's number for it is good for one terminal alone
        std::string text; // UTF-8; empty: nothing was ever written there
    };
    struct WholeRow
    {
        int row = 0;
        emu::LineSize size{};
    };
    std::vector<WholeRow> rows_; // taken from edge to edge
    std::vector<Run> runs_;
};

} // namespace kestrune
