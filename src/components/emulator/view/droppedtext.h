#pragma once

// What a drop on a terminal types.

#include <QList>
#include <QString>
#include <QUrl>

namespace kestrune {

// Native paths, blanks between them, each quoted for a POSIX shell where it needs to be. What is no local file
// stands as its address.
QString TextOfDroppedUrls(const QList<QUrl>& urls);

} // namespace kestrune
