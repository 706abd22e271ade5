#include <comm/modemcatalog.h>

#include <platform/inifile.h>
#include <platform/nativefiles.h>
#include <platform/serialport.h>

#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 LongestModemFile = qint64{1024} * 1024;

IniDocument ReadIni(const QString& folder, const QString& name)
{
    QFile file(folder + u'/' + name);
    const bool there = !folder.isEmpty() && file.open(QIODevice::ReadOnly);
    return IniDocument::Parse(there ? file.read(LongestModemFile) : QByteArray());
}

// One section's values; what is missing or makes no sense leaves the default.
class ModemSection
{
public:
    ModemSection(const IniDocument& file, const QString& name) : file_(file), name_(name) {}

    void Read(const QString& key, std::string& value) const
    {
        if (const auto text = file_.Get(name_, key))
            value = text->toLatin1().toStdString();
    }
    void Read(const QString& key, QString& value) const { value = file_.Get(name_, key).value_or(value); }
    void Read(const QString& key, bool& value) const
    {
        if (const auto text = file_.Get(name_, key))
            value = text->compare(u"True", Qt::CaseInsensitive) == 0;
    }
    void Read(const QString& key, int& value, int least, int most) const
    {
        bool isNumber = false;
        const int number = file_.Get(name_, key).value_or(QString()).toInt(&isNumber);
        if (isNumber && number >= least && number <= most)
            value = number;
    }
    void Read(const QString& key, std::chrono::milliseconds& value, int least, int most) const
    {
        int number = static_cast<int>(value.count());
        Read(key, number, least, most);
        value = std::chrono::milliseconds(number);
    }

private:
    const IniDocument& file_;
    const QString& name_;
};

struct WordKey
{
    QStringView key;
    ModemResult result;
};
constexpr std::array WordKeys{
    WordKey{u"OK", ModemResult::Ok},       WordKey{u"Connect", ModemResult::Connect},
    WordKey{u"Ring", ModemResult::Ring},   WordKey{u"NoCarrier", ModemResult::NoCarrier},
    WordKey{u"Error", ModemResult::Error}, WordKey{u"NoDialTone", ModemResult::NoDialTone},
    WordKey{u"Busy", ModemResult::Busy},   WordKey{u"NoAnswer", ModemResult::NoAnswer},
};

// "SetUp=ATZ|ATE1", "Busy=BUSY|7"
std::vector<std::string> Alternatives(const QString& text)
{
    std::vector<std::string> list;
    for (const QString& part : text.split(u'|', Qt::SkipEmptyParts))
        list.push_back(part.trimmed().toLatin1().toStdString());
    return list;
}

void ReadWords(const IniDocument& file, const QString& name, std::vector<ModemWord>& words)
{
    for (const WordKey& row : WordKeys) {
        const auto text = file.Get(name, row.key.toString());
        if (!text)
            continue;
        std::erase_if(words, [&row](const ModemWord& word) { return word.result == row.result; });
        for (const std::string& word : Alternatives(*text))
            words.push_back({row.result, word});
    }
}

void ReadModem(const IniDocument& file, const QString& name, Modem& modem)
{
    const ModemSection section(file, name);
    ModemDefinition& definition = modem.definition;
    if (const auto setUp = file.Get(name, u"SetUp"_s))
        definition.setUp = Alternatives(*setUp);
    section.Read(u"Dial"_s, definition.dial);
    section.Read(u"Answer"_s, definition.answer);
    section.Read(u"HangUp"_s, definition.hangUp);
    section.Read(u"Escape"_s, definition.escape);
    section.Read(u"GuardTime"_s, definition.guard, 20, 10000);
    section.Read(u"HangUpByLine"_s, definition.hangUpByLine);
    section.Read(u"Rings"_s, definition.rings, 1, 20);
    section.Read(u"Redials"_s, definition.redials, 0, 100);
    section.Read(u"RedialPause"_s, definition.redialPause, 0, 600000);
    section.Read(u"Port"_s, modem.port);
    section.Read(u"Baud"_s, modem.serial.baud, 50, 4000000);
    section.Read(u"DataBits"_s, modem.serial.dataBits, 5, 8);
    section.Read(u"StopBits"_s, modem.serial.stopBits, 1, 2);
    section.Read(u"Parity"_s, modem.serial.parity, 0, 4);
    section.Read(u"Handshake"_s, modem.serial.handshake, 0, 4);
    ReadWords(file, name, definition.words);
}

