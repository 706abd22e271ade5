#include "textcodec.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include <algorithm>
#include <array>
#include <optional>

namespace kestrune {

namespace {

// Windows-1252 from 0x80 to 0x9F (Unicode's mapping table CP1252); unassigned bytes keep their number.
constexpr std::array<char16_t, 32> kAnsiHigh = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

struct EncodingRow
{
    TextEncoding encoding;
    QByteArrayView mark;
    std::optional<QStringConverter::Encoding> converter; // nothing: Windows-1252
    TextEncoding withMark;
};

constexpr std::array kEncodings = {
    EncodingRow{TextEncoding::Ansi, {}, {}, TextEncoding::Ansi},
    EncodingRow{TextEncoding::Utf8, {}, QStringConverter::Utf8, TextEncoding::Utf8Mark},
    EncodingRow{TextEncoding::Utf8Mark, "\xEF\xBB\xBF", QStringConverter::Utf8, TextEncoding::Utf8Mark},
    EncodingRow{TextEncoding::Utf16Le, {}, QStringConverter::Utf16LE, TextEncoding::Utf16LeMark},
    EncodingRow{TextEncoding::Utf16LeMark, "\xFF\xFE", QStringConverter::Utf16LE, TextEncoding::Utf16LeMark},
    EncodingRow{TextEncoding::Utf16Be, {}, QStringConverter::Utf16BE, TextEncoding::Utf16BeMark},
    EncodingRow{TextEncoding::Utf16BeMark, "\xFE\xFF", QStringConverter::Utf16BE, TextEncoding::Utf16BeMark},
};

const EncodingRow& RowOf(TextEncoding encoding)
{
    return *std::ranges::find(kEncodings, encoding, &EncodingRow::encoding);
}

std::optional<char> AnsiByte(char16_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return char(c);
    const auto at = std::ranges::find(kAnsiHigh, c);
    if (at == kAnsiHigh.end())
        return std::nullopt;
    return char(0x80 + (at - kAnsiHigh.begin()));
}

// Length of the well-formed UTF-8 sequence at `at` (RFC 3629), 0 when it is not one, -1 when the text ends in it.
int Utf8Sequence(QByteArrayView bytes, qsizetype at)
{
    const auto lead = uchar(bytes[at]);
    const int length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    for (int i = 1; i < length; ++i) {
        if (at + i >= bytes.size())
            return -1;
        const auto next = uchar(bytes[at + i]);
        // no overlong forms, no surrogates, nothing above U+10FFFF
        const uchar low = i > 1 ? 0x80 : lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
        const uchar high = i > 1 ? 0xBF : lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
        if (next < low || next > high)
            return 0;
    }
    return length;
}

// Sequences of more than one byte in well-formed UTF-8; -1 when it is not that. One cut off by the end of the file
// does no harm when others before it were whole.
qsizetype LongSequences(QByteArrayView bytes)
{
    qsizetype count = 0;
    for (qsizetype at = 0; at < bytes.size();) {
        const int length = Utf8Sequence(bytes, at);
        if (length < 0 && count > 0)
            return count;
        if (length <= 0)
            return -1;
        count += length > 1 ? 1 : 0;
        at += length;
    }
    return count;
}

// UTF-16 without a mark gives itself away by the zero halves of its line ends, blanks and Latin letters. They are
// all on one side, the units are well-formed text, and there are many of them or the bytes make no sense as
// 8-bit text.
bool LooksLikeUtf16(QByteArrayView bytes, bool littleEndian)
{
    if (bytes.size() % 2 != 0)
        return false;
    qsizetype latin = 0;
    bool highBefore = false;
    for (qsizetype at = 0; at < bytes.size(); at += 2) {
        const auto high = uchar(bytes[at + (littleEndian ? 1 : 0)]);
        const auto low = uchar(bytes[at + (littleEndian ? 0 : 1)]);
        const bool isLow = high >= 0xDC && high <= 0xDF;
        if (low == 0 && high < 0x20) // U+0000, or a Latin letter seen from the wrong side
            return false;
        if (isLow != highBefore)
            return false;
        highBefore = high >= 0xD8 && high <= 0xDB;
        latin += high == 0 ? 1 : 0;
    }
    const qsizetype units = bytes.size() / 2;
    return !highBefore && latin > 0 && (latin * 3 >= units || LongSequences(bytes) < 0);
}

bool IsAscii(QByteArrayView bytes)
{
    return std::ranges::all_of(bytes, [](char c) { return c > 0; });
}

} // namespace

bool IsUtf16(TextEncoding encoding) { return encoding >= TextEncoding::Utf16Le; }

bool HasMark(TextEncoding encoding) { return !RowOf(encoding).mark.isEmpty(); }

QByteArray MarkOf(TextEncoding encoding) { return RowOf(encoding).mark.toByteArray(); }

TextEncoding DetectEncoding(QByteArrayView content)
{
    for (const auto& row : kEncodings)
        if (!row.mark.isEmpty() && content.startsWith(row.mark))
            return row.encoding;
    if (IsAscii(content))
        return TextEncoding::Ansi;
    if (content.contains('\0')) {
        if (LooksLikeUtf16(content, true))
            return TextEncoding::Utf16Le;
        if (LooksLikeUtf16(content, false))
            return TextEncoding::Utf16Be;
    }
    return LongSequences(content) > 0 ? TextEncoding::Utf8 : TextEncoding::Ansi;
}

QString DecodeText(QByteArrayView content, TextEncoding encoding)
{
    const auto& row = RowOf(encoding);
    if (!row.mark.isEmpty() && content.startsWith(row.mark))
        content = content.sliced(row.mark.size());
    if (row.converter) {
        using Flag = QStringConverter::Flag;
        QStringDecoder decoder(*row.converter, Flag::Stateless | Flag::ConvertInitialBom);
        return decoder.decode(content);
    }
    QString text(content.size(), Qt::Uninitialized);
    std::ranges::transform(content, text.begin(), [](char c) {
        const auto byte = uchar(c);
        return QChar(byte >= 0x80 && byte < 0xA0 ? kAnsiHigh[byte - 0x80] : char16_t(byte));
    });
    return text;
}

QByteArray EncodeText(QStringView text, TextEncoding encoding)
{
    const auto& row = RowOf(encoding);
    QByteArray content = row.mark.toByteArray();
    if (row.converter) {
        QStringEncoder encoder(*row.converter, QStringConverter::Flag::Stateless);
        return content + QByteArray(encoder.encode(text));
    }
    content.reserve(text.size());
    for (const QChar c : text)
        content += AnsiByte(c.unicode()).value_or('?');
    return content;
}

bool CanEncode(QStringView text, TextEncoding encoding)
{
    if (IsUtf16(encoding))
        return true;
    if (encoding != TextEncoding::Ansi)
        return text.isValidUtf16();
    return std::ranges::all_of(text, [](QChar c) { return AnsiByte(c.unicode()).has_value(); });
}

} // namespace kestrune
