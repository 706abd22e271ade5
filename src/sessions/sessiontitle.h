#pragma once

// The text in the title of a session window.

#include <QString>

namespace kestrune {

struct TitleFacts
{
    QString caption;   // the user's own, may be empty
    QString fileTitle; // the file's name without folder and extension, may be empty
    bool server = false;
    int format = 4; // the application's TitleFormat
    QString id;
    int ordinal = 0; // among the sessions with the same file; 0: there is no other
};

QString SessionTitle(const TitleFacts& facts);

} // namespace kestrune
