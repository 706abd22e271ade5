#include "droppedtext.h"

#include <QDir>
#include <QStringList>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// POSIX 2.2: outside this list a character may mean something to the shell.
bool IsPlain(QChar c)
{
    static constexpr QStringView plain = u"_-./+,:@%=";
    return (c.unicode() < 0x80 && c.isLetterOrNumber()) || plain.contains(c);
}

QString Quoted(const QString& text)
{
    if (!text.isEmpty() && std::all_of(text.begin(), text.end(), IsPlain))
        return text;
    QString inside = text;
    return u'\'' + inside.replace(u"'"_s, u"'\\''"_s) + u'\'';
}

} // namespace

QString TextOfDroppedUrls(const QList<QUrl>& urls)
{
    QStringList words;
    for (const QUrl& url : urls)
        words += Quoted(url.isLocalFile() ? QDir::toNativeSeparators(url.toLocalFile())
                                          : QString::fromLatin1(url.toEncoded()));
    return words.join(u' ');
}

} // namespace kestrune
