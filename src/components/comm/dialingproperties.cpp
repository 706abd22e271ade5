#include "dialingproperties.h"

#include <comm/dialing.h>
#include <comm/modemcatalog.h>
#include <dispatch/failure.h>
#include <platform/inifile.h>
#include <platform/nativefiles.h>

#include <QCoreApplication>
#include <QDir>

#include <array>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

struct DialingText
{
    Q_DECLARE_TR_FUNCTIONS(DialingProperties)
};

struct PlaceKey
{
    QString DialingPlace::*text;
    std::string DialLocation::*value;
    QStringView key;
};
constexpr std::array PlaceKeys{
    PlaceKey{&DialingPlace::countryCode, &DialLocation::country, u"CountryCode"},
    PlaceKey{&DialingPlace::areaCode, &DialLocation::area, u"AreaCode"},
    PlaceKey{&DialingPlace::outsideLine, &DialLocation::outsideLine, u"OutsideLine"},
    PlaceKey{&DialingPlace::outsideLineLongDistance, &DialLocation::outsideLineFar, u"OutsideLineLongDistance"},
    PlaceKey{&DialingPlace::longDistance, &DialLocation::longDistance, u"LongDistance"},
    PlaceKey{&DialingPlace::international, &DialLocation::international, u"International"},
};

DialingPlace PlaceOf(const DialLocation& location)
{
    DialingPlace place;
    for (const PlaceKey& row : PlaceKeys)
        place.*row.text = QString::fromStdString(location.*row.value);
    place.dialAreaCode = location.areaAlways;
    return place;
}

DialLocation LocationOf(const DialingPlace& place)
{
    DialLocation location;
    for (const PlaceKey& row : PlaceKeys)
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

// The file's other lines stay as they are. Empty, or why it could not be written.
QString Save(const QString& userFolder, const DialingPlace& place)
{
    const DialLocation location = LocationOf(place);
    const QString section = u"Location"_s;
    const auto change = [&](const std::optional<QByteArray>& old) {
        IniDocument file = IniDocument::Parse(old.value_or(QByteArray()));
        for (const PlaceKey& row : PlaceKeys) {
            const std::string& value = location.*row.value;
            if (value.empty())
                file.Remove(section, row.key.toString());
            else
                file.Set(section, row.key.toString(), QString::fromStdString(value));
        }
        file.Set(section, u"DialAreaCode"_s, location.areaAlways ? u"True"_s : u"False"_s);
        return std::optional(file.Serialise());
    };
    try {
        QDir().mkpath(userFolder); // what comes of it is told by what follows
        NativeFileSystem().Edit(QDir(userFolder).filePath(u"dialing.ini"_s), change);
    } catch (const Failure& failure) {
        return failure.Text();
    }
    return {};
}

} // namespace

bool ShowDialingProperties(DialingForm& form, quintptr window, const QString& userFolder)
{
    if (userFolder.isEmpty())
        return false;
    DialingForm::Request request;
    request.window = window;
    request.place = PlaceOf(ModemCatalog({}, userFolder).Location());
    request.dialCharacters = QString::fromLatin1(DialCharacters.data(), static_cast<qsizetype>(DialCharacters.size()));
    request.sample = &Sample;
    request.save = [userFolder](const DialingPlace& place) { return Save(userFolder, place); };
    return form.Show(request);
}

} // namespace kestrune::comm
