#pragma once

// Text of whole files whose encoding has to be found out, as a component sees it.

#include <QByteArray>
#include <QString>

namespace kestrune {

class TextFiles
{
public:
    virtual ~TextFiles() = default;
    // Raises Failure with the number and the text for people when it cannot be read (53, 70, 75, 76).
    virtual QString ReadText(const QString& path) = 0;
    // Text as bytes of a file. encoding: 1 ANSI (what it lacks becomes "?"), 2 Unicode, 3 UTF-8.
    virtual QByteArray Encode(const QString& text, int encoding) = 0;
    virtual QByteArray Mark(int encoding) = 0; // what a new file of the encoding begins with; empty for ANSI
};

} // namespace kestrune
