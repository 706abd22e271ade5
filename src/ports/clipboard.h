#pragma once

// Text that goes between programs. The primary selection is what a platform pastes with the middle button;
// where there is none, its text is empty and setting it does nothing.

#include <QByteArray>
#include <QString>

namespace kestrune {

// The same in up to three forms; a program that takes it chooses the richest that it knows.
struct ClipboardText
{
    QString text;
    QString html;   // a piece of a page; empty: there is none
    QByteArray rtf; // likewise
};

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
    virtual void Put(Kind kind, const ClipboardText& content) = 0;
    void SetText(Kind kind, const QString& text) { Put(kind, {text, {}, {}}); }
};

} // namespace kestrune
