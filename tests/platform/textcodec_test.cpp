#include <fakes/print.h>
#include <platform/textcodec.h>

#include <gtest/gtest.h>

namespace kestrune {
namespace {

using namespace Qt::StringLiterals;

TEST(TextCodec, DetectsByMarkAndByContent)
{
    using E = TextEncoding;
    const QString mixed = u"Straße\r\nκόσμος 日本\r\n"_s;
    struct Case
    {
        const char* about;
        QByteArray content;
        TextEncoding encoding;
    };
    for (const auto& c : std::vector<Case>{
             {"empty", {}, E::Ansi},
             {"plain ASCII", "[a]\r\nb=1\r\n", E::Ansi},
             {"UTF-8 with mark", EncodeText(mixed, E::Utf8Mark), E::Utf8Mark},
             {"UTF-8 without", EncodeText(mixed, E::Utf8), E::Utf8},
             {"UTF-8 cut inside its last character", EncodeText(mixed, E::Utf8) + "\xE6\x97", E::Utf8},
             {"one byte that is no UTF-8", EncodeText(mixed, E::Utf8) + "\xFF\r\n", E::Ansi},
             {"overlong form", "a\xC0\xAF", E::Ansi},
             {"surrogate in UTF-8", "a\xED\xA0\x80", E::Ansi},
             {"legacy code page",
              "Stra\xDF"
              "e\r\n",
              E::Ansi},
             {"legacy code page with a NUL",
              QByteArray("Stra\xDF"
                         "e\0\r\n",
                         9),
              E::Ansi},
             {"ASCII with a NUL at an odd place", QByteArray("abc\0defg\r\n", 10), E::Ansi},
             {"UTF-16 with mark", EncodeText(mixed, E::Utf16LeMark), E::Utf16LeMark},
             {"UTF-16 big end first, with mark", EncodeText(mixed, E::Utf16BeMark), E::Utf16BeMark},
             {"UTF-16 without", EncodeText(mixed, E::Utf16Le), E::Utf16Le},
             {"UTF-16 without, big end first", EncodeText(mixed, E::Utf16Be), E::Utf16Be},
             {"UTF-16 without, hardly any Latin", EncodeText(u"日本語日本語日本語日本語\n"_s, E::Utf16Le), E::Utf16Le},
             {"UTF-16 without, pairs of surrogates", EncodeText(u"a 😀 b 😀 c\n"_s, E::Utf16Le), E::Utf16Le},
         })
        EXPECT_EQ(DetectEncoding(c.content), c.encoding) << c.about;
}

TEST(TextCodec, WhatIsWrittenIsReadBack)
{
    QString narrow;
    for (char16_t c = 1; c < 0x100; ++c)
        narrow += c < 0x80 || c >= 0xA0 ? QChar(c) : QChar();
    const QString wide = u"€ “x” 日本 😀 \uF8FC"_s;
    for (int i = 0; i <= int(TextEncoding::Utf16BeMark); ++i) {
        const auto encoding = TextEncoding(i);
        EXPECT_EQ(DecodeText(EncodeText(narrow, encoding), encoding), narrow) << i;
        if (CanEncode(wide, encoding)) {
            EXPECT_EQ(DecodeText(EncodeText(wide, encoding), encoding), wide) << i;
        }
    }
    QByteArray all(256, '\0');
    for (int i = 0; i < 256; ++i)
        all[i] = char(i);
    EXPECT_EQ(EncodeText(DecodeText(all, TextEncoding::Ansi), TextEncoding::Ansi), all);
    EXPECT_TRUE(CanEncode(u"€"_s, TextEncoding::Ansi));
    EXPECT_FALSE(CanEncode(wide, TextEncoding::Ansi));
    EXPECT_FALSE(CanEncode(QString(QChar(0xD800)), TextEncoding::Utf8));
}

} // namespace
} // namespace kestrune
