#include "sessionoptions.h"

#include "latintext.h"

#include <emulator/engine/hostcharsets.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace kestrune {

namespace {

// A Linux console has spoken UTF-8 since 2.6.24, the PC consoles the character ROM of the IBM PC.
emu::HostCharset NativeCharset(int termType)
{
    switch (termType) {
    case 16:
        return emu::HostCharset::Utf8;
    case 9:
    case 10:
    case 15:
        return emu::HostCharset::Cp437;
    default:
        return emu::HostCharset::Latin1;
    }
}

constexpr int kMostResumeBuffer = 65'536; // KB
constexpr std::array kBauds{300, 1200, 2400, 4800, 9600, 14400, 19200, 38400, 57600, 115200};

} // namespace

std::optional<emu::HostCharset> CharsetNamed(const QString& name)
{
    return emu::FindHostCharset(name.trimmed().toStdString());
}

emu::HostCharset CharsetOf(const EmulatorSettings& settings)
{
    return CharsetNamed(settings.Text(Setting("Charset")))
        .value_or(NativeCharset(settings.Integer(Setting("TermType"))));
}

std::optional<std::u16string> MappingOf(const EmulatorSettings& settings)
{
    const std::string mapping = settings.Text(Setting("CharacterMapping")).toStdString();
    return mapping.empty() ? std::u16string() : emu::MappedUpperHalf(CharsetOf(settings), mapping);
}

emu::TerminalOptions TerminalOptionsOf(const EmulatorSettings& settings, emu::Size size)
{
    emu::TerminalOptions options;
    options.size = size;
    options.extended = {settings.Integer(Setting("ExtCols")), settings.Integer(Setting("ExtRows"))};
    options.startsExtended = settings.Integer(Setting("ScrMode")) == 1;
    options.reflow = settings.Boolean(Setting("ReflowOnResize"));
    options.pages = settings.Integer(Setting("Pages"));
    options.messageRows = settings.Integer(Setting("MessageRows"));
    options.historyRows = settings.Integer(Setting("HistoryRows"));
    options.charset = CharsetOf(settings);
    options.upperHalf = MappingOf(settings).value_or(std::u16string());
    options.eightBitReplies = settings.Boolean(Setting("Ansi8Bit"));
    options.ignoreApplicationModes = settings.Boolean(Setting("DisableAppMode"));
    options.autoWrap = !settings.Boolean(Setting("NoAutoWrap"));
    options.applicationCursor = settings.Boolean(Setting("AnsiAppCursor"));
    options.applicationKeypad = settings.Boolean(Setting("AnsiAppKeypad"));
    options.lockFunctionKeys = settings.Boolean(Setting("LockFKeys"));
    options.backspace = settings.Boolean(Setting("BkspSendsDel")) ? emu::BackspaceKey::Del : emu::BackspaceKey::AsType;
    options.cursor = emu::CursorShape(settings.Integer(Setting("CursorType"))); // the table's range is this list
    options.answerBack = settings.Text(Setting("AnswerBack")).toLatin1().toStdString();
    return options;
}

// Silently given another one, a user would trust a version that they did not ask for, or wonder why the host refuses.
QString WhyNoLine(const EmulatorSettings& settings)
{
    constexpr int versionOneAlone = 1; // of SSHVersion; with every other value it is version 2
    const bool overSsh = Device(settings.Integer(Setting("Device"))) == Device::Ssh;
    if (overSsh && settings.Integer(Setting("SSHVersion")) == versionOneAlone)
        return QCoreApplication::translate(
            "SessionOptions", "Unable to connect: this session asks for version 1 of SSH, which has been unsafe for "
                              "decades and is not spoken here. Set SSHVersion to 2.");
    return {};
}

