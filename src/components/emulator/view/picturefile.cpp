#include "picturefile.h"

#include <QImageReader>

namespace kestrune {

QImage ReadPicture(const QString& path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.width() > LargestPicture || size.height() > LargestPicture)
        return {};
    return reader.read();
}

} // namespace kestrune
