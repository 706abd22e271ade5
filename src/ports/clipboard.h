#pragma once

// Text that goes between programs. The primary selection is what a platform pastes with the middle button;
// where there is none, its text is empty and setting it does nothing.

#include <QString>

namespace kestrune {

class Clipboard
{
public:
    enum class Kind
    {
        Standard,
        Primary
    };

    virtual ~Clipboard() = default;
    virtual bool HasText(Kind kind) const = 0;
    virtual QString Text(Kind kind) const = 0;
    virtual void SetText(Kind kind, const QString& text) = 0;
};

} // namespace kestrune
