#pragma once

// Text as bytes in a file: the encodings that the program's files come in, how one is recognised, and conversion
// both ways. "Ansi" is Windows-1252 wherever the program runs, so that files travel; its five unassigned bytes
// stand for the control characters of the same number.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>

namespace kestrune {

enum class TextEncoding
{
    Ansi,
    Utf8,     // without a byte-order mark
    Utf8Mark, // with one
    Utf16Le,
    Utf16LeMark,
    Utf16Be,
    Utf16BeMark
};

bool IsUtf16(TextEncoding encoding);
bool HasMark(TextEncoding encoding);
QByteArray MarkOf(TextEncoding encoding); // empty for those without

// By byte-order mark; without one by content. Plain ASCII is Ansi.
TextEncoding DetectEncoding(QByteArrayView content);

// The text of a whole file, its mark taken off. What is not valid becomes U+FFFD.
QString DecodeText(QByteArrayView content, TextEncoding encoding);
// With the mark in front. What the encoding lacks becomes "?"; ask CanEncode first where that would be a loss.
QByteArray EncodeText(QStringView text, TextEncoding encoding);
bool CanEncode(QStringView text, TextEncoding encoding);

} // namespace kestrune
