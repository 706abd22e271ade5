#include "picturefile.h"

#include <QFileInfo>
#include <QImageReader>

namespace kestrune {

QImage ReadPicture(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return {}; // a pipe would be waited for
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.width() > LargestPicture || size.height() > LargestPicture)
        return {};
    return reader.read();
}

} // namespace kestrune
