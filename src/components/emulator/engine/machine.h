#pragma once

// The terminal behind the public door: takes what the parser cuts out of the host's bytes, finds it in the tables
// of the present type and does it to the screen. The tables stand in controls.cpp, modes.cpp, sgr.cpp and
// reports.cpp; their handlers use the operations below.

#include "hostmacros.h"
#include "parser.h"
#include "screen.h"
#include "softcharacters.h"
#include "userkeys.h"

#include <array>
#include <string>

namespace kestrune::emu {

// How bytes are shown that a PC's ROM has glyphs for (SGR 10, 11, 12 of the PC consoles).
enum class RomFont : uint8_t
{
    Off,
    Controls, // control codes and the upper half as glyphs
    HighHalf  // 0x20 to 0x7E are drawn as 0xA0 to 0xFE
};

enum class StatusKind : uint8_t // DECSSDT
{
    None,
    Indicator, // the terminal's own: page and place of the cursor
    HostWritable
};

// Palette places beyond the 256 colours.
inline constexpr int PaletteForeground = 256;
inline constexpr int PaletteBackground = 257;
inline constexpr int PaletteCursor = 258;
inline constexpr int PaletteSize = 259;

class Machine final : public ParserSink, public LineWatcher
{
public:
    Machine(const TerminalOptions& options, const Personality& personality, TerminalListener& listener);

    // --- the public door, see terminal.h
    void Receive(std::string_view bytes);
    bool Resize(Size size, std::span<Position> followed = {});
    void ShowExtended(bool on);
    void SetPage(int page);
    Size NormalSize() const { return normalSize_; }
    void SetCharset(HostCharset charset);
    void SetOptions(const TerminalOptions& options);
    void SelectPersonality(const Personality& personality);
    void HardReset(); // RIS
    void PutText(Position at, std::string_view utf8, const Style& style);
    void EraseArea(Position from, Position to, const Style& style);
    void SetLineSize(int row, LineSize size);
    void MoveCursor(Position to);
    void PrintNotice(std::string_view utf8);
    ModesView View() const;
    uint32_t PaletteOverride(int index) const;
    void SetPaletteColor(int index, uint32_t color) { palette_[size_t(index)] = color; } // 0: the user's own

    // --- what the tables work on
    Screen& Display() { return screen_; }
    const Screen& Display() const { return screen_; }
    Modes& Switches() { return modes_; }
    const Modes& Switches() const { return modes_; }
    const Personality& Type() const { return *personality_; }
    TerminalListener& Listener() { return listener_; }
    HostCharset Charset() const { return charset_; }
    char32_t PointOf(uint8_t byte) const;      // in the host's encoding, as the user has mapped it
    std::string Encoded(char32_t point) const; // the other way round
    bool IgnoresApplicationModes() const { return options_.ignoreApplicationModes; }
    Dialects Speaks() const { return speaks_; }
    bool Speaks(Dialects any) const { return (speaks_ & any) != 0; }
    bool IsVt52() const;
    int Level() const { return level_; }
    bool SendsEightBit() const;

    std::string InSentForm(std::string_view sevenBit) const; // shortened when 8-bit controls are sent
    void Reply(std::string_view sevenBit);
    void ReplyControl(std::string_view afterCsi); // CSI ...
    void ReplyDcs(std::string_view body);         // DCS ... ST
    void SendAnswerBack();
    void ApplySgr(const Params& params);
    std::string SgrSetting() const; // for DECRQSS
    void SetModes(const ControlSequence& sequence, bool on);
    void SetMode(const ModeRow& row, bool on);
    void SoftReset();
    void SetLevel(int level, bool eightBit); // DECSCL
    void LowerToVt100();                     // without the soft reset of DECSCL
    void SetEightBitReplies(bool on) { eightBitReplies_ = on; }
    void Designate(int which, bool wide96, std::string_view designator);
    void LockingShift(int which) { screen_.Charsets().gl = which; }
    void LockingShiftRight(int which) { screen_.Charsets().gr = which; }
    void SingleShift(int which) { singleShift_ = which; }
    int PendingShift() const { return singleShift_; } // -1: none
    const SoftCharacters& Soft() const { return softCharacters_; }
    char32_t GraphicFor(uint8_t byte) const;                  // what a graphic byte shows under the present sets
    void PreferSet(std::string_view designator, bool wide96); // DECAUPSS; one that is unknown changes nothing
    const CharacterSet& PreferredSet() const { return *preferredSet_; }
    ChangeExtent AttributeExtent() const { return attributeExtent_; } // DECSACE
    void SetAttributeExtent(ChangeExtent extent) { attributeExtent_ = extent; }
    const UserKeys& FunctionKeys() const { return userKeys_; }
    bool FunctionKeysLocked() const { return options_.lockFunctionKeys || userKeys_.IsLocked(); } // for the host
    const HostMacros& Macros() const { return macros_; }
    void InvokeMacro(int id);
    void SetRomFont(RomFont font) { romFont_ = font; }
    void SelectUtf8(bool on); // ESC % G, ESC % @
    void SetCursorShape(CursorShape shape) { cursorShape_ = shape; }
    CursorShape UsualShape() const { return options_.cursor; } // the user's choice
    CursorShape Shape() const { return cursorShape_; }
    void UpdateRules(); // after a change of type, level, charset or VT52 mode
    void SetColumns132(bool on);
    void SetLinesPerPage(int lines);  // DECSLPP; 0: as many as are shown
    void SetLinesOnScreen(int lines); // DECSNLS; 0: as many as the window has room for
    // DECSCPP: the same with nothing cleared. Lines are not wrapped anew for a host: it could ask without end.
    bool FitSize(bool extended, WrappedLines lines = WrappedLines::AsTheyAre, std::span<Position> followed = {});
    StatusKind StatusLine() const { return statusKind_; }
    void SelectStatusKind(StatusKind kind); // DECSSDT
    void SelectStatusDisplay(bool on);      // DECSASD
    void SwitchAlternate(bool on, Mode how);
    void ReportStatus(const ControlSequence& sequence);
    void ReportMode(const ControlSequence& sequence);

