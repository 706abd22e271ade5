#pragma once

// The persistent settings of a terminal session as one table: name, kind, default, range and the key in a
// property bag. The key in a session file is the name. The late-bound object, the session file, the property
// bag, the macro recorder's comparison and the settings dialog all read these rows; a new setting is a new row.

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace kestrune {

enum class SettingKind : uint8_t
{
    Boolean,
    Integer,
    Float,
    Text
};

struct SettingRow
{
    std::string_view name;
    SettingKind kind = SettingKind::Integer;
    double number = 0;     // default of the kinds that are not text
    std::string_view text; // default of a text
    double low = -32768;   // range of Integer and Float, both ends allowed
    double high = 32767;
    std::string_view bagKey;       // empty: "s" and the name
    bool bagDefaultIsText = false; // missing in a bag counts as an empty text, which differs from every number

    constexpr SettingRow As(std::string_view key) const
    {
        SettingRow row = *this;
        row.bagKey = key;
        return row;
    }
    constexpr SettingRow DefaultTextInBag() const
    {
        SettingRow row = *this;
        row.bagDefaultIsText = true;
        return row;
    }
};

namespace settingrow {
constexpr SettingRow B(std::string_view name, bool on = false)
{
    return {.name = name, .kind = SettingKind::Boolean, .number = on ? 1.0 : 0.0, .text = {}, .bagKey = {}};
}
constexpr SettingRow I(std::string_view name, int number = 0, int low = -32768, int high = 32767)
{
    return {.name = name,
            .kind = SettingKind::Integer,
            .number = double(number),
            .text = {},
            .low = double(low),
            .high = double(high),
            .bagKey = {}};
}
constexpr SettingRow F(std::string_view name, double number, double low, double high)
{
    return {
        .name = name, .kind = SettingKind::Float, .number = number, .text = {}, .low = low, .high = high, .bagKey = {}};
}
constexpr SettingRow T(std::string_view name, std::string_view text = {})
{
    return {.name = name, .kind = SettingKind::Text, .text = text, .bagKey = {}};
}
constexpr int Least32 = -2147483647 - 1, Most32 = 2147483647;
} // namespace settingrow

// The order is that of the object's slots.
inline constexpr auto SettingsTable = [] {
    using namespace settingrow;
    // A row a line.
    // clang-format off
    return std::array{
        I("Device", 0, 0, 7),
        I("Port", 0, 0, 32767),
        I("Baud", 4, 0, 9), // index: 300 1200 2400 4800 9600 14400 19200 38400 57600 115200
        I("Parity", 0, 0, 4),
        I("DataBits", 8, 5, 8),
        I("StopBits", 1, 1, 2),
        I("Handshake", 0, 0, 4),
        I("Duplex", 0, 0, 2), // 0 full, 1 half (what is typed is shown here), 2 local (nothing goes out)
        B("Strip8th"),
        T("HostName"),
        T("HostPort"),
        T("HostTermType"), // empty: the terminal type's own name
        B("TelnetBinary"),
        B("TelnetEcho"),
        B("TelnetBypass"),
        B("TelnetAltBreak"),
        I("ConnectTimeout", 0, 0, 32767), // seconds; 0: the device's own
        B("AutoAnswer"),
        I("TermType", 0, 0, 99),
        T("AnswerBack").As("sAnswerback"),
        T("FontName", "Kestrune"),
        F("FontSize", 0, 0, 400), // points; 0: the view's own
        B("ScaleFont", true),
        B("BoldFont"),
        B("LegibleFont"),
        I("NormCols", 80, 1, 1000),
        I("NormRows", 24, 1, 500),
        I("ExtCols", 132, 1, 1000), // the extended size, which DECCOLM changes to
        I("ExtRows", 24, 1, 500),
        I("Pages", 1, 1, 32767), // of memory; more than 32 are 32
        B("GmodeEnable", true),
        B("MouseEnable", true),
        I("ProtectAttr", 16, 0, 63),
        I("CursorType", 0, 0, 5), // block, underline, bar: 0, 2, 4 blinking, 1, 3, 5 steady
        I("ScrMode", 0, 0, 1),    // 0 normal, 1 extended
        I("HistoryRows", 0, 0, 32767),
        T("PrinterName"),
        I("PrinterTimeout", 5),
        I("PrintJobEject"),
        I("PrintScreenEject"),
        I("PasteEOLMode"), // these four and PasteOptions: see pasteform.h
        I("PasteEOFMode"),
        I("PasteEOLChar"),
        I("PasteEOFChar"),
        B("MapUpperFKeys").As("sMapUpperFkeys"),
        T("DefaultCaptureDir"),
        T("DefaultXferDir"),
        I("DefaultXferMode"),
        I("DefaultXferOverwrite"),
        I("AsciiEOL"),
        I("AsciiDelay", 100),
        I("XModemTimeout", 10).As("sXmodemTimeout"),
        I("YModemTimeout", 10).As("sYmodemTimeout"),
        I("ZModemTimeout", 10).As("sZmodemTimeout"),
        B("ZModemAuto").As("sZmodemAuto"),
        I("KermitTimeout", 10),
        I("KermitInitRetry", 30),
        I("KermitErrRetry", 10),
        I("KermitEOL", 13),
        B("KermitQuote", true),
        B("KermitRept"),
        B("KermitCRC"),
        I("ScrollMode", 2),
        B("LockBaudRate"),
        B("OverrideModemConfig").As("sOverrideCfg"),
        T("Sound"), // of the bell: empty a flash, "none" nothing, else a wave file and a flash
        I("ScreenPrintMode", 1),
        I("SlavePrintMode"),
        T("PrinterFontName", "Courier New"),
        F("PrinterFontSize", 10, 0, 400),
        B("PrinterFontItalic"),
        B("PrinterFontBold"),
        I("PrinterPaperSize"),
        I("PrinterPaperSource"),
        I("PrinterOrientation"),
        I("PrinterColorMode"),
        B("PrintScreenBackground"),
        B("Ansi8Bit"), // what is sent begins with 8-bit controls until the host says otherwise
        B("AnsiAppKeypad"),
        B("AnsiAppCursor"),
        B("NoAutoWrap"),
        B("BkspSendsDel"),
        I("TelnetKeepalive"),
        B("TelnetNoDelay"),
        I("SSHKeepAlive"),
        B("SSHNoDelay"),
        I("SSHCipher"),
        I("SSHBreakCharacter"),
        B("LockFKeys"), // the host may not define function keys
        I("U2DeviceLicensing"),
        T("CharacterMapping"), // "A4=20AC 80=2022": other characters for bytes of the charset
        B("AnsiAutoPrint"),
        I("SSHAuth"),
        I("SSHVersion"),
        T("SSHKey"),
        // Rows below the screen for a status line: -1 one while the host has it on, 0 never, else always so many (4).
        I("MessageRows", -1),
        B("DisableAppMode"), // keys stay as they are when the host asks for application modes
        T("Charset"), // see emulator/engine/hostcharsets.h; empty: the terminal type's own
        T("BackgroundPictureFile"),
        I("BackgroundPictureMode").DefaultTextInBag(),
        I("BackgroundTransparency").DefaultTextInBag(),
        T("SlavePrinterName"),
        T("ScreenPrinterName"),
        I("ScreenPrintPaperSize"),
        I("ScreenPrintPaperSource"),
        I("ScreenPrintOrientation"),
        T("SlavePrintAdapterScript"),
        T("ScreenPrintAdapterScript"),
        I("DeviceLicenseMode"),
        B("SSHUseOnlyPreferredCipher"),
        B("TelnetKeepaliveIsNOP"),
        I("KeepaliveInterval", 0, 0, 32767), // seconds; 0: off
        I("BreakKeyAction"),
        B("TcpNoDelay"),
        B("TcpIdn"),
        I("CopySelMode"), // 0: a selection runs along the lines, 1: it is a block
        I("HostCertificateValidation", 0, Least32, Most32),
        T("ClientCertificateID"),
        I("HostKeyValidation", 0, Least32, Most32),
        T("HostKeyFingerprint"),
        I("PasteOptions"),
        // Kept for the macro recorder's comparison, which knows them.
        I("AttributeMask", 10),
        // 0 the user is asked, 1 it is tried at once, -1 no host is ever agreed with.
        I("ResumeAfterDisconnect", 0, -1, 1).DefaultTextInBag(),
        I("ResumeBufferSize", -1, Least32, Most32), // KB; -1: the line's own
        // Seconds before the first try, seconds between two, and how many; -1: 2, 5 and 5.
        I("ResumeReconnectDelay", -1, -1, 3600),
        I("ResumeReconnectInterval", -1, -1, 3600),
        I("ResumeRetryCount", -1, -1, 1000),
        B("ReflowOnResize", false), // a new width wraps lines anew, the history included
        I("ProxyType", 0, 0, 2), // 0 none, 1 SOCKS5, 2 HTTP CONNECT
        T("ProxyHost"),
        T("ProxyPort"),
        T("ProxyUser"), // its password is asked for and stands nowhere
        T("SSHJump"), // user@host:port, ...; none; empty: as the user's SSH configuration says
        T("SSHForwards"), // L8080:host:80, R2222:host:22, D1080
        B("SSHForwardAgent"),
        B("HostSetsClipboard"), // what the host offers for the clipboard (OSC 52) is put there
        B("CopyPlainText"),     // copies have no formatted form
    };
    // clang-format on
}();

// A setting's place in the table.
struct SettingId
{
    uint8_t index = 0;
    constexpr bool operator==(const SettingId&) const = default;
    constexpr const SettingRow& Row() const { return SettingsTable[index]; }
};
static_assert(SettingsTable.size() <= 256);

// Setting("TermType"): a name that no row has does not compile.
consteval SettingId Setting(std::string_view name)
{
    for (std::size_t i = 0; i < SettingsTable.size(); ++i)
        if (SettingsTable[i].name == name)
            return {uint8_t(i)};
    throw std::invalid_argument("no such setting");
}

consteval bool SettingNamesAreDistinct()
{
    for (std::size_t i = 0; i < SettingsTable.size(); ++i)
        for (std::size_t j = i + 1; j < SettingsTable.size(); ++j)
            if (SettingsTable[i].name == SettingsTable[j].name)
                return false;
    return true;
}
static_assert(SettingNamesAreDistinct(), "two rows have one name");

} // namespace kestrune
