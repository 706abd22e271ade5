#include "strfunc.h"

namespace kestrune {

QString Field(const QString& text, const QString& delimiter, qsizetype n)
{
    if (n <= 0 || delimiter.isEmpty())
        return n == 0 || n == 1 ? text : QString();
    qsizetype start = 0;
    for (; n > 1; --n) {
        const auto end = text.indexOf(delimiter, start);
        if (end < 0)
            return {};
        start = end + delimiter.size();
    }
    const auto end = text.indexOf(delimiter, start);
    return text.mid(start, end < 0 ? -1 : end - start);
}

qsizetype DCount(const QString& text, const QString& delimiter)
{
    if (text.isEmpty())
        return 0;
    return delimiter.isEmpty() ? 1 : text.count(delimiter) + 1;
}

qsizetype FindNth(const QString& text, const QString& target, qsizetype n)
{
    if (n < 1 || target.isEmpty())
        return 0;
    qsizetype at = -target.size();
    for (; n > 0; --n) {
        at = text.indexOf(target, at + target.size());
        if (at < 0)
            return 0;
    }
    return at + 1;
}

// QString::replace collects the places first and moves the text once, so long lists cost no more than their length.
QString ChangeDelimiter(const QString& text, const QString& oldDelimiter, const QString& newDelimiter)
{
    return oldDelimiter.isEmpty() ? text : QString(text).replace(oldDelimiter, newDelimiter);
}

} // namespace kestrune