    // --- printing
    void MediaCopy(int selector, bool isPrivate);
    void PrintRows(int from, int to, bool formFeed);
    void PrintAllPages();
    void StartPrinterController();

    // --- ParserSink
    void Ascii(std::span<const uint8_t> run) override;
    void HighBytes(std::span<const uint8_t> run) override;
    void Points(std::span<const char32_t> run) override { screen_.WritePoints(run); }
    void Execute(uint8_t control) override;
    void Delete() override;
    void LineEnd() override;
    LinesTaken Lines(std::span<const uint8_t> bytes) override;
    void Aborted(uint8_t by) override;
    void Escape(std::string_view intermediates, char final) override;
    void Control(const ControlSequence& sequence) override;
    void String(StringKind kind, std::string_view body) override;
    void Vt52Address(int row, int col) override;
    void ToPrinter(std::span<const uint8_t> bytes) override;
    void PrinterEnds() override;
    // --- LineWatcher
    void LineLeft(int row) override;

private:
    static constexpr size_t kEscapeKeys = size_t{17} * 80; // intermediate, final from 0x30
    static constexpr size_t kControlKeys = size_t{5} * 17 * 64;

    void PowerUp();
    void TakeKeyOptions();
    Size ExtendedSize() const;
    void TakePageFormat(int linesPerPage, int linesOnScreen);
    int WantedPages() const;
    WrappedLines LinesForUser() const { return options_.reflow ? WrappedLines::WrappedAnew : WrappedLines::AsTheyAre; }
    void FitStatusRows();
    void UpdateIndicator();
    void BuildIndex();
    void Changed(); // tells what one call did
    char32_t PointThrough(const CharacterSet& set, uint8_t byte) const;
    void WriteThrough(const CharacterSet& set, std::span<const uint8_t> run);
    void DeviceControl(std::string_view body);
    void OperatingSystemCommand(std::string_view body);
    void RequestSetting(std::string_view request);
    void SetTitle(std::string_view text);
    void SetColors(int first, std::string_view specs);
    void SetPalette(std::string_view pairs);
    void ResetPalette(std::string_view indexes);
    void SetLink(std::string_view body);
    void OfferClipboard(std::string_view body);
    void LinuxPalette(std::string_view digits);
    void TellPrinterState();

    TerminalOptions options_;
    const Personality* personality_;
    TerminalListener& listener_;
    Modes modes_;
    Screen screen_;
    Parser parser_{*this};
    HostCharset charset_;
    Dialects speaks_ = 0;
    int level_ = 0;
    bool eightBitReplies_ = false;
    int singleShift_ = -1;
    UserKeys userKeys_;
    HostMacros macros_;
    SoftCharacters softCharacters_;
    int macroDepth_ = 0;
    size_t macroBytes_ = 0; // received from macros since the outermost one began
    const CharacterSet* preferredSet_ = &SupplementalSet();
    ChangeExtent attributeExtent_ = ChangeExtent::Stream;
    RomFont romFont_ = RomFont::Off;
    CursorShape cursorShape_ = CursorShape::BlinkBlock;
    Size normalSize_;
    int linesPerPage_ = 0; // as the host has set them; 0: it has not
    int linesOnScreen_ = 0;
    StatusKind statusKind_ = StatusKind::None;
    std::u32string indicator_; // as it stands
    bool printing_ = false;
    int printerState_ = 0;
    std::array<uint32_t, PaletteSize> palette_{};
    // Rows of the tables by what the host sends, for the present dialects; 0 is none, else the row plus one.
    std::array<uint8_t, 32> characters_{};
    std::array<uint8_t, kEscapeKeys> escapes_{};
    std::array<uint8_t, kControlKeys> controls_{};
};

} // namespace kestrune::emu
