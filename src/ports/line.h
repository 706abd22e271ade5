#pragma once

// What an emulator needs of a line to a host, for every kind of device, and what it is told in return.
// All calls and all notices are on the user-interface thread. Nothing is told from inside Open() or Close().
// Inside a notice any call on the line is allowed. The line may be destroyed inside LineClosed, which is
// always the last thing it says, but not inside another notice.

#include <ports/secret.h>

#include <QByteArray>
#include <QString>

#include <memory>
#include <string_view>
#include <vector>

namespace kestrune {

// Device numbers as they stand in session files and on the automation surface.
enum class Device : qint16
{
    None = 0,
    SerialPort = 1,
    PicLan = 2,
    Telnet = 3,
    Modem = 4,
    Ssh = 5,
    Extension = 6, // the local shell; exists only when the installation names it
    SslTelnet = 7,
};

struct TerminalSize
{
    int cols = 80;
    int rows = 24;
    int pixelWidth = 0; // 0: not known
    int pixelHeight = 0;
    bool operator==(const TerminalSize&) const = default;
};

// Ways to log in over SSH, as SSHAuth stands in session files.
enum class SshAuth : qint16
{
    Automatic = 0, // whatever the host takes: agent, key files, what can be asked of the user
    Password = 1,
    KeyboardInteractive = 2,
    PublicKey = 3, // key files only
    Agent = 4,
};

// What is done about the key by which an SSH host proves who it is, as HostKeyValidation stands in session files.
enum class HostKeyValidation : qint32
{
    Ask = 0,       // about unknown and changed ones
    Strict = 1,    // only known ones
    AcceptNew = 2, // unknown ones are remembered without a question; about changed ones it is asked
    None = 3,      // every key is good: for laboratories
};

// What a lost line leaves for the one that takes its place; only the line's own kind knows what is in it.
class LineResume
{
public:
    virtual ~LineResume() = default;
};

// What is done about a host's certificate that is not in order, as HostCertificateValidation stands in session files.
enum class CertificateValidation : qint32
{
    Ask = 0,
    Strict = 1,    // it ends the connection
    AcceptNew = 2, // one that nobody known has signed is remembered without a question; about all else it is asked
    None = 3,      // every certificate is good: for laboratories
};

// What has become of a call over a modem. The numbers are those of the control's DialStatus.
enum class DialStatus : qint16
{
    NoCall = 0,
    Dialing = 1, // or waiting for the next try
    Connected = 2,
    Busy = 3,
    NoCarrier = 4, // not connected, or the call was cut off
    NoDialTone = 5,
    NoAnswer = 6,
    Failed = 7, // the modem refuses
    Answering = 8,
    Ringing = 9
};

// A copy of what the settings say at the moment of connecting. Each device reads its own part.
struct LineOptions
{
    Device device = Device::None;
    QString hostName;     // telnet, SSH: name or address; extension device: the command line, empty = login shell
    QString hostPort;     // number or service name; empty: the device's own default
    QString terminalName; // sent to the host as terminal type, or TERM of a local program
    TerminalSize size;
    int connectTimeout = 0;    // seconds; 0: the device's own default
    int keepaliveInterval = 0; // seconds; 0: off
    bool tcpNoDelay = false;
    bool tcpIdn = false;          // host names outside ASCII go through IDNA
    QByteArray userName;          // NEW-ENVIRON USER, SSH user; empty: not sent
    bool utf8 = false;            // local program: its tty erases whole UTF-8 characters
    char eraseCharacter = '\x7f'; // local program: what the Backspace key sends, for the tty's erase character

    // What network devices connect through. Its password is asked for, never kept with the session.
    struct Proxy
    {
        int kind = 0; // 0 none, 1 SOCKS5, 2 HTTP CONNECT
        QString host;
        QString port; // number or service name
        QString user; // empty: a proxy that wants to know is told by the user
    } proxy;

    struct Telnet
    {
        bool binary = false;         // ask for BINARY in both directions
        bool localEcho = false;      // never agree to WILL ECHO
        bool bypass = false;         // raw TCP: no negotiation at all
        bool alternateBreak = false; // a break is IAC IP instead of IAC BRK
        bool keepaliveIsNop = false; // IAC NOP instead of the TCP keep-alive
    } telnet;

    struct Tls
    {
        CertificateValidation validation = CertificateValidation::Ask;
        QString clientCertificate; // PEM or PKCS#12 file, in trustFolder or anywhere; empty: none
        QString trustFolder;       // filled in by the library: what this user trusts
    } tls;

