#pragma once

// Names in tables are ASCII; text for people and files is not made this way.

#include <QString>

#include <string_view>

namespace kestrune {

inline QString LatinText(std::string_view text) { return QString::fromLatin1(text.data(), qsizetype(text.size())); }

} // namespace kestrune
