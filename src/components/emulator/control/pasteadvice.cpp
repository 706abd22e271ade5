#include "pasteadvice.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace kestrune {

namespace {

constexpr qsizetype kPreviewLines = 8;
constexpr int kPreviewColumns = 72;

bool IsControl(QChar c)
{
    const char16_t code = c.unicode();
    return (code < 0x20 && code != u'\t' && code != u'\n' && code != u'\r') || (code >= 0x7F && code < 0xA0);
}

QChar PictureOf(QChar control) // U+2400 to U+2421 show C0 and DEL
{
    const char16_t code = control.unicode();
    if (code < 0x20)
        return char16_t(0x2400 + code);
    return code == 0x7F ? QChar(char16_t(0x2421)) : QChar(QChar::ReplacementCharacter);
}

QString Preview(const QString& text)
{
    QString cleaned = text.left(kPreviewLines * 1000);
    cleaned.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    for (QChar& c : cleaned)
        if (IsControl(c))
            c = PictureOf(c);
    QStringList lines = cleaned.split(u'\n').mid(0, kPreviewLines);
    for (QString& line : lines)
        if (line.size() > kPreviewColumns)
            line = line.left(kPreviewColumns - 1) + QChar(0x2026);
    return lines.join(u'\n');
}

} // namespace

QString PasteQuestion(const QString& text, bool asksAboutLines)
{
    const bool controls = std::any_of(text.begin(), text.end(), IsControl);
    qsizetype lineEnds = 0;
    for (qsizetype i = 0; i < text.size(); ++i)
        lineEnds += text[i] == u'\n' || (text[i] == u'\r' && (i + 1 == text.size() || text[i + 1] != u'\n'));
    if (!controls && (lineEnds == 0 || !asksAboutLines))
        return {};

    const bool endsInLineEnd = text.endsWith(u'\n') || text.endsWith(u'\r');
    const qsizetype lines = lineEnds + (endsInLineEnd ? 0 : 1);
    QString question = QCoreApplication::translate("Paste", "Paste this text to the host?");
    if (lines > 1)
        question = QCoreApplication::translate("Paste", "Paste %1 lines to the host?").arg(lines);
    else if (lineEnds == 1)
        question = QCoreApplication::translate("Paste", "Paste a line with its line end to the host?");
    if (controls)
        question += u'\n' + QCoreApplication::translate("Paste", "It has control characters; they are left out.");
    question += QStringLiteral("\n\n") + Preview(text);
    if (lines > kPreviewLines)
        question += u'\n' + QCoreApplication::translate("Paste", "... and %1 more").arg(lines - kPreviewLines);
    return question;
}

} // namespace kestrune
