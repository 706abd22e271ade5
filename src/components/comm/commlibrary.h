#pragma once

// The communications library: every way of reaching a host stands behind this one face. It makes lines
// (ports/line.h) for a device and answers what the wizard, the dialer and the About box ask about devices.
// Devices that this build does not have are known by number and do not exist. Its calls on open lines, for programs
// that poll, stand in comm/commhandles.h.
//
//     CommLibrary comm(clock, extensionName);
//     auto line = comm.Make(options, listener);
//     line->Open();
//
// All calls are on the user-interface thread. Clock and listeners outlive the lines; the library itself need not.

#include <ports/clock.h>
#include <ports/dialingform.h>
#include <ports/line.h>
#include <ports/secret.h>

#include <QByteArray>
#include <QString>

#include <memory>

namespace kestrune {

class CommLibrary : public LineFactory
{
public:
    // extensionName: what the installation says about extension device 6; empty: there is no device 6.
    // userFolder: holds authorities.pem and known_certificates, modems.ini and dialing.ini; empty: no certificate is
    // remembered. programFolder: holds the installation's modems.ini. dialingForm: outlives the library; null: none.
    CommLibrary(Clock& clock, const QString& extensionName, QString userFolder = {}, QString programFolder = {},
                DialingForm* dialingForm = nullptr);

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
    // length: room in characters; names that it has none for are left out. Result: the number of names. Each begins
    // with the port's number ("Port 33: ttyUSB0", see platform/serialport.h); of the modem device they are the names of
    // the modems (comm/modemcatalog.h).
    int ORCommList(int kind, int what, QString& list, int length) const;
    // what: 0 country code, 1 area code of the user's dialing location; empty when there is none. length: room in
    // characters, the closing NUL among them. Result: the size of the text.
    int ORDialLocationInfo(int what, QString& text, int length) const;
    // Lets the user change the dialing location, in a dialog over the window. False: it was not shown, since there is
    // no user.
    bool ORDialingProperties(quintptr window) const;
    // From the user's dialing location. Without one, or for a number that is not canonical ("+1 (212) 5550100"), it is
    // dialled as it is written: dialable keeps the characters that a modem can dial, displayed all of it. Non-zero on
    // success; zero when nothing to dial is left or a text would not fit into length characters.
    int ORTranslateNumber(const QString& canonical, int options, QString& dialable, QString& displayed,
                          int length) const;
    // Makes a key pair for SSH logins: type "ed25519", "ecdsa" or "rsa", bits 0 for the usual number; the private half
    // into the file, the public one beside it as file.pub; neither may stand there already. An ed25519 key is written
    // in OpenSSH's own form, the others as PKCS#8, encrypted when there is a passphrase. Non-zero on success; else why
    // says what was wrong.
    int ORSSHKeyGen(const QString& type, int bits, const QString& comment, const Secret& passphrase,
                    const QString& file, QString& why) const;
    // The public half of a key file, as one line for a host's list of keys. Result: its length, 0 with a reason.
    int ORSSHPubKey(const QString& file, const Secret& passphrase, QString& line, QString& why) const;
    // The fingerprint of a key file's public half: kind 0 "SHA256:...", 1 "MD5:...". Result: its length, 0 with a
    // reason.
    int ORSSHFingerprint(const QString& file, int kind, QString& text, QString& why) const;
    // Bytes for keys and tokens. Non-zero on success; then there are count of them.
    int ORSSHGetRandom(int count, QByteArray& bytes) const;
    // Whether the cryptographic library that the program would use runs in its FIPS mode.
    bool GetFipsMode() const;
    // Whether the system's administrator asks for that mode. The program follows the library, not this.
    bool GetFipsPolicy() const;

private:
    Clock& clock_;
    bool hasExtension_;
    QString userFolder_;
    QString programFolder_;
    DialingForm* dialingForm_;
};

} // namespace kestrune
