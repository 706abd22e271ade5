#pragma once

// Lets the user say where the telephone stands, which decides how numbers are dialled.

#include <QString>

#include <functional>

namespace kestrune {

// As it is kept in dialing.ini.
struct DialingPlace
{
    QString countryCode; // digits; empty: not known, numbers are dialled as they are written
    QString areaCode;
    QString outsideLine;             // dialled before every number
    QString outsideLineLongDistance; // before those outside the area; empty: as outsideLine
    QString longDistance;            // before the area code
    QString international;           // before the country code
    bool dialAreaCode = false;       // within the area, too
    bool operator==(const DialingPlace&) const = default;
};

class DialingForm
{
public:
    struct Request
    {
        quintptr window = 0; // that it belongs to; 0: the main window
        DialingPlace place;
        QString dialCharacters;                             // all that a modem dials
        std::function<QString(const DialingPlace&)> sample; // what is dialled from there, a few lines
        std::function<QString(const DialingPlace&)> save;   // empty: done; else why not, in the user's words
    };

    virtual ~DialingForm() = default;
    // Modal. False: there is no user to show it to.
    virtual bool Show(const Request& request) = 0;
};

} // namespace kestrune
