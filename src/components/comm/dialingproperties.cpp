#include "dialingproperties.h"

#include <comm/dialing.h>
#include <comm/modemcatalog.h>
#include <dispatch/failure.h>

#include <QCoreApplication>

#include <array>

namespace kestrune::comm {

namespace {

struct DialingText
{
    Q_DECLARE_TR_FUNCTIONS(DialingProperties)
};

struct PlacePart
{
    QString DialingPlace::*text;
    std::string DialLocation::*value;
};
constexpr std::array PlaceParts{
    PlacePart{&DialingPlace::countryCode, &DialLocation::country},
    PlacePart{&DialingPlace::areaCode, &DialLocation::area},
    PlacePart{&DialingPlace::outsideLine, &DialLocation::outsideLine},
    PlacePart{&DialingPlace::outsideLineLongDistance, &DialLocation::outsideLineFar},
    PlacePart{&DialingPlace::longDistance, &DialLocation::longDistance},
    PlacePart{&DialingPlace::international, &DialLocation::international},
};

DialingPlace PlaceOf(const DialLocation& location)
{
    DialingPlace place;
    for (const PlacePart& row : PlaceParts)
        place.*row.text = QString::fromStdString(location.*row.value);
    place.dialAreaCode = location.areaAlways;
    return place;
}

DialLocation LocationOf(const DialingPlace& place)
{
    DialLocation location;
    for (const PlacePart& row : PlaceParts)
        location.*row.value = (place.*row.text).trimmed().toStdString();
    location.areaAlways = place.dialAreaCode;
    return location;
}

// A number in the own area, one outside it, one in another country; the first two make sense with a country alone.
QString Sample(const DialingPlace& place)
{
    const DialLocation from = LocationOf(place);
    if (from.country.empty())
        return DialingText::tr("Numbers are dialled as they are written.");
    struct Row
    {
        QString what;
        std::string number;
    };
    const auto number = [](const std::string& country, const std::string& area) {
        return std::string("+").append(country).append(" (").append(area).append(") 5550100");
    };
    const bool isFirst = from.country == "1";
    QStringList lines;
    for (const Row& row :
         {Row{DialingText::tr("In your area: %1"), from.area.empty() ? std::string() : number(from.country, from.area)},
          Row{DialingText::tr("Elsewhere in your country: %1"),
              number(from.country, from.area == "305" ? "415" : "305")},
          Row{DialingText::tr("In another country: %1"), number(isFirst ? "44" : "1", isFirst ? "20" : "212")}})
        if (const auto dialled = row.number.empty() ? std::nullopt : TranslateNumber(row.number, from))
            lines += row.what.arg(QString::fromStdString(dialled->displayed));
    return lines.join(u'\n');
}

} // namespace

bool ShowDialingProperties(DialingForm& form, quintptr window, const QString& userFolder)
{
    if (userFolder.isEmpty())
        return false;
    DialingForm::Request request;
    request.window = window;
    const ModemCatalog catalog({}, userFolder);
    request.place = PlaceOf(catalog.Location());
    request.dialCharacters = QString::fromLatin1(DialCharacters.data(), static_cast<qsizetype>(DialCharacters.size()));
    request.sample = &Sample;
    request.save = [&catalog](const DialingPlace& place) {
        try {
            catalog.KeepLocation(LocationOf(place));
        } catch (const Failure& failure) {
            return failure.Text();
        }
        return QString();
    };
    return form.Show(request);
}

} // namespace kestrune::comm
