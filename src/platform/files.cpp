#include "files.h"

namespace kestrune {

void FileSystem::Replace(const QString& path, const QByteArray& content)
{
    Edit(path, [&](const std::optional<QByteArray>&) { return std::optional(content); });
}

} // namespace kestrune