    struct Ssh
    {
        int cipher = 0; // SSHCipher: 0 the best that both have, else a row of the cipher table
        bool onlyPreferredCipher = false;
        SshAuth auth = SshAuth::Automatic;
        QString keyFile;        // empty: those of the user's own SSH configuration
        int keepAlive = 0;      // seconds; 0: off
        bool noDelay = false;   // TCP_NODELAY, besides tcpNoDelay
        int breakCharacter = 0; // sent for a break; 0: the channel request of RFC 4335
        HostKeyValidation hostKeyValidation = HostKeyValidation::Ask;
        QString hostKeyFingerprint; // "SHA256:..."; not empty: this key and no other
        QString jump;               // "user@host:port, ..."; empty: what the user's configuration says; "none"
        QString forwards;           // "L8080:host:80, R2222:host:22, D1080": comm/sshforwardlist.h
        bool forwardAgent = false;  // the host's programs may use the user's agent
    } ssh;

    struct Resume
    {
        bool enabled = false;               // agree with a host that keeps sessions alive
        int bufferBytes = 0x40000;          // of what is sent and not yet acknowledged
        std::shared_ptr<LineResume> from{}; // taken from a lost line; null: a new session
    } resume;

    struct Serial
    {
        int port = 0;
        int baud = 9600; // bits per second
        int dataBits = 8;
        int stopBits = 1;
        int parity = 0;    // 0 none, 1 odd, 2 even, 3 mark, 4 space
        int handshake = 0; // 0 none, 1 XON/XOFF, 2 RTS/CTS, 3 DTR/DSR, 4 XON/BI
    } serial;

    struct Modem // hostName is its name, or the path of the port where a standard one is
    {
        bool autoAnswer = false;
        bool lockBaudRate = false;   // the port keeps its speed, whatever CONNECT says
        bool overrideConfig = false; // serial counts, not what the modem's definition says about the port
        QString programFolder;       // filled in by the library, as userFolder: where modems are defined
        QString userFolder;
    } modem;
};

// Connection status as the status line and the dialer see it.
enum class LineState : qint16
{
    Closed = 0,
    Resolving = 1,
    Connecting = 2,
    Authenticating = 3,
    Connected = 4,
    Closing = 5
};

// An error word: bits 24 to 31 flags, 16 to 23 the device number, 0 to 15 the error. Errors of the network
// devices are the socket numbers that users of other platforms know from their help pages.
inline constexpr quint32 LineErrorCanResume = 0x02000000; // bit 25: the host side can be resumed

namespace LineErrorNumber {
inline constexpr quint16 NoSuchFile = 2;     // local program: not found
inline constexpr quint16 HostUnknown = 0x20; // with Device::Ssh: a question, see LineQuestion
inline constexpr quint16 HostChanged = 0x21;
inline constexpr quint16 AccessDenied = 10013;
inline constexpr quint16 InvalidArgument = 10022;
inline constexpr quint16 ProtocolNotSupported = 10043;
inline constexpr quint16 NetworkDown = 10050;
inline constexpr quint16 NetworkUnreachable = 10051;
inline constexpr quint16 ConnectionReset = 10054;
inline constexpr quint16 NoBufferSpace = 10055;
inline constexpr quint16 NotConnected = 10057;
inline constexpr quint16 TimedOut = 10060;
inline constexpr quint16 ConnectionRefused = 10061;
inline constexpr quint16 HostUnreachable = 10065;
inline constexpr quint16 HostNotFound = 11001;
} // namespace LineErrorNumber

constexpr quint32 LineErrorWord(Device device, quint16 number) { return static_cast<quint32>(device) << 16 | number; }

// What a line needs of a person before it can go on. Its own time limits stand still meanwhile; the line's end
// withdraws the question.
struct LineQuestion
{
    enum class Kind
    {
        UnknownHost, // nobody has seen this host key or certificate before
        ChangedHost, // another one is remembered for this host
        Secrets      // passwords, passphrases, one-time codes
    };
    struct Field
    {
        QString label;                // as the host or the key asks for it: "Password:"
        bool echo = false;            // what is typed may be seen
        bool mayBeRemembered = false; // it will be the same next time
    };

