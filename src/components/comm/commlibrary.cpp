#include <comm/commlibrary.h>

#include "dialingproperties.h"
#include "localshell.h"
#include "resumableline.h"
#include "sshline.h"
#include "telnetline.h"

#include <comm/modemcatalog.h>
#include <comm/modemline.h>
#include <comm/serialline.h>
#include <comm/sshkeys.h>
#include <platform/fipspolicy.h>
#include <platform/serialport.h>

#include <QCoreApplication>
#include <QLibrary>

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune {

namespace {

using LineMaker = std::unique_ptr<Line> (*)(const LineOptions&, LineListener&, Clock&);

template <typename T>
std::unique_ptr<Line> MakeLine(const LineOptions& options, LineListener& listener, Clock& clock)
{
    return std::make_unique<T>(options, listener, clock);
}

struct DeviceRow
{
    Device device;
    const char* name;
    LineMaker make; // null: known by number, not in this build
};

constexpr std::array DeviceRows{
    DeviceRow{Device::SerialPort, QT_TRANSLATE_NOOP("CommLibrary", "Serial Port"), &MakeLine<comm::SerialLine>},
    DeviceRow{Device::PicLan, QT_TRANSLATE_NOOP("CommLibrary", "PicLan"), &MakeLine<comm::TelnetLine>},
    DeviceRow{Device::Telnet, QT_TRANSLATE_NOOP("CommLibrary", "Telnet"), &MakeLine<comm::TelnetLine>},
    DeviceRow{Device::Modem, QT_TRANSLATE_NOOP("CommLibrary", "Modem"), &MakeLine<comm::ModemLine>},
    DeviceRow{Device::Ssh, QT_TRANSLATE_NOOP("CommLibrary", "SSH"), &MakeLine<comm::SshLine>},
    DeviceRow{Device::Extension, QT_TRANSLATE_NOOP("CommLibrary", "Local Shell"), &MakeLine<comm::LocalShell>},
    DeviceRow{Device::SslTelnet, QT_TRANSLATE_NOOP("CommLibrary", "SSL/Telnet"), &MakeLine<comm::TelnetLine>},
};

const DeviceRow* RowOf(Device device)
{
    const auto row = std::ranges::find(DeviceRows, device, &DeviceRow::device);
    return row == DeviceRows.end() ? nullptr : &*row;
}

} // namespace

CommLibrary::CommLibrary(Clock& clock, const QString& extensionName, QString userFolder, QString programFolder,
                         DialingForm* dialingForm)
    : clock_(clock), hasExtension_(!extensionName.trimmed().isEmpty()), userFolder_(std::move(userFolder)),
      programFolder_(std::move(programFolder)), dialingForm_(dialingForm)
{}

bool CommLibrary::Exists(Device device) const
{
    const DeviceRow* row = RowOf(device);
    return row && row->make && (device != Device::Extension || hasExtension_);
}

QString CommLibrary::Name(Device device) const
{
    const DeviceRow* row = RowOf(device);
    return row ? QCoreApplication::translate("CommLibrary", row->name) : QString();
}

std::unique_ptr<Line> CommLibrary::Make(const LineOptions& options, LineListener& listener)
{
    if (!Exists(options.device))
        return nullptr;
    LineOptions own = options;
    own.tls.trustFolder = userFolder_;
    own.modem.userFolder = userFolder_;
    own.modem.programFolder = programFolder_;
    const LineMaker make = RowOf(options.device)->make;
    if (comm::ResumableLine::IsWanted(own))
        return std::make_unique<comm::ResumableLine>(own, listener, clock_, make);
    return make(own, listener, clock_);
}

int CommLibrary::ORCommExist(int device) const { return Exists(static_cast<Device>(device)) ? 1 : 0; }

void CommLibrary::ORCommID(int device, int& length, QString& text) const
{
    text = ORCommExist(device) ? Name(static_cast<Device>(device)).left(std::max(length, 0)) : QString();
    length = static_cast<int>(text.size());
}

int CommLibrary::ORCommList(int kind, int, QString& list, int length) const
{
    using namespace Qt::StringLiterals;
    QStringList names;
    if (static_cast<Device>(kind) == Device::SerialPort)
        for (const int number : SerialPortNumbers()) {
            const QString device = QString::fromStdString(SerialPortPath(number)).section(u'/', -1);
            names += QCoreApplication::translate("CommLibrary", "Port %1: %2").arg(number).arg(device);
        }
    if (static_cast<Device>(kind) == Device::Modem)
        names = comm::ModemCatalog(programFolder_, userFolder_).Names();
    list.clear();
    int count = 0;
    for (const QString& name : names)
        if (list.size() + name.size() + 2 <= length) { // the NUL that ends it, and the list's
            list += name + QChar(0);
            ++count;
        }
    list += QString(count == 0 ? 2 : 1, QChar(0));
    list.truncate(std::max(length, 0));
    return count;
}

int CommLibrary::ORDialLocationInfo(int what, QString& text, int length) const
{
    const comm::DialLocation location = comm::ModemCatalog(programFolder_, userFolder_).Location();
    text = QString::fromStdString(what == 0 ? location.country : what == 1 ? location.area : std::string());
    text.truncate(std::max(length - 1, 0));
    return static_cast<int>(text.size());
}

bool CommLibrary::ORDialingProperties(quintptr window) const
{
    return dialingForm_ && comm::ShowDialingProperties(*dialingForm_, window, userFolder_);
}

int CommLibrary::ORTranslateNumber(const QString& canonical, int, QString& dialable, QString& displayed,
                                   int length) const
{
    const auto translated =
        comm::TranslateNumber(canonical.toStdString(), comm::ModemCatalog(programFolder_, userFolder_).Location());
    dialable = translated ? QString::fromStdString(translated->dialable) : QString();
    displayed = translated ? QString::fromStdString(translated->displayed) : QString();
    if (!dialable.isEmpty() && dialable.size() < length && displayed.size() < length)
        return 1;
    dialable.clear();
    displayed.clear();
    return 0;
}

int CommLibrary::ORSSHKeyGen(const QString& type, int bits, const QString& comment, const Secret& passphrase,
                             const QString& file, QString& why) const
{
    auto result = comm::MakeSshKey({type, bits, comment, passphrase.Copy()}, file);
    why = result.error;
    return result.text.isEmpty() ? 0 : 1;
}

int CommLibrary::ORSSHPubKey(const QString& file, const Secret& passphrase, QString& line, QString& why) const
{
    const auto result = comm::PublicSshKey(file, passphrase);
    why = result.error;
    line = QString::fromUtf8(result.text);
    return static_cast<int>(line.size());
}

int CommLibrary::ORSSHFingerprint(const QString& file, int kind, QString& text, QString& why) const
{
    const auto result =
        comm::SshKeyFingerprint(file, kind == 1 ? comm::SshFingerprintKind::Md5 : comm::SshFingerprintKind::Sha256);
    why = result.error;
    text = QString::fromUtf8(result.text);
    return static_cast<int>(text.size());
}

int CommLibrary::ORSSHGetRandom(int count, QByteArray& bytes) const
{
    bytes = comm::SshRandom(count);
    return count > 0 && bytes.size() == count ? 1 : 0;
}

// Asked of the library that TLS would load, so that a program that never uses TLS does not load it at its start.
bool CommLibrary::GetFipsMode() const
{
    using namespace Qt::StringLiterals;
    QLibrary crypto(u"crypto"_s, 3);
    using Question = int (*)(void*);
    const auto ask = reinterpret_cast<Question>(crypto.resolve("EVP_default_properties_is_fips_enabled"));
    return ask && ask(nullptr) == 1;
}

bool CommLibrary::GetFipsPolicy() const { return SystemWantsFips(); }

} // namespace kestrune
