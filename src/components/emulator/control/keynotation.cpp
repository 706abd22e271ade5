#include "keynotation.h"

namespace kestrune {

QString EncodeControls(const QString& text)
{
    QString encoded;
    encoded.reserve(text.size());
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (code < 0x20)
            (encoded += u'^') += QChar(char16_t(code + 0x40));
        else if (code == 0x7F)
            encoded += QStringLiteral("^?");
        else if (code >= 0x80 && code < 0xA0) // upper controls: the high bit over a lower one
            (encoded += QStringLiteral("\\^")) += QChar(char16_t(code - 0x80 + 0x40));
        else if (code == u'^' || code == u'\\')
            encoded += QString(2, c);
        else
            encoded += c;
    }
    return encoded;
}

namespace {

char16_t AfterCaret(char16_t code)
{
    if (code == u'?')
        return 0x7F;
    return code == u'^' ? u'^' : char16_t(code % 32);
}

// The three exceptions are those of the notation's makers: they name places in the upper half that have no
// lower control beside them.
char16_t AfterBackslashCaret(char16_t code)
{
    switch (code) {
    case u'<':
        return 220;
    case u'>':
        return 222;
    case u'?':
        return 255;
    default:
        return char16_t((code & 31) | 128);
    }
}

} // namespace

QString DecodeControls(const QString& text)
{
    QString decoded;
    decoded.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t code = text[i].unicode();
        if (code != u'^' && code != u'\\') {
            decoded += text[i];
            continue;
        }
        if (++i == text.size())
            break;
        const char16_t next = text[i].unicode();
        if (code == u'^')
            decoded += QChar(AfterCaret(next));
        else if (next == u'\\')
            decoded += u'\\';
        else if (next != u'^')
            decoded += QChar(char16_t(next | 128));
        else if (++i < text.size())
            decoded += QChar(AfterBackslashCaret(text[i].unicode()));
    }
    return decoded;
}

} // namespace kestrune
