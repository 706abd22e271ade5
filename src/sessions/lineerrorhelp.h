#pragma once

#include <QString>

namespace kestrune {

// What a user can do about an error of a line: advice by the number of its word. Empty for the word 0.
QString LineErrorHelp(quint32 word);

} // namespace kestrune
