#pragma once

// Readable texts in failed expectations.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <ostream>

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
inline void PrintTo(const QByteArray& bytes, std::ostream* out)
{
    *out << '"' << bytes.left(200).toPercentEncoding(" =[]\r\n;\\/").toStdString() << '"';
}
QT_END_NAMESPACE
