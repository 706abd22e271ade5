#pragma once

// The communications library: every way of reaching a host stands behind this one face. It makes lines
// (ports/line.h) for a device and answers what the wizard, the dialer and the About box ask about devices.
// Devices that this build does not have are known by number and do not exist.
//
//     CommLibrary comm(clock, extensionName);
//     auto line = comm.Make(options, listener);
//     line->Open();
//
// All calls are on the user-interface thread. Clock and listeners outlive the lines; the library itself need not.

#include <ports/clock.h>
#include <ports/line.h>

#include <QString>

#include <memory>

namespace kestrune {

class CommLibrary : public LineFactory
{
public:
    // extensionName: what the installation says about extension device 6; empty: there is no device 6.
    // trustFolder: holds authorities.pem and known_certificates; empty: no certificate is remembered.
    CommLibrary(Clock& clock, const QString& extensionName, QString trustFolder = {});

    bool Exists(Device device) const override;
    QString Name(Device device) const override; // "Telnet"; empty: no such number
    // Null when the device does not exist here.
    std::unique_ptr<Line> Make(const LineOptions& options, LineListener& listener) override;

    // --- the library's calls by their own names; they report through their results and never raise

    // Non-zero when the library supports the device (1 to 7).
    int ORCommExist(int device) const;
    // length: room in characters, then the size of the identifier; 0: the device is not available.
    void ORCommID(int device, int& length, QString& text) const;
    // The ports of a device kind, each name ended by a NUL and the list by a second one; what is always 9.
    // Result: the number of ports. Empty until the serial and modem devices exist.
    int ORCommList(int kind, int what, QString& list) const;
    // what: 0 country code, 1 area code. The platform keeps no dialing location: the text is empty, its length 0.
    int ORDialLocationInfo(int what, QString& text, int length) const;
    // False: the platform has no dialing properties to show; the caller tells the user.
    bool ORDialingProperties(quintptr window) const;
    // Without a dialing location a number is dialled as it is written: dialable keeps the characters that a
    // modem can dial, displayed all of it. Non-zero on success; zero when nothing to dial is left or a text
    // would not fit into length characters.
    int ORTranslateNumber(const QString& canonical, int options, QString& dialable, QString& displayed,
                          int length) const;
    // Whether the cryptographic library that the program would use runs in its FIPS mode.
    bool GetFipsMode() const;

private:
    Clock& clock_;
    bool hasExtension_;
    QString trustFolder_;
};

} // namespace kestrune