QString PortPath(const QString& port)
{
    bool isNumber = false;
    const int number = port.toInt(&isNumber);
    return isNumber ? QString::fromStdString(SerialPortPath(number)) : port;
}

QString ModemFile() { return u"modems.ini"_s; }
QString LocationFile() { return u"dialing.ini"_s; }
QString LocationName() { return u"Location"_s; }

struct LocationKey
{
    std::string DialLocation::*value;
    QStringView key;
};
constexpr std::array LocationKeys{
    LocationKey{&DialLocation::country, u"CountryCode"},
    LocationKey{&DialLocation::area, u"AreaCode"},
    LocationKey{&DialLocation::outsideLine, u"OutsideLine"},
    LocationKey{&DialLocation::outsideLineFar, u"OutsideLineLongDistance"},
    LocationKey{&DialLocation::longDistance, u"LongDistance"},
    LocationKey{&DialLocation::international, u"International"},
};
constexpr QStringView AreaAlwaysKey = u"DialAreaCode";

} // namespace

QStringList ModemCatalog::Names() const
{
    QStringList names = ReadIni(installationFolder_, ModemFile()).Sections();
    for (const QString& name : ReadIni(userFolder_, ModemFile()).Sections())
        if (!names.contains(name, Qt::CaseInsensitive))
            names += name;
    if (names.isEmpty())
        names += u"Standard modem"_s; // an installation without its file
    return names;
}

std::optional<Modem> ModemCatalog::Find(const LineOptions& options) const
{
    const QString named = options.hostName.trimmed();
    const bool isPath = named.startsWith(u'/');
    const QStringList names = Names();
    const auto found =
        isPath || named.isEmpty() ? names.begin() : std::ranges::find_if(names, [&named](const QString& name) {
            return name.compare(named, Qt::CaseInsensitive) == 0;
        });
    if (found == names.end())
        return std::nullopt;
    Modem modem{.name = *found, .port = {}, .serial = options.serial, .definition = {}};
    const IniDocument own = ReadIni(userFolder_, ModemFile());
    const bool isOwn = own.Sections().contains(modem.name, Qt::CaseInsensitive);
    ReadModem(isOwn ? own : ReadIni(installationFolder_, ModemFile()), modem.name, modem);
    if (options.modem.overrideConfig)
        modem.serial = options.serial;
    const bool ownPort = options.modem.overrideConfig || modem.port.isEmpty();
    modem.port = isPath ? named : ownPort ? PortPath(QString::number(options.serial.port)) : PortPath(modem.port);
    return modem;
}

DialLocation ModemCatalog::Location() const
{
    const IniDocument file = ReadIni(userFolder_, LocationFile());
    const QString name = LocationName();
    const ModemSection section(file, name);
    DialLocation location;
    for (const LocationKey& row : LocationKeys)
        section.Read(row.key.toString(), location.*row.value);
    section.Read(AreaAlwaysKey.toString(), location.areaAlways);
    return location;
}

void ModemCatalog::KeepLocation(const DialLocation& location) const
{
    const auto change = [&location](const std::optional<QByteArray>& old) {
        IniDocument file = IniDocument::Parse(old.value_or(QByteArray()));
        for (const LocationKey& row : LocationKeys) {
            const std::string& value = location.*row.value;
            if (value.empty())
                file.Remove(LocationName(), row.key.toString());
            else
                file.Set(LocationName(), row.key.toString(), QString::fromStdString(value));
        }
        file.Set(LocationName(), AreaAlwaysKey.toString(), location.areaAlways ? u"True"_s : u"False"_s);
        return std::optional(file.Serialise());
    };
    QDir().mkpath(userFolder_); // what comes of it is told by what follows
    NativeFileSystem().Edit(QDir(userFolder_).filePath(LocationFile()), change);
}

} // namespace kestrune::comm