    quint32 id = 0; // of this line, never 0
    Kind kind = Kind::UnknownHost;
    QString title; // of secrets: "SSH login to host"
    // What it is about, in the user's words. What a host has said in it is marked as such and cleared of controls.
    QString text;
    std::vector<Field> fields{}; // of secrets, may be empty
    // What the answer is for, the same at each connection: "password ann@host:22". Empty: nothing that could be kept.
    QString place{};
    bool again = false; // the last answer was not accepted
};

struct LineAnswer
{
    enum class Choice
    {
        Cancel,   // the line ends
        Continue, // trust: this time only; secrets: here they are
        Update,   // trust: and remember it; secrets: and remember those that may be
        Nobody    // there is no user to ask; the line ends and says so
    };

    quint32 question = 0;
    Choice choice = Choice::Cancel;
    std::vector<Secret> values{}; // one for each field
};

class LineListener
{
public:
    virtual ~LineListener() = default;
    virtual void LineReceived(std::string_view bytes) = 0;
    virtual void LineStateChanged(LineState state, const QString& text) = 0; // text in the user's words
    virtual void LineDeviceStatus(const QString& text) = 0;                  // "Telnet localhost:23"
    // What failed, on what, why. fatal: the line is closed; LineClosed follows.
    virtual void LineError(quint32 errorWord, const QString& description, bool fatal) = 0;
    virtual void LineClosed() = 0; // nothing is received after it
    // The program at the far end has ended and said how (a local program, SSH). Comes before LineClosed.
    virtual void LineProgramEnded(int exitCode, int signalNumber) = 0;
    // The far side does, or no longer does, echo what is typed (telnet ECHO). Told after each agreement; before
    // the first one a network virtual terminal does not echo, every other device does.
    virtual void LineRemoteEcho(bool remote) = 0;
    // What LineOptions::Resume::from asked for. false: that session is gone, or the host does not answer for it; what
    // has come since the line was opened belongs to a new one.
    virtual void LineResumed(bool sameSession) { (void)sameSession; }
    // Answered by Line::Answer, now or later. At most one question of a line stands at a time.
    virtual void LineAsks(const LineQuestion& question) = 0;
    // A modem's call; said: its own words for it, empty when it has said nothing.
    virtual void LineDialStatus(DialStatus status, const QString& said) { (void)status, (void)said; }
    // What Send() had to leave in the queue has gone: Unsent() is 0 again. For a paste that paces itself.
    virtual void LineDrained() {}
};

class Line
{
public:
    static constexpr qsizetype MaxUnsent = qsizetype{8} * 1024 * 1024;

    virtual ~Line() = default; // closes without notices
    virtual void Open() = 0;   // once; the outcome comes through the listener. Another connection: another line
    virtual void Close() = 0;  // harmless when closed; LineClosed follows once
    virtual bool IsOpen() const = 0;
    // Queued. What does not fit into the queue (MaxUnsent) of a host that takes nothing is dropped whole, with an
    // error; so is what is sent before the line is open or after it has closed, without one.
    virtual void Send(std::string_view bytes) = 0;
    virtual qsizetype Unsent() const = 0;   // bytes queued here: paste and transfers pace themselves by it
    virtual void SetReceiving(bool on) = 0; // false: tell nothing more from the far side until true again
    virtual void Resize(const TerminalSize& size) = 0;
    virtual void Break(int milliseconds) = 0;
    // An answer to a question that no longer stands is dropped; so is one of a line that never asks.
    virtual void Answer(LineAnswer) {}
    // Inside LineClosed, after a LineError with LineErrorCanResume: what the next line needs to go on. Else null.
    virtual std::shared_ptr<LineResume> TakeResume() { return {}; }
    // Of a modem: the outcome comes as LineDialStatus. False: this line cannot, there is a call (Dial) or none
    // (HangUp), or nothing of the number can be dialled. The number is translated by the place where the telephone
    // stands.
    virtual bool Dial(const QString& number)
    {
        (void)number;
        return false;
    }
    virtual bool HangUp() { return false; }
    virtual bool HasChildren() const { return false; } // a program besides the shell itself is running there
};

class LineFactory
{
public:
    virtual ~LineFactory() = default;
    virtual bool Exists(Device device) const = 0;
    virtual QString Name(Device device) const = 0; // "Telnet", "Local Shell"
    // Null when the device does not exist here; the listener must outlive the line.
    virtual std::unique_ptr<Line> Make(const LineOptions& options, LineListener& listener) = 0;
};

} // namespace kestrune