LineOptions LineOptionsOf(const EmulatorSettings& settings, const emu::Personality& type, const TerminalSize& size)
{
    LineOptions options;
    options.device = Device(settings.Integer(Setting("Device")));
    options.hostName = settings.Text(Setting("HostName"));
    options.hostPort = settings.Text(Setting("HostPort"));
    options.terminalName = settings.Text(Setting("HostTermType"));
    if (options.terminalName.isEmpty())
        options.terminalName = LatinText(type.hostName);
    options.size = size;
    options.connectTimeout = settings.Integer(Setting("ConnectTimeout"));
    options.keepaliveInterval = settings.Integer(Setting("KeepaliveInterval"));
    // TelnetKeepalive and TelnetNoDelay are the names of earlier releases.
    if (options.keepaliveInterval == 0 && options.device != Device::Ssh)
        options.keepaliveInterval = std::max(0, settings.Integer(Setting("TelnetKeepalive")));
    options.tcpNoDelay = settings.Boolean(Setting("TcpNoDelay")) || settings.Boolean(Setting("TelnetNoDelay"));
    options.tcpIdn = settings.Boolean(Setting("TcpIdn"));
    options.proxy.kind = settings.Integer(Setting("ProxyType"));
    options.proxy.host = settings.Text(Setting("ProxyHost"));
    options.proxy.port = settings.Text(Setting("ProxyPort"));
    options.proxy.user = settings.Text(Setting("ProxyUser"));
    options.utf8 = CharsetOf(settings) == emu::HostCharset::Utf8;
    const bool sendsDel = settings.Boolean(Setting("BkspSendsDel")) || type.backspaceSendsDel;
    options.eraseCharacter = sendsDel ? '\x7f' : '\b';
    options.telnet.binary = settings.Boolean(Setting("TelnetBinary"));
    options.telnet.localEcho = settings.Boolean(Setting("TelnetEcho"));
    options.telnet.bypass = settings.Boolean(Setting("TelnetBypass"));
    options.telnet.alternateBreak = settings.Boolean(Setting("TelnetAltBreak"));
    options.telnet.keepaliveIsNop = settings.Boolean(Setting("TelnetKeepaliveIsNOP"));
    options.tls.validation = CertificateValidation(settings.Integer(Setting("HostCertificateValidation")));
    options.tls.clientCertificate = settings.Text(Setting("ClientCertificateID"));
    options.ssh.cipher = settings.Integer(Setting("SSHCipher"));
    options.ssh.onlyPreferredCipher = settings.Boolean(Setting("SSHUseOnlyPreferredCipher"));
    if (const auto auth = SshAuth(settings.Integer(Setting("SSHAuth"))); auth > SshAuth{} && auth <= SshAuth::Agent)
        options.ssh.auth = auth;
    options.ssh.keyFile = settings.Text(Setting("SSHKey"));
    options.ssh.keepAlive = settings.Integer(Setting("SSHKeepAlive"));
    options.ssh.noDelay = settings.Boolean(Setting("SSHNoDelay"));
    options.ssh.breakCharacter = settings.Integer(Setting("SSHBreakCharacter"));
    options.ssh.hostKeyValidation = HostKeyValidation(settings.Integer(Setting("HostKeyValidation")));
    options.ssh.hostKeyFingerprint = settings.Text(Setting("HostKeyFingerprint"));
    options.ssh.jump = settings.Text(Setting("SSHJump"));
    options.ssh.forwards = settings.Text(Setting("SSHForwards"));
    options.ssh.forwardAgent = settings.Boolean(Setting("SSHForwardAgent"));
    options.resume.enabled = settings.Integer(Setting("ResumeAfterDisconnect")) >= 0;
    if (const int kilobytes = settings.Integer(Setting("ResumeBufferSize")); kilobytes > 0)
        options.resume.bufferBytes = std::min(kilobytes, kMostResumeBuffer) * 1024;
    options.serial.port = settings.Integer(Setting("Port"));
    options.serial.baud = kBauds.at(size_t(settings.Integer(Setting("Baud"))));
    options.serial.dataBits = settings.Integer(Setting("DataBits"));
    options.serial.stopBits = settings.Integer(Setting("StopBits"));
    options.serial.parity = settings.Integer(Setting("Parity"));
    options.serial.handshake = settings.Integer(Setting("Handshake"));
    options.modem.autoAnswer = settings.Boolean(Setting("AutoAnswer"));
    options.modem.lockBaudRate = settings.Boolean(Setting("LockBaudRate"));
    options.modem.overrideConfig = settings.Boolean(Setting("OverrideModemConfig"));
    return options;
}

} // namespace kestrune
