#include <support/log.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// A fault that repeats for days must not fill the disk: past this size the log starts afresh, one old one is kept.
constexpr qint64 kLogLimit = 1 << 20;

} // namespace

QString LogFileName()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/kestrune/kestrune.log"_s;
}

void WriteLog(const QString& text)
{
    const QString path = LogFileName();
    QDir().mkpath(QFileInfo(path).path());
    if (QFileInfo(path).size() > kLogLimit) {
        QFile::remove(path + u".old"_s);
        QFile::rename(path, path + u".old"_s);
    }
    QFile file(path);
    if (!file.open(QIODevice::Append))
        return;
    QString entry = QDateTime::currentDateTime().toString(Qt::ISODate) + u' ' + text;
    if (!entry.endsWith(u'\n'))
        entry += u"\r\n"_s;
    file.write(entry.toUtf8());
}

} // namespace kestrune
