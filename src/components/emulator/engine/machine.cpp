#include "machine.h"

#include "controls.h"
#include "pcconsole.h"

#include <algorithm>

namespace kestrune::emu {
namespace {

constexpr Size kLeast{1, 1};
constexpr Size kMost{1000, 500};
constexpr size_t kMaxAnswerBack = 255;
constexpr int kPageMemory = 144;                          // lines, VT420 programmer reference
constexpr int kMaxMacroDepth = 16;                        // VT420 programmer reference
constexpr size_t kMaxMacroBytes = 32 * HostMacros::Space; // a macro that calls others many times must come to an end

Size Clamped(Size size)
{
    return {std::clamp(size.cols, kLeast.cols, kMost.cols), std::clamp(size.rows, kLeast.rows, kMost.rows)};
}

// Which of G0 to G3 an intermediate designates into, ISO 2022: ( ) * + for sets of 94, - . / for sets of 96.
struct Designator
{
    int which;
    char intermediate;
    bool wide96;
};
constexpr Designator kDesignators[] = {
    {0, '(', false}, {1, ')', false}, {2, '*', false}, {3, '+', false}, {1, '-', true}, {2, '.', true}, {3, '/', true},
};

// The controls that a PC console still obeys while it shows the others (Linux console: CTRL_ALWAYS).
constexpr uint32_t kAlwaysControls = 0x0800F501u;

} // namespace

Machine::Machine(const TerminalOptions& options, const Personality& personality, TerminalListener& listener)
    : options_(options), personality_(&personality), listener_(listener), screen_(Clamped(options.size), modes_),
      charset_(options.charset), normalSize_(Clamped(options.size))
{
    screen_.Scrollback().SetLimit(options.historyRows);
    screen_.SetPageCount(options.pages);
    options_.answerBack.resize(std::min(options_.answerBack.size(), kMaxAnswerBack));
    PowerUp();
    FitSize(options_.startsExtended);
}

// --- the public door

void Machine::Receive(std::string_view bytes)
{
    if (bytes.empty())
        return;
    parser_.Feed(bytes);
    Changed();
}

void Machine::Changed()
{
    ++screen_.Clock();
    if (statusKind_ == StatusKind::Indicator)
        UpdateIndicator();
    if (const int rows = screen_.TakeHistoryAdded(); rows > 0)
        listener_.HistoryAdded(rows);
}

bool Machine::Resize(Size size, std::span<Position> followed)
{
    size = Clamped(size);
    normalSize_ = size;
    return FitSize(modes_.Has(Mode::Columns132), LinesForUser(), followed);
}

Size Machine::ExtendedSize() const
{
    const Size size = options_.extended;
    return Clamped({size.cols, size.rows == 0 ? normalSize_.rows : size.rows});
}

bool Machine::FitSize(bool extended, WrappedLines lines, std::span<Position> followed)
{
    modes_.Set(Mode::Columns132, extended);
    const Size room = extended ? ExtendedSize() : normalSize_;
    const int wanted = linesOnScreen_ == 0 ? room.rows : linesOnScreen_;
    const Size page{room.cols, linesPerPage_ == 0 ? wanted : linesPerPage_};
    const int shown = std::min(wanted, page.rows);
    if (page == screen_.ScreenExtent() && shown == screen_.WindowRows())
        return false;
    const bool rewrapped = screen_.Resize(page, lines, followed);
    screen_.OnScreen([&] { screen_.ShowRows(shown); });
    Changed();
    listener_.ScreenSizeChanged({page.cols, shown});
    return rewrapped;
}

void Machine::SetLinesPerPage(int lines) { TakePageFormat(lines, linesOnScreen_); }

void Machine::SetLinesOnScreen(int lines) { TakePageFormat(linesPerPage_, lines); }

// The rows that are there stay where the host has put them; what no longer fits goes up into the history.
void Machine::TakePageFormat(int linesPerPage, int linesOnScreen)
{
    linesPerPage_ = linesPerPage;
    linesOnScreen_ = linesOnScreen;
    const bool extended = modes_.Has(Mode::Columns132);
    const int room = extended ? ExtendedSize().rows : normalSize_.rows;
    const int shown = linesOnScreen == 0 ? room : linesOnScreen;
    screen_.AppendRows(linesPerPage == 0 ? shown : linesPerPage);
    screen_.SetPageCount(WantedPages());
    FitSize(extended);
}

// A VT420 has 144 lines of page memory, cut into pages of the length that is asked for; a session with more pages than
// that has more of it.
int Machine::WantedPages() const
{
    if (linesPerPage_ == 0 || !(personality_->dialects & Dialect::Vt420))
        return options_.pages;
    const int lines = std::max(kPageMemory, options_.pages * normalSize_.rows);
    return std::clamp(lines / linesPerPage_, 1, Screen::MostPages);
}

void Machine::ShowExtended(bool on)
{
    FitSize(on, LinesForUser());
    Changed();
}

void Machine::SetPage(int page)
{
    screen_.OnScreen([&] { screen_.GoToPage(page); });
    screen_.ShowActivePage();
    Changed();
}

void Machine::SetCharset(HostCharset charset)
{
    options_.charset = charset;
    charset_ = charset;
    UpdateRules();
}

void Machine::SetOptions(const TerminalOptions& options)
{
    if (options.cursor != options_.cursor)
        cursorShape_ = options.cursor;
    const bool startsExtended = options_.startsExtended;
    if (options.eightBitReplies != options_.eightBitReplies)
        eightBitReplies_ = options.eightBitReplies;
    options_ = options;
    options_.answerBack.resize(std::min(options_.answerBack.size(), kMaxAnswerBack));
    TakeKeyOptions();
    modes_.Set(Mode::AutoWrap, options.autoWrap);
    screen_.Scrollback().SetLimit(options.historyRows);
    SetCharset(options.charset);
    screen_.SetPageCount(WantedPages());
    FitStatusRows();
    if (startsExtended != options.startsExtended)
        modes_.Set(Mode::Columns132, options.startsExtended);
    Resize(options.size);
}

void Machine::SelectPersonality(const Personality& personality)
{
    personality_ = &personality;
    TakePageFormat(0, 0);
    SoftReset();
    modes_.Set(Mode::Ansi, true);
    modes_.Set(Mode::PageCoupling, true);
    modes_.Set(Mode::VerticalCoupling, true);
    screen_.ShowActivePage();
    SelectStatusKind(StatusKind::None);
    TakeKeyOptions();
    level_ = personality.level;
    eightBitReplies_ = options_.eightBitReplies;
    romFont_ = RomFont::Off;
    screen_.SetWrapStyle(personality.wrap);
    UpdateRules();
    Changed();
}

void Machine::HardReset()
{
    screen_.SelectStatusLine(false);
    TakePageFormat(0, 0);
    FitSize(options_.startsExtended);
    const bool wasLocked = modes_.Has(Mode::KeyboardAction);
    PowerUp();
    Changed();
    if (wasLocked)
        listener_.KeyboardLockChanged(false);
    TellPrinterState();
}

void Machine::PowerUp()
{
    for (const ModeRow& row : ModeRows())
        modes_.Set(row.mode, row.initially);
    modes_.Set(Mode::AutoPrint, false);
    modes_.Set(Mode::Columns132, options_.startsExtended);
    TakeKeyOptions();
    modes_.Set(Mode::AutoWrap, options_.autoWrap);
    level_ = personality_->level;
    eightBitReplies_ = options_.eightBitReplies;
    singleShift_ = -1;
    romFont_ = RomFont::Off;
    cursorShape_ = options_.cursor;
    userKeys_.Clear();
    macros_.Clear();
    softCharacters_.Clear();
    preferredSet_ = &SupplementalSet();
    attributeExtent_ = ChangeExtent::Stream;
    charset_ = options_.charset;
    palette_.fill(0);
    parser_.Reset(); // also ends a printer controller mode that the host has forgotten
    printing_ = false;
    screen_.SetWatcher(nullptr);
    screen_.SetWrapStyle(personality_->wrap);
    statusKind_ = StatusKind::None;
    FitStatusRows();
    screen_.HardReset();
    UpdateRules();
}

void Machine::SoftReset()
{
    modes_.Set(Mode::Origin, false); // without the move home that comes with it otherwise
    for (const ModeRow& row : ModeRows())
        if (row.soft != OnSoftReset::Keep && Speaks(row.dialects) &&
            modes_.Has(row.mode) != (row.soft == OnSoftReset::On))
            SetMode(row, row.soft == OnSoftReset::On);
    singleShift_ = -1;
    TakeKeyOptions();
    screen_.SoftReset();
}

// What keys send until the host says otherwise.
void Machine::TakeKeyOptions()
{
    modes_.Set(Mode::CursorKeys, options_.applicationCursor);
    modes_.Set(Mode::NumericKeypad, options_.applicationKeypad);
    const bool bs =
        options_.backspace == BackspaceKey::AsType ? !Type().backspaceSendsDel : options_.backspace == BackspaceKey::Bs;
    modes_.Set(Mode::BackspaceSendsBs, bs);
}

// --- dialects

bool Machine::IsVt52() const
{
    return (personality_->dialects & Dialect::Common) == 0 ? (personality_->dialects & Dialect::Vt52) != 0
                                                           : !modes_.Has(Mode::Ansi);
}

char32_t Machine::PointOf(uint8_t byte) const
{
    const std::u16string& upper = options_.upperHalf;
    return byte >= 0x80 && upper.size() == 128 ? char32_t(upper[byte - 0x80u]) : HostPoint(charset_, byte);
}

std::string Machine::Encoded(char32_t point) const { return EncodeForHost(charset_, options_.upperHalf, point); }

bool Machine::SendsEightBit() const { return eightBitReplies_ && level_ >= 2 && parser_.Rules().c1; }

void Machine::UpdateRules()
{
    speaks_ = personality_->dialects;
    if (IsVt52())
        speaks_ = Dialect::Vt52;
    else if (personality_->level > 0)
        for (const auto& [dialect, level] : {std::pair(Dialect::Vt220, 2), {Dialect::Vt320, 3}, {Dialect::Vt420, 4}})
            if (level > level_)
                speaks_ &= Dialects(~dialect);
    ParserRules rules;
    rules.utf8 = charset_ == HostCharset::Utf8;
    rules.vt52 = IsVt52();
    rules.c1 = !rules.vt52 && personality_->eightBitControls && options_.eightBitControls &&
               CharsetAllowsC1(charset_) && (personality_->level == 0 || level_ >= 2);
    rules.linuxConsole = (speaks_ & Dialect::Linux) != 0;
    parser_.SetRules(rules);
    BuildIndex();
}

void Machine::BuildIndex()
{
    escapes_.fill(0);
    controls_.fill(0);
    uint8_t number = 0;
    for (const CharacterRow& row : CharacterRows())
        characters_[row.byte] = ++number;
    number = 0;
    for (const EscapeRow& row : EscapeRows()) {
        ++number;
        if (row.dialects & speaks_)
            escapes_[EscapeKey(row.bytes.size() > 1 ? row.bytes[0] : char(0), row.bytes.back())] = number;
    }
    number = 0;
    for (const ControlRow& row : ControlRows()) {
        ++number;
        std::string_view bytes = row.bytes;
        char marker = 0;
        if (bytes.size() > 1 && bytes[0] >= '<' && bytes[0] <= '?') {
            marker = bytes[0];
            bytes.remove_prefix(1);
        }
        if (row.dialects & speaks_)
            controls_[ControlKey(marker, bytes.size() > 1 ? bytes[0] : char(0), bytes.back())] = number;
    }
}

void Machine::SetLevel(int level, bool eightBit)
{
    SoftReset(); // the manuals say so
    level_ = std::min(level, personality_->level);
    eightBitReplies_ = eightBit && level_ >= 2;
    UpdateRules();
}

void Machine::LowerToVt100()
{
    level_ = std::min(level_, 1); // types that have no levels stay at 0
    eightBitReplies_ = false;
    UpdateRules();
}

void Machine::SelectUtf8(bool on)
{
    // "Default" is the encoding that the user has chosen, or Latin-1 if that is UTF-8.
    const HostCharset plain = options_.charset == HostCharset::Utf8 ? HostCharset::Latin1 : options_.charset;
    charset_ = on ? HostCharset::Utf8 : plain;
    UpdateRules();
}

// --- modes

void Machine::SetModes(const ControlSequence& sequence, bool on)
{
    for (int i = 0; i < sequence.params.Size(); ++i)
        if (const ModeRow* row = FindMode(sequence.params.At(i), sequence.marker == '?', speaks_))
            SetMode(*row, on);
}

void Machine::SetMode(const ModeRow& row, bool on)
{
    if (row.group != 0 && on)
        for (const ModeRow& other : ModeRows())
            if (other.group == row.group)
                modes_.Set(other.mode, false);
    modes_.Set(row.mode, on);
    if (row.changed != nullptr)
        row.changed(*this, on);
}

void Machine::SetColumns132(bool on)
{
    screen_.SelectStatusLine(false);
    FitSize(on);
    modes_.Set(Mode::SideMargins, false);
    screen_.ResetMargins();
    screen_.ClearPage();
}

// 47 only switches; 1047 clears the alternate screen when it is left; 1049 keeps the cursor as well and clears
// when it is entered.
void Machine::SwitchAlternate(bool on, Mode how)
{
    screen_.SelectStatusLine(false);
    const bool saved = how == Mode::AlternateScreenSaved;
    if (on != screen_.IsAlternate()) {
        if (on && saved)
            screen_.SaveCursor();
        if (!on && how == Mode::AlternateScreenCleared)
            screen_.ClearAlternate();
        screen_.SwitchPage(on);
        if (on && saved)
            screen_.ClearAlternate();
        if (!on && saved)
            screen_.RestoreCursor();
    }
    for (const Mode mode : {Mode::AlternateScreen, Mode::AlternateScreenCleared, Mode::AlternateScreenSaved})
        modes_.Set(mode, on);
}

// --- character sets

void Machine::Designate(int which, bool wide96, std::string_view designator)
{
    const CharacterSet* set = FindCharacterSet(designator, wide96, speaks_);
    if (set == nullptr && Speaks(Dialect::Vt220))
        set = softCharacters_.Find(designator, wide96);
    if (set == &SupplementalSet())
        set = preferredSet_; // "<" names whatever the user prefers
    if (set == nullptr || (which >= 2 && !Speaks(Dialect::Vt220)))
        return;
    if (set->kind == CharacterSet::Kind::National && !modes_.Has(Mode::NationalSets))
        set = &AsciiSet();
    screen_.Charsets().g[size_t(which)] = set;
}

// As if the host had sent it. It may call others, but neither itself nor without end.
void Machine::InvokeMacro(int id)
{
    const std::string bytes = macros_.At(id); // a copy: nothing may change what is being received
    if (macroDepth_ == 0)
        macroBytes_ = 0;
    if (macroDepth_ >= kMaxMacroDepth || bytes.size() > kMaxMacroBytes - macroBytes_)
        return;
    macroBytes_ += bytes.size();
    ++macroDepth_;
    parser_.Feed(bytes);
    --macroDepth_;
}

void Machine::PreferSet(std::string_view designator, bool wide96)
{
    // The makers offer two: their own supplemental set and Latin-1.
    if (wide96 ? designator == "A" : designator == "%5")
        preferredSet_ = FindCharacterSet(designator, wide96, speaks_);
}

char32_t Machine::PointThrough(const CharacterSet& set, uint8_t byte) const
{
    if (&set == &UpperHalfSet())
        return PointOf(byte | 0x80);
    if (softCharacters_.Owns(set))
        return softCharacters_.PointFor(set, byte & 0x7F);
    return set.glyphs[size_t(byte & 0x7F) - 0x20];
}

char32_t Machine::GraphicFor(uint8_t byte) const
{
    const CharsetState& sets = screen_.Cursor().charsets;
    return PointThrough(*sets.g[size_t(byte < 0x80 ? sets.gl : sets.gr)], byte);
}

void Machine::WriteThrough(const CharacterSet& set, std::span<const uint8_t> run)
{
    for (const uint8_t byte : run) {
        const char32_t point = PointThrough(set, byte);
        screen_.WritePoints({&point, 1});
    }
}

void Machine::Ascii(std::span<const uint8_t> run)
{
    CharsetState& sets = screen_.Charsets();
    if (singleShift_ >= 0) {
        const CharacterSet& once = *sets.g[size_t(singleShift_)];
        singleShift_ = -1;
        WriteThrough(once, run.first(1));
        run = run.subspan(1);
    }
    const CharacterSet& set = *sets.g[size_t(sets.gl)];
    if (romFont_ == RomFont::HighHalf) {
        for (const uint8_t byte : run) {
            const char32_t point = RomGlyph(byte | 0x80);
            screen_.WritePoints({&point, 1});
        }
    } else if (&set == &AsciiSet()) {
        screen_.WriteBytes(run);
    } else {
        WriteThrough(set, run);
    }
}

void Machine::HighBytes(std::span<const uint8_t> run)
{
    singleShift_ = -1;
    CharsetState& sets = screen_.Charsets();
    const CharacterSet& set = *sets.g[size_t(sets.gr)];
    for (const uint8_t byte : run) {
        char32_t point = PointOf(byte);
        if (romFont_ != RomFont::Off)
            point = RomGlyph(byte);
        else if (byte >= 0xA0)
            point = PointThrough(set, byte);
        screen_.WritePoints({&point, 1});
    }
}

// --- from the parser

void Machine::Execute(uint8_t control)
{
    const bool isAlways = ((kAlwaysControls >> control) & 1u) != 0;
    if ((romFont_ != RomFont::Off && !isAlways) || pc::Draws(personality_->drawnControls, control)) {
        const char32_t point = RomGlyph(control);
        screen_.WritePoints({&point, 1});
        return;
    }
    if (const uint8_t row = characters_[control])
        CharacterRows()[row - 1u].run(*this);
    else if (control == 0x1A)
        Aborted(control);
}

void Machine::Delete() // a character when a set of 96 is in GL (ISO 2022), else nothing
{
    const CharsetState& sets = screen_.Charsets();
    const CharacterSet& set = *sets.g[size_t(singleShift_ >= 0 ? singleShift_ : sets.gl)];
    if (set.kind != CharacterSet::Kind::Set96)
        return;
    singleShift_ = -1;
    constexpr uint8_t last = 0x7F;
    WriteThrough(set, {&last, 1});
}

void Machine::LineEnd() // also under LNM, whose second return changes nothing
{
    screen_.CarriageReturn();
    screen_.LineFeed();
}

LinesTaken Machine::Lines(std::span<const uint8_t> bytes)
{
    const CharsetState& sets = screen_.Charsets();
    const bool isPlain = singleShift_ < 0 && romFont_ == RomFont::Off && sets.g[size_t(sets.gl)] == &AsciiSet();
    return isPlain ? screen_.TakeLines(bytes) : LinesTaken{0, 0};
}

void Machine::Aborted(uint8_t)
{
    if (Speaks(Dialect::Vt220))
        screen_.WritePoints({&ErrorPoint, 1});
}

void Machine::Escape(std::string_view intermediates, char final)
{
    for (const Designator& designator : kDesignators)
        if (intermediates.starts_with(designator.intermediate)) {
            const std::string name = std::string(intermediates.substr(1)).append(1, final);
            Designate(designator.which, designator.wide96, name);
            return;
        }
    if (intermediates.size() > 1 || final < 0x30)
        return;
    if (const uint8_t row = escapes_[EscapeKey(intermediates.empty() ? char(0) : intermediates[0], final)])
        EscapeRows()[row - 1u].run(*this);
}

void Machine::Control(const ControlSequence& sequence)
{
    if (sequence.params.HasColons() && sequence.final != 'm')
        return; // sub-parameters have a meaning in SGR only
    if (const uint8_t row = controls_[ControlKey(sequence.marker, sequence.intermediate, sequence.final)])
        ControlRows()[row - 1u].run(*this, sequence);
}

void Machine::Vt52Address(int row, int col)
{
    if (row < 0 || row >= screen_.Extent().rows) // VT52 maintenance manual: such a row is passed over
        row = screen_.Cursor().row;
    screen_.MoveTo(row, col < 0 ? screen_.Extent().cols - 1 : col);
}

// --- looking

ModesView Machine::View() const
{
    ModesView view;
    view.applicationCursor = modes_.Has(Mode::CursorKeys);
    view.applicationKeypad = modes_.Has(Mode::NumericKeypad);
    view.alternateScreen = screen_.IsAlternate();
    view.extended = modes_.Has(Mode::Columns132);
    view.rowsOfHost = linesOnScreen_ != 0;
    view.reverseScreen = modes_.Has(Mode::ReverseScreen);
    const int cursorRow = screen_.ScreenCursor().row - screen_.WindowTop();
    view.cursorVisible = modes_.Has(Mode::CursorVisible) && screen_.ActivePage() == screen_.ShownPage() &&
                         cursorRow >= 0 && cursorRow < screen_.WindowRows();
    view.bracketedPaste = modes_.Has(Mode::BracketedPaste);
    view.focusReports = modes_.Has(Mode::FocusReports);
    view.newLine = modes_.Has(Mode::NewLine);
    view.localEcho = !modes_.Has(Mode::SendReceive);
    view.backspaceSendsBs = modes_.Has(Mode::BackspaceSendsBs);
    view.autoRepeat = modes_.Has(Mode::AutoRepeat);
    view.synchronizedUpdate = modes_.Has(Mode::SynchronizedUpdate);
    view.smoothScroll = modes_.Has(Mode::SmoothScroll);
    view.keyboardLocked = modes_.Has(Mode::KeyboardAction);
    if (modes_.Has(Mode::MouseX10) || modes_.Has(Mode::MouseClick))
        view.mouse = MouseReport::Click;
    else if (modes_.Has(Mode::MouseDrag))
        view.mouse = MouseReport::Drag;
    else if (modes_.Has(Mode::MouseMotion))
        view.mouse = MouseReport::Motion;
    view.cursor = cursorShape_;
    return view;
}

uint32_t Machine::PaletteOverride(int index) const
{
    return index >= 0 && index < PaletteSize ? palette_[size_t(index)] : 0;
}

} // namespace kestrune::emu
