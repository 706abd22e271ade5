#include "controls.h"

#include "areas.h"
#include "pcconsole.h"
#include "presentation.h"
#include "terminalstate.h"

#include <algorithm>

namespace kestrune::emu {
namespace {

using namespace Dialect;

constexpr Dialects PcConsoles = Linux | Ansi | Sco;

// Parameter to selector; what is out of range selects nothing.
template <typename Run>
void WithErase(const Params& params, Run&& run)
{
    if (const int what = params.At(0); what <= 2)
        run(Erase(what));
}

void FormFeed(Machine& m)
{
    if (!m.Type().formFeedClears) {
        m.Display().LineFeed();
        return;
    }
    m.Display().ClearPage();
}

void LineFeed(Machine& m)
{
    m.Display().LineFeed();
    if (m.Switches().Has(Mode::NewLine))
        m.Display().CarriageReturn();
}

void NextLine(Machine& m)
{
    m.Display().Index();
    m.Display().CarriageReturn();
}

constexpr CharacterRow kCharacters[] = {
    {0x05, "ENQ", [](Machine& m) { m.SendAnswerBack(); }},
    {0x07, "BEL", [](Machine& m) { m.Listener().Bell(); }},
    {0x08, "BS", [](Machine& m) { m.Display().Backspace(); }},
    {0x09, "HT", [](Machine& m) { m.Display().Tab(1); }},
    {0x0A, "LF", LineFeed},
    {0x0B, "VT", LineFeed},
    {0x0C, "FF", FormFeed},
    {0x0D, "CR", [](Machine& m) { m.Display().CarriageReturn(); }},
    {0x0E, "SO", [](Machine& m) { m.LockingShift(1); }},
    {0x0F, "SI", [](Machine& m) { m.LockingShift(0); }},
};

void Identify(Machine& m)
{
    const bool loweredToVt100 = m.Level() == 1 && m.Type().level > 1;
    m.ReplyControl(loweredToVt100 ? "?1;2c" : m.Type().primaryAttributes);
}

void KeypadMode(Machine& m, bool on) { m.Switches().Set(Mode::NumericKeypad, on); }

void LeaveVt52(Machine& m)
{
    m.Switches().Set(Mode::Ansi, true);
    m.LowerToVt100(); // whatever level it had: the later models come back as a VT100, until the next DECSCL
}

void Vt52Graphics(Machine& m, bool on)
{
    m.Display().Charsets().g[0] = on ? &SpecialGraphicsSet() : &AsciiSet();
    m.LockingShift(0);
}

constexpr EscapeRow kEscapes[] = {
    {"7", "DECSC", Common, [](Machine& m) { m.Display().SaveCursor(); }},
    {"8", "DECRC", Common, [](Machine& m) { m.Display().RestoreCursor(); }},
    {"=", "DECKPAM", Common | Vt52, [](Machine& m) { KeypadMode(m, true); }},
    {">", "DECKPNM", Common | Vt52, [](Machine& m) { KeypadMode(m, false); }},
    {"D", "IND", Common, [](Machine& m) { m.Display().Index(); }},
    {"E", "NEL", Common, NextLine},
    {"H", "HTS", Common, [](Machine& m) { m.Display().SetTab(); }},
    {"M", "RI", Common, [](Machine& m) { m.Display().ReverseIndex(); }},
    {"Z", "DECID", Common, Identify},
    {"c", "RIS", Common, [](Machine& m) { m.HardReset(); }},
    {"N", "SS2", Vt220, [](Machine& m) { m.SingleShift(2); }},
    {"O", "SS3", Vt220, [](Machine& m) { m.SingleShift(3); }},
    {"n", "LS2", Vt220, [](Machine& m) { m.LockingShift(2); }},
    {"o", "LS3", Vt220, [](Machine& m) { m.LockingShift(3); }},
    {"~", "LS1R", Vt220, [](Machine& m) { m.LockingShiftRight(1); }},
    {"}", "LS2R", Vt220, [](Machine& m) { m.LockingShiftRight(2); }},
    {"|", "LS3R", Vt220, [](Machine& m) { m.LockingShiftRight(3); }},
    {"#3", "DECDHL", Vt100, [](Machine& m) { m.Display().SetLineSize(LineSize::DoubleTop); }},
    {"#4", "DECDHL", Vt100, [](Machine& m) { m.Display().SetLineSize(LineSize::DoubleBottom); }},
    {"#5", "DECSWL", Vt100, [](Machine& m) { m.Display().SetLineSize(LineSize::Normal); }},
    {"#6", "DECDWL", Vt100, [](Machine& m) { m.Display().SetLineSize(LineSize::DoubleWidth); }},
    {"#8", "DECALN", Common, [](Machine& m) { m.Display().Align(); }},
    {" F", "S7C1T", Vt220, [](Machine& m) { m.SetEightBitReplies(false); }},
    {" G", "S8C1T", Vt220, [](Machine& m) { m.SetEightBitReplies(true); }},
    {"%@", "DOCS", Common, [](Machine& m) { m.SelectUtf8(false); }}, // ISO 2022
    {"%G", "DOCS", Common, [](Machine& m) { m.SelectUtf8(true); }},
    {"6", "DECBI", Vt420, [](Machine& m) { m.Display().BackIndex(); }},
    {"9", "DECFI", Vt420, [](Machine& m) { m.Display().ForwardIndex(); }},
    {"D", "scroll up", Ansi, pc::ScrollOneUp},
    {"M", "scroll down", Ansi, pc::ScrollOneDown},
    {"l", "lock lines", Sco, [](Machine& m) { pc::ScoLockLines(m, true); }},
    {"m", "unlock lines", Sco, [](Machine& m) { pc::ScoLockLines(m, false); }},
    {"%8", "DOCS", Linux, [](Machine& m) { m.SelectUtf8(true); }},
    // VT52, native or as a mode
    {"A", "CUU", Vt52, [](Machine& m) { m.Display().MoveUp(1); }},
    {"B", "CUD", Vt52, [](Machine& m) { m.Display().MoveDown(1); }},
    {"C", "CUF", Vt52, [](Machine& m) { m.Display().MoveRight(1); }},
    {"D", "CUB", Vt52, [](Machine& m) { m.Display().MoveLeft(1); }},
    {"F", "graphics on", Vt52, [](Machine& m) { Vt52Graphics(m, true); }},
    {"G", "graphics off", Vt52, [](Machine& m) { Vt52Graphics(m, false); }},
    {"H", "home", Vt52, [](Machine& m) { m.Display().MoveTo(0, 0); }},
    {"I", "RI", Vt52, [](Machine& m) { m.Display().ReverseIndex(); }},
    {"J", "ED", Vt52, [](Machine& m) { m.Display().EraseDisplay(Erase::ToEnd, Selective::No); }},
    {"K", "EL", Vt52, [](Machine& m) { m.Display().EraseLine(Erase::ToEnd, Selective::No); }},
    {"Z", "identify", Vt52, [](Machine& m) { m.Reply(m.Type().vt52Identity); }},
    {"<", "DECANM", Vt52, LeaveVt52},
    {"^", "auto print on", Vt52, [](Machine& m) { m.MediaCopy(5, true); }},
    {"_", "auto print off", Vt52, [](Machine& m) { m.MediaCopy(4, true); }},
    {"W", "printer controller on", Vt52, [](Machine& m) { m.MediaCopy(5, false); }},
    {"]", "print screen", Vt52, [](Machine& m) { m.MediaCopy(0, false); }},
    {"V", "print cursor line", Vt52, [](Machine& m) { m.MediaCopy(1, true); }},
};

void CursorPosition(Machine& m, const ControlSequence& s)
{
    m.Display().MoveTo(s.params.Count(0) - 1, s.params.Count(1) - 1);
}

void SetTopAndBottom(Machine& m, const ControlSequence& s)
{
    const int rows = m.Display().Extent().rows;
    const int bottom = s.params.At(1) == 0 ? rows : s.params.At(1);
    m.Display().SetMargins(s.params.Count(0) - 1, bottom - 1);
}

void EraseInDisplay(Machine& m, const ControlSequence& s)
{
    if (s.params.At(0) == 3) { // not in ECMA-48: hosts clear the history so
        m.Display().EraseHistory();
        return;
    }
    WithErase(s.params, [&](Erase what) {
        m.Display().EraseDisplay(what, Selective::No);
        if (what == Erase::All && m.Type().clearHomes)
            m.Display().MoveTo(0, 0);
    });
}

void TabClear(Machine& m, const ControlSequence& s)
{
    if (s.params.At(0) == 0)
        m.Display().ClearTab();
    else if (s.params.At(0) == 3)
        m.Display().ClearTabs();
}

void CharacterProtection(Machine& m, const ControlSequence& s)
{
    uint16_t& attributes = m.Display().Pen().attributes;
    if (s.params.At(0) == 1)
        attributes |= Attr::Protected;
    else if (s.params.At(0) == 0 || s.params.At(0) == 2)
        attributes &= uint16_t(~Attr::Protected);
}

void CursorStyle(Machine& m, const ControlSequence& s)
{
    // 0 is what programs send when they end: back to what the user has chosen, the blinking block by default.
    if (const int style = s.params.At(0); style <= 6)
        m.SetCursorShape(style == 0 ? m.UsualShape() : CursorShape(style - 1));
}

// console_codes(4): the low four bits are a size, from an underline to the whole cell.
void LinuxCursor(Machine& m, const ControlSequence& s)
{
    const int size = s.params.At(0) & 15;
    m.Switches().Set(Mode::CursorVisible, m.Switches().Has(Mode::CursorVisible) && size != 1);
    m.SetCursorShape(size >= 2 && size <= 5 ? CursorShape::BlinkUnderline
                     : size == 0            ? m.UsualShape()
                                            : CursorShape::BlinkBlock);
}

void ConformanceLevel(Machine& m, const ControlSequence& s)
{
    if (m.Type().level < 2)
        return;
    if (const int level = s.params.At(0) - 60; level >= 1 && level <= 5)
        m.SetLevel(level, s.params.At(1, 1) != 1);
}

void TerminalParameters(Machine& m, const ControlSequence& s)
{
    if (const int kind = s.params.At(0); kind <= 1) // no parity, 8 bits, 9600 both ways
        m.ReplyControl(kind == 0 ? "2;1;1;112;112;1;0x" : "3;1;1;112;112;1;0x");
}

void PrimaryAttributes(Machine& m, const ControlSequence& s)
{
    if (s.params.At(0) == 0)
        Identify(m);
}

void SecondaryAttributes(Machine& m, const ControlSequence& s)
{
    if (s.params.At(0) == 0)
        m.ReplyControl(m.Type().secondaryAttributes);
}

void TertiaryAttributes(Machine& m, const ControlSequence& s)
{
    if (s.params.At(0) == 0 && !m.Type().tertiaryAttributes.empty())
        m.ReplyDcs(m.Type().tertiaryAttributes);
}

void ColumnsPerPage(Machine& m, const ControlSequence& s)
{
    if (const int columns = s.params.At(0); columns == 0 || columns == 80 || columns == 132)
        m.FitSize(columns == 132);
}

// The next of the models' numbers of lines that is no smaller; 0: there is none.
int NextNumber(std::span<const int> numbers, int wanted)
{
    const auto at = std::lower_bound(numbers.begin(), numbers.end(), wanted);
    return at == numbers.end() ? 0 : *at;
}

constexpr int kLinesPerPage[] = {24, 25, 36, 48, 72, 144};
constexpr int kLinesOnScreen[] = {24, 36, 48};

// Small numbers, and more than one, ask for things that windows do, which the models had none of.
void LinesPerPage(Machine& m, const ControlSequence& s)
{
    if (s.params.Size() > 1 || s.params.At(0) < kLinesPerPage[0])
        return;
    if (const int lines = NextNumber(kLinesPerPage, s.params.At(0)); lines != 0)
        m.SetLinesPerPage(lines);
}

void LinesOnScreen(Machine& m, const ControlSequence& s)
{
    if (const int lines = NextNumber(kLinesOnScreen, s.params.At(0)); lines != 0)
        m.SetLinesOnScreen(lines);
}

// Of a page that is longer than the screen another part is shown; else the lines move.
void ScrollOrPan(Machine& m, int lines)
{
    Screen& screen = m.Display();
    if (screen.WindowRows() < screen.ScreenExtent().rows && !screen.IsOnStatusLine())
        screen.Pan(lines);
    else if (lines > 0)
        screen.ScrollUp(lines);
    else
        screen.ScrollDown(-lines);
}

void DisplayedExtent(Machine& m, const ControlSequence&)
{
    const Screen& screen = m.Display();
    m.ReplyControl(std::to_string(screen.WindowRows()) + ';' + std::to_string(screen.ScreenExtent().cols) + ";1;" +
                   std::to_string(screen.WindowTop() + 1) + ';' + std::to_string(screen.ShownPage() + 1) + "\"w");
}

// NP and PP, to the upper left corner of another page. Where there is but one they do nothing.
void StepPages(Machine& m, int count)
{
    Screen& screen = m.Display();
    if (screen.PageCount() == 1 || screen.IsAlternate() || screen.IsOnStatusLine())
        return;
    screen.GoToPage(screen.ActivePage() + count);
    screen.MoveTo(0, 0);
}

using Seq = const ControlSequence&;

constexpr ControlRow kControls[] = {
    {"@", "ICH", Common, [](Machine& m, Seq s) { m.Display().InsertCharacters(s.params.Count(0)); }},
    {"A", "CUU", Common, [](Machine& m, Seq s) { m.Display().MoveUp(s.params.Count(0)); }},
    {"B", "CUD", Common, [](Machine& m, Seq s) { m.Display().MoveDown(s.params.Count(0)); }},
    {"C", "CUF", Common, [](Machine& m, Seq s) { m.Display().MoveRight(s.params.Count(0)); }},
    {"D", "CUB", Common, [](Machine& m, Seq s) { m.Display().MoveLeft(s.params.Count(0)); }},
    {"E", "CNL", Common,
     [](Machine& m, Seq s) {
         m.Display().MoveDown(s.params.Count(0));
         m.Display().CarriageReturn();
     }},
    {"F", "CPL", Common,
     [](Machine& m, Seq s) {
         m.Display().MoveUp(s.params.Count(0));
         m.Display().CarriageReturn();
     }},
    {"G", "CHA", Common, [](Machine& m, Seq s) { m.Display().MoveToColumn(s.params.Count(0) - 1); }},
    {"H", "CUP", Common, CursorPosition},
    {"I", "CHT", Common, [](Machine& m, Seq s) { m.Display().Tab(s.params.Count(0)); }},
    {"J", "ED", Common, EraseInDisplay},
    {"K", "EL", Common,
     [](Machine& m, Seq s) { WithErase(s.params, [&](Erase what) { m.Display().EraseLine(what, Selective::No); }); }},
    {"L", "IL", Common, [](Machine& m, Seq s) { m.Display().InsertLines(s.params.Count(0)); }},
    {"M", "DL", Common, [](Machine& m, Seq s) { m.Display().DeleteLines(s.params.Count(0)); }},
    {"P", "DCH", Common, [](Machine& m, Seq s) { m.Display().DeleteCharacters(s.params.Count(0)); }},
    {"S", "SU", Common, [](Machine& m, Seq s) { ScrollOrPan(m, s.params.Count(0)); }},
    {"T", "SD", Common,
     [](Machine& m, Seq s) {
         if (s.params.Size() <= 1) // with more it asks for a way of mouse tracking that we lack
             ScrollOrPan(m, -s.params.Count(0));
     }},
    {"X", "ECH", Common, [](Machine& m, Seq s) { m.Display().EraseCharacters(s.params.Count(0)); }},
    {"Z", "CBT", Common, [](Machine& m, Seq s) { m.Display().BackTab(s.params.Count(0)); }},
    {"`", "HPA", Common, [](Machine& m, Seq s) { m.Display().MoveToColumn(s.params.Count(0) - 1); }},
    {"a", "HPR", Common, [](Machine& m, Seq s) { m.Display().MoveRight(s.params.Count(0)); }},
    {"b", "REP", Extension, [](Machine& m, Seq s) { m.Display().Repeat(s.params.Count(0)); }},
    {"c", "DA1", Common, PrimaryAttributes},
    {">c", "DA2", Common, SecondaryAttributes},
    {"=c", "DA3", Vt420, TertiaryAttributes},
    {"?c", "cursor size", Linux, LinuxCursor},
    {"d", "VPA", Common, [](Machine& m, Seq s) { m.Display().MoveToRow(s.params.Count(0) - 1); }},
    {"e", "VPR", Common, [](Machine& m, Seq s) { m.Display().MoveDown(s.params.Count(0)); }},
    {"f", "HVP", Common, CursorPosition},
    {"g", "TBC", Common, TabClear},
    {"h", "SM", Common, [](Machine& m, Seq s) { m.SetModes(s, true); }},
    {"?h", "DECSET", Common, [](Machine& m, Seq s) { m.SetModes(s, true); }},
    {"i", "MC", Common, [](Machine& m, Seq s) { m.MediaCopy(s.params.At(0), false); }},
    {"?i", "MC", Common, [](Machine& m, Seq s) { m.MediaCopy(s.params.At(0), true); }},
    {"l", "RM", Common, [](Machine& m, Seq s) { m.SetModes(s, false); }},
    {"?l", "DECRST", Common, [](Machine& m, Seq s) { m.SetModes(s, false); }},
    {"m", "SGR", Common, [](Machine& m, Seq s) { m.ApplySgr(s.params); }},
    {"n", "DSR", Common, [](Machine& m, Seq s) { m.ReportStatus(s); }},
    {"?n", "DSR", Vt220, [](Machine& m, Seq s) { m.ReportStatus(s); }},
    {"!p", "DECSTR", Vt220, [](Machine& m, Seq) { m.SoftReset(); }},
    {"\"p", "DECSCL", Vt100, ConformanceLevel}, // also in level 1: it is the way back
    {"$p", "DECRQM", Vt320, [](Machine& m, Seq s) { m.ReportMode(s); }},
    {"?$p", "DECRQM", Vt320 | Extension, [](Machine& m, Seq s) { m.ReportMode(s); }},
    {" q", "DECSCUSR", Extension, CursorStyle},
    {"\"q", "DECSCA", Vt220, CharacterProtection},
    {"?J", "DECSED", Vt220,
     [](Machine& m, Seq s) {
         WithErase(s.params, [&](Erase what) { m.Display().EraseDisplay(what, Selective::Yes); });
     }},
    {"?K", "DECSEL", Vt220,
     [](Machine& m, Seq s) { WithErase(s.params, [&](Erase what) { m.Display().EraseLine(what, Selective::Yes); }); }},
    {"r", "DECSTBM", Common, SetTopAndBottom},
    {"r", "window", Sco, pc::ScoWindow},
    {"s", "DECSLRM", Vt420, areas::SetLeftAndRight},
    {"'}", "DECIC", Vt420, [](Machine& m, Seq s) { m.Display().InsertColumns(s.params.Count(0)); }},
    {"'~", "DECDC", Vt420, [](Machine& m, Seq s) { m.Display().DeleteColumns(s.params.Count(0)); }},
    {"$v", "DECCRA", Vt420, areas::Copy},
    {"$x", "DECFRA", Vt420, areas::Fill},
    {"$z", "DECERA", Vt420, areas::Erase},
    {"${", "DECSERA", Vt420, areas::EraseUnprotected},
    {"$r", "DECCARA", Vt420, areas::ChangeAttributes},
    {"$t", "DECRARA", Vt420, areas::ReverseAttributes},
    {"*x", "DECSACE", Vt420, areas::SelectExtent},
    {"*y", "DECRQCRA", Vt420, areas::Checksum},
    {"$|", "DECSCPP", Vt320, ColumnsPerPage},
    {"t", "DECSLPP", Vt320, LinesPerPage},
    {"*|", "DECSNLS", Vt420, LinesOnScreen},
    {"\"v", "DECRQDE", Vt420, DisplayedExtent},
    {"U", "NP", Vt420, [](Machine& m, Seq s) { StepPages(m, s.params.Count(0)); }},
    {"V", "PP", Vt420, [](Machine& m, Seq s) { StepPages(m, -s.params.Count(0)); }},
    {" P", "PPA", Vt420, [](Machine& m, Seq s) { m.Display().GoToPage(s.params.Count(0) - 1); }},
    {" Q", "PPR", Vt420, [](Machine& m, Seq s) { m.Display().GoToPage(m.Display().ActivePage() + s.params.Count(0)); }},
    {" R", "PPB", Vt420, [](Machine& m, Seq s) { m.Display().GoToPage(m.Display().ActivePage() - s.params.Count(0)); }},
    {"$~", "DECSSDT", Vt320,
     [](Machine& m, Seq s) {
         if (s.params.At(0) <= int(StatusKind::HostWritable))
             m.SelectStatusKind(StatusKind(s.params.At(0)));
     }},
    {"$}", "DECSASD", Vt320,
     [](Machine& m, Seq s) {
         if (s.params.At(0) <= 1)
             m.SelectStatusDisplay(s.params.At(0) == 1);
     }},
    {"*z", "DECINVM", Vt420, [](Machine& m, Seq s) { m.InvokeMacro(s.params.At(0)); }},
    {"$w", "DECRQPSR", Vt320, presentation::Report},
    {"&u", "DECRQUPSS", Vt320, presentation::ReportPreferredSet},
    {"$u", "DECRQTSR", Vt320, terminalstate::Report},
    {"U", "clear", Ansi, [](Machine& m, Seq) { pc::ClearAll(m); }},
    {"Y", "DL", Ansi, [](Machine& m, Seq s) { m.Display().DeleteLines(s.params.Count(0)); }}, // some boards
    {"b", "REP", Sco, pc::ScoRepeat},
    {"=B", "bell", Sco, [](Machine& m, Seq) { m.Listener().Bell(); }},
    {"=C", "cursor lines", Sco, pc::ScoCursorLines},
    {"=D", "background intensity", Sco, pc::ScoBackgroundIntensity},
    {"=E", "background intensity", Sco, pc::ScoBackgroundIntensity},
    {"=F", "foreground", Sco, pc::ScoColor},
    {"=G", "background", Sco, pc::ScoColor},
    {"=c", "cursor", Sco, pc::ScoCursor},
    {"=g", "glyph", Sco, pc::ScoGlyph},
    {"=l", "clear screen", Sco, pc::ScoClearScreen},
    {"=m", "margin", Sco, pc::ScoMargin},
    {"=r", "reset margins", Sco, [](Machine& m, Seq) { m.Display().ResetMargins(); }},
    {"=z", "clear tabs", Sco, [](Machine& m, Seq) { m.Display().ClearTabs(); }},
    {"s", "SCP", PcConsoles, [](Machine& m, Seq) { m.Display().SaveCursor(); }},
    {"u", "RCP", PcConsoles, [](Machine& m, Seq) { m.Display().RestoreCursor(); }},
    {"x", "DECREQTPARM", Vt100, TerminalParameters},
    {"y", "DECTST", Vt100,
     [](Machine& m, Seq s) {
         if (s.params.At(0) == 4)
             m.HardReset();
     }},
};

// No two rows may claim one sequence in one dialect. Of two rows in different dialects that a type speaks both, the
// later holds: what a console has of its own stands after what all share.
template <typename Table>
consteval bool NoneClaimedTwice(const Table& rows)
{
    for (size_t i = 0; i < std::size(rows); ++i)
        for (size_t j = i + 1; j < std::size(rows); ++j)
            if (rows[i].bytes == rows[j].bytes && (rows[i].dialects & rows[j].dialects) != 0)
                return false;
    return std::size(rows) < 255; // they are found by a byte
}
static_assert(NoneClaimedTwice(kEscapes), "two rows claim one escape sequence");
static_assert(NoneClaimedTwice(kControls), "two rows claim one control sequence");

} // namespace

std::span<const CharacterRow> CharacterRows() { return kCharacters; }
std::span<const EscapeRow> EscapeRows() { return kEscapes; }
std::span<const ControlRow> ControlRows() { return kControls; }

} // namespace kestrune::emu
