#pragma once

// The emulator engine: bytes from the host in, a screen and answers to the host out. No window, no socket, no
// clock of its own. Columns and rows count from 0; row -1 is the newest line of the history. One thread.
//
// A host can never make it grow without bound: parameters, strings, clusters, links and history are capped.

#include <emulator/engine/cell.h>
#include <emulator/engine/keys.h>
#include <emulator/engine/softglyph.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace kestrune::emu {

struct Personality; // emulator/engine/personality.h: the declarative table of one terminal type

struct Size
{
    int cols = 80;
    int rows = 24;
    bool operator==(const Size&) const = default;
};

struct Position
{
    int col = 0;
    int row = 0;
    auto operator<=>(const Position&) const = default;
};

// How bytes 0x20 and up become characters before the terminal's own character sets come in.
enum class HostCharset
{
    Utf8,
    Latin1,
    Latin2,
    Latin3,
    Latin4,
    Cyrillic,
    Arabic,
    Greek,
    Hebrew,
    Latin5,
    Latin6,
    Thai,
    Latin7,
    Latin8,
    Latin9,
    Latin10,
    Cp437,
    Cp737,
    Cp775,
    Cp850,
    Cp852,
    Cp855,
    Cp857,
    Cp858,
    Cp860,
    Cp861,
    Cp862,
    Cp863,
    Cp865,
    Cp866,
    Windows1250,
    Windows1251,
    Windows1252,
    Windows1253,
    Windows1254,
    Windows1257,
    Koi8R,
    Koi8U
};

// What the Backspace key sends until the host says otherwise (DECBKM).
enum class BackspaceKey : uint8_t
{
    AsType, // as the real terminal did
    Bs,
    Del
};

enum class CursorShape : uint8_t // in the order of DECSCUSR 1 to 6
{
    BlinkBlock,
    Block,
    BlinkUnderline,
    UnderlineBar,
    BlinkBar,
    Bar
};

struct TerminalOptions
{
    Size size;
    Size extended{132, 0}; // what DECCOLM and ShowExtended change to; no rows: as many as there are
    bool startsExtended = false;
    bool reflow = false;  // a new width wraps lines anew, history included
    int pages = 1;        // of memory, 1 to 32
    int messageRows = -1; // for a status line: 0 none, -1 one while the host has it on, else always so many, at most 4
    int historyRows = 0;  // lines kept above the screen, 0 to 1,000,000
    HostCharset charset = HostCharset::Latin1;
    std::u16string upperHalf;     // other characters for bytes 0x80 to 0xFF, all 128 of them; empty: the charset's own
    bool eightBitControls = true; // 0x80..0x9F are C1 controls where the type has them and the charset allows
    bool autoWrap = true;
    bool applicationCursor = false; // power-up states of DECCKM and DECKPAM
    bool applicationKeypad = false;
    bool eightBitReplies = false;        // answers and keys begin with 0x90, 0x9B and the like (S8C1T) from the start
    bool ignoreApplicationModes = false; // DECCKM and DECKPAM are taken, but keys send what they do without
    bool lockFunctionKeys = false;       // the host may not define what they send (DECUDK)
    BackspaceKey backspace = BackspaceKey::AsType;
    CursorShape cursor = CursorShape::BlinkBlock; // until the host asks for another
    std::string answerBack;                       // bytes sent for ENQ, at most 255
};

enum class LineSize : uint8_t
{
    Normal,
    DoubleWidth,
    DoubleTop,
    DoubleBottom
};

// A look at one row. Valid until the terminal is next changed; of the history, 512 rows can be looked at side by
// side, a further one may take the place of the oldest look. cells may be shorter than the screen is wide: the
// rest is blank in the plain style (history keeps only the used part of a line).
struct RowView
{
    std::span<const Cell> cells;
    uint64_t generation = 0; // changes whenever anything in the row does; never the same for two contents
    bool wraps = false;      // the text goes on in the next row without a line end
    LineSize size = LineSize::Normal;
};

enum class MouseReport : uint8_t
{
    None,
    Click,
    Drag,
    Motion
};               // X10/normal, button motion, any motion
struct ModesView // what drawing and input need to know
{
    bool applicationCursor = false;
    bool applicationKeypad = false;
    bool alternateScreen = false;
    bool extended = false;   // the screen has the extended size
    bool rowsOfHost = false; // the host has said how many rows it shows (DECSNLS), whatever the window has room for
    bool reverseScreen = false;
    bool cursorVisible = true;
    bool bracketedPaste = false;
    bool focusReports = false;
    bool newLine = false;            // Enter sends CR LF
    bool localEcho = false;          // SRM reset
    bool backspaceSendsBs = true;    // DECBKM
    bool autoRepeat = true;          // DECARM: a key that is held down goes on sending
    bool synchronizedUpdate = false; // hold drawing
    bool smoothScroll = false;       // DECSCLM
    bool keyboardLocked = false;
    MouseReport mouse = MouseReport::None;
    CursorShape cursor = CursorShape::BlinkBlock;
};

