#pragma once

// Text of whole files whose encoding has to be found out, as a component sees it.

#include <QString>

namespace kestrune {

class TextFiles
{
public:
    virtual ~TextFiles() = default;
    // Raises Failure with the number and the text for people when it cannot be read (53, 70, 75, 76).
    virtual QString ReadText(const QString& path) = 0;
};

} // namespace kestrune