// Notices, all made from inside Receive, Resize, Reset or SelectPersonality. The handler must not call back
// into the terminal except for reading.
class TerminalListener
{
public:
    virtual ~TerminalListener() = default;
    virtual void Reply(std::string_view bytes) = 0; // answers for the host
    virtual void Bell() {}
    virtual void TitleChanged(std::string_view utf8) { (void)utf8; } // cleaned of controls, capped in length
    virtual void ScreenSizeChanged(Size size) { (void)size; }        // the host asked for it (80/132) or Resize did it
    virtual void KeyboardLockChanged(bool locked) { (void)locked; }
    virtual void PrinterData(std::string_view bytes) { (void)bytes; }    // controller mode, auto print, print screen
    virtual void PrinterStateChanged(int state) { (void)state; }         // 1 auto print or controller mode, 0 idle
    virtual void HistoryAdded(int rows) { (void)rows; }                  // sum of one Receive or Resize
    virtual void ClipboardOffered(std::string_view utf8) { (void)utf8; } // OSC 52 write; taken only if allowed
};

class Terminal
{
public:
    Terminal(const TerminalOptions& options, const Personality& personality, TerminalListener& listener);
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // --- from the host. Any split of the same bytes gives the same screen.
    void Receive(std::string_view bytes);

    // --- from the user's side
    // 1..1000 cols, 1..500 rows, clamped. In extended size this is what the screen goes back to. True: lines were
    // wrapped anew; no line has the number of before (HistoryPushed), and `followed`, rows as for Row, have moved with
    // their text.
    bool Resize(Size size, std::span<Position> followed = {});
    void ShowExtended(bool on); // the text stays
    void SetPage(int page);     // 0 to PageCount() - 1, clamped; nothing while the host uses the alternate screen
    void SetHistoryRows(int rows);
    void SetCharset(HostCharset charset);
    // All of the options at once: size, history and charset as by the calls above, the power-up states of modes
    // also take effect now.
    void SetOptions(const TerminalOptions& options);
    void SelectPersonality(const Personality& personality); // the screen stays
    void Reset();                                           // to the power-up state; history stays
    void ClearHistory();

    // --- from a program on this side, whatever sequence the host's stream is in the middle of
    void PutText(Position at, std::string_view utf8,
                 const Style& style);                               // stops at the end of the row; the cursor stays
    void EraseArea(Position from, Position to, const Style& style); // a rectangle, both corners in it
    void SetLineSize(int row, LineSize size);
    // What is read, put and erased inside act is on that page of memory, 0 to PageCount() - 1; what is shown stays.
    void OnPage(int page, const std::function<void()>& act);
    uint16_t LinkTo(std::string_view target); // for a Style; 0: there are too many
    void MoveCursor(Position to);
    // The host has gone: an open sequence is dropped, the alternate screen and all modes of input end, and the text
    // stands dim on a line of its own.
    void PrintNotice(std::string_view utf8);

    // --- reading. A host can make pages longer than the screen (DECSLPP): row 0 is then the first that is shown, and
    // those of the page above it are the newest of the history.
    Size ScreenSize() const;
    Size NormalSize() const; // the same, but for the extended size
    int StatusRows() const;  // rows below the screen: Row(ScreenSize().rows) is the first of them
    int PageCount() const;
    int Page() const;         // where the cursor is; another one may be shown
    Position Cursor() const;  // col == cols - 1 with a wrap pending; on the screen, even when it is not seen
    int HistoryCount() const; // rows -HistoryCount() .. -1 exist
    // Lines ever moved to the history, less those that a taller screen took back: HistoryPushed() + row names the
    // same line for as long as it exists, which keeps selections in place.
    uint64_t HistoryPushed() const;
    RowView Row(int row) const; // -HistoryCount() .. rows - 1, and the status line's
    const Style& StyleOf(StyleId id) const;
    std::u32string_view ClusterOf(uint32_t text) const; // for cells with ClusterBit
    std::string_view LinkOf(uint16_t link) const;
    uint64_t Generation() const; // changes with anything visible, the cursor included
    ModesView Modes() const;
    // 0: none; 0x01RRGGBB set by the host. index 0 to 255; 256 foreground, 257 background, 258 cursor.
    uint32_t PaletteOverride(int index) const;
    // The shape that the host has drawn for a character (IsSoftPoint), valid until the terminal is next changed;
    // nullptr: none. SoftGlyphChanges goes up when any of them may look different.
    const SoftGlyph* SoftGlyphOf(char32_t point) const;
    uint64_t SoftGlyphChanges() const;
    const Personality& CurrentPersonality() const;
    // Text of a stretch of one row, UTF-8, trailing blanks kept; wide characters once.
    std::string TextOf(int row, int fromCol, int cols) const;

    // --- to the host: bytes that a key, a mouse action or a paste sends under the present modes
    std::string KeyBytes(const KeyPress& key) const;         // empty: no such key, or the host has locked the keyboard
    std::string MouseBytes(const MouseAction& action) const; // empty: not reported
    std::string FocusBytes(bool gained) const;
    std::string
    PasteBytes(std::string_view utf8) const; // controls and end-of-paste marks removed, in brackets if asked
    std::string EncodeText(std::string_view utf8) const; // typed text in the host's charset; '?' for what it lacks

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace kestrune::emu
