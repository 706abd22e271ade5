#include "parser.h"

#include "runs.h"

#include <algorithm>
#include <utility>

namespace kestrune::emu {
namespace {

constexpr uint8_t kCancel = 0x18;
constexpr uint8_t kSubstitute = 0x1A;
constexpr uint8_t kEscape = 0x1B;
constexpr uint8_t kDelete = 0x7F;

bool IsC0(uint8_t byte) { return byte < 0x20; }
bool IsC1(uint8_t byte) { return byte >= 0x80 && byte < 0xA0; }
bool IsIntermediate(uint8_t byte) { return byte >= 0x20 && byte < 0x30; }
bool IsFinal(uint8_t byte) { return byte >= 0x40 && byte < 0x7F; }

constexpr std::string_view kStringStarts = "P]X^_"; // DCS OSC SOS PM APC, after ESC

StringKind KindOf(uint8_t start)
{
    return start == 'P' ? StringKind::Dcs : start == ']' ? StringKind::Osc : StringKind::Ignored;
}

// A printer's data ends at these; in between they are data.
std::span<const std::string_view> PrinterEnds(const ParserRules& rules)
{
    static constexpr std::string_view kAnsi[] = {"\x1b[4i", "\x9b\x34i"};
    static constexpr std::string_view kVt52[] = {"\x1bX"};
    return rules.vt52 ? std::span<const std::string_view>(kVt52)
                      : std::span<const std::string_view>(kAnsi, rules.c1 ? 2 : 1);
}

bool IsContinuation(uint8_t byte) { return (byte & 0xC0) == 0x80; }

// The quick way for characters that are all there and plainly sound. Returns `at` for all others, which the decoder
// looks at byte by byte.
template <typename Put>
const uint8_t* SoundCharacter(const uint8_t* at, const uint8_t* end, Put&& put)
{
    if (at[0] >= 0xC2 && at[0] <= 0xDF && end - at >= 2 && IsContinuation(at[1])) {
        put((char32_t(at[0] & 0x1F) << 6) | (at[1] & 0x3Fu));
        return at + 2;
    }
    if (at[0] < 0xE0 || end - at < 4 || !IsContinuation(at[1]) || !IsContinuation(at[2]))
        return at;
    if (at[0] >= 0xF0) {
        const char32_t point =
            (char32_t(at[0]) << 18) | (char32_t(at[1] & 0x3F) << 12) | (char32_t(at[2] & 0x3F) << 6) | (at[3] & 0x3Fu);
        constexpr char32_t lead = char32_t(0xF0) << 18;
        if (!IsContinuation(at[3]) || point < lead + 0x10000 || point > lead + 0x10FFFF)
            return at;
        put(point - lead);
        return at + 4;
    }
    const char32_t point = (char32_t(at[0] & 0x0F) << 12) | (char32_t(at[1] & 0x3F) << 6) | (at[2] & 0x3Fu);
    constexpr char32_t kSurrogates = 0xD800 >> 11;
    if (point < 0x800 || (point >> 11) == kSurrogates)
        return at;
    put(point);
    return at + 3;
}

} // namespace

void Parser::Feed(std::string_view bytes)
{
    auto at = reinterpret_cast<Bytes>(bytes.data());
    const Bytes end = at + bytes.size();
    const size_t outer = std::exchange(offerAgain_, bytes.size()); // of what is being fed when a macro is invoked
    while (at != end)
        at = state_ == State::Ground ? Ground(at, end) : Step(at, end);
    offerAgain_ = outer;
}

// To be called after a line end.
Parser::Bytes Parser::OfferLines(Bytes at, Bytes end)
{
    constexpr size_t worthALook = 1024; // bytes: a few lines are sooner written than looked at
    const auto left = size_t(end - at);
    if (left < worthALook || left > offerAgain_)
        return at;
    const LinesTaken taken = sink_.Lines({at, end});
    offerAgain_ = left - taken.looked;
    offerAgain_ -= std::min(offerAgain_, worthALook);
    return at + taken.bytes;
}

void Parser::SetRules(const ParserRules& rules)
{
    rules_ = rules;
    decoder_.Forget();
}

void Parser::StartPrinter()
{
    state_ = State::Printer;
    printerHeld_.clear();
}

void Parser::Reset()
{
    DropString();
    decoder_.Forget();
    state_ = State::Ground;
}

Parser::Bytes Parser::Step(Bytes at, Bytes end)
{
    switch (state_) {
    case State::Ground:
        return Ground(at, end);
    case State::Csi:
        return Csi(at, end);
    case State::StringBody:
        return Body(at, end);
    case State::Printer:
        return Printer(at, end);
    case State::StringEscape:
        if (*at == '\\') {
            EndString();
        } else { // the string is given up, and a new sequence has begun
            DropString();
            state_ = State::Escape;
            return at;
        }
        return at + 1;
    case State::Escape:
    case State::EscapeIntermediate:
    case State::CsiIgnore:
    case State::LinuxFunctionKey:
    case State::Vt52Row:
    case State::Vt52Col:
        break;
    }

    const uint8_t byte = *at;
    if (Anywhere(byte))
        return at + 1;
    if (IsC0(byte)) { // controls inside a sequence act at once, and the sequence goes on
        sink_.Execute(byte);
        return at + 1;
    }
    if (byte == kDelete)
        return at + 1;
    switch (state_) {
    case State::Escape:
        EscapeByte(byte);
        break;
    case State::EscapeIntermediate:
        EscapeIntermediateByte(byte);
        break;
    case State::CsiIgnore:
        if (IsFinal(byte))
            state_ = State::Ground;
        break;
    case State::LinuxFunctionKey:
        state_ = State::Ground;
        break;
    case State::Vt52Row:
        vt52Row_ = byte - 0x20;
        state_ = State::Vt52Col;
        break;
    case State::Vt52Col:
        state_ = State::Ground;
        sink_.Vt52Address(vt52Row_, byte - 0x20);
        break;
    case State::Ground:
    case State::Csi:
    case State::StringBody:
    case State::StringEscape:
    case State::Printer:
        break;
    }
    return at + 1;
}

// CAN, SUB, ESC and the C1 controls act from any state but the printer's.
bool Parser::Anywhere(uint8_t byte)
{
    if (byte == kEscape) {
        DropString();
        escapeIntermediateCount_ = 0;
        tooManyIntermediates_ = false;
        state_ = State::Escape;
        return true;
    }
    if (byte == kCancel || byte == kSubstitute) {
        DropString();
        state_ = State::Ground;
        sink_.Aborted(byte);
        return true;
    }
    if (rules_.c1 && IsC1(byte)) {
        DropString();
        escapeIntermediateCount_ = 0;
        tooManyIntermediates_ = false;
        EscapeByte(uint8_t(byte - 0x40));
        return true;
    }
    return false;
}

void Parser::EndText()
{
    if (!decoder_.Pending())
        return;
    decoder_.Forget();
    const char32_t broken[] = {ReplacementPoint};
    sink_.Points(broken);
}

Parser::Bytes Parser::Ground(Bytes at, Bytes end)
{
    while (at != end) {
        if (!decoder_.Pending()) {
            const Bytes run = GraphicRunEnd(at, end);
            if (run != at) {
                sink_.Ascii({at, run});
                at = run;
                if (at == end)
                    return at;
            }
        }
        const uint8_t byte = *at;
        if (byte >= 0x80) {
            at = rules_.utf8 ? Utf8Run(at, end) : HighRun(at, end);
        } else {
            EndText();
            if (byte >= 0x20 && byte != kDelete)
                continue; // a run again
            ++at;
            if (byte == '\r' && at != end && *at == '\n') {
                sink_.LineEnd();
                at = OfferLines(at + 1, end);
                continue;
            }
            if (byte == kEscape) {
                if (at != end && *at == '[' && !rules_.vt52) { // by far the most common
                    StartControl();
                    return Csi(at + 1, end);
                }
                Anywhere(byte);
            } else if (byte == kDelete) {
                sink_.Delete();
            } else {
                sink_.Execute(byte);
            }
        }
        if (state_ != State::Ground)
            return at;
    }
    return at;
}

Parser::Bytes Parser::Utf8Run(Bytes at, Bytes end)
{
    constexpr size_t kBatch = 256;
    char32_t points[kBatch + 2]; // one byte gives at most two points
    size_t count = 0;
    const auto put = [&](char32_t point) {
        if (point >= 0xA0) // controls in two bytes are no controls: U+0080 to U+009F are dropped
            points[count++] = point;
    };
    while (at != end && *at >= 0x80 && count < kBatch) {
        const Bytes next = decoder_.Pending() ? at : SoundCharacter(at, end, put);
        if (next != at)
            at = next;
        else
            decoder_.Put(*at++, put);
    }
    if (count != 0)
        sink_.Points({points, count});
    return at;
}

Parser::Bytes Parser::HighRun(Bytes at, Bytes end)
{
    if (rules_.c1 && IsC1(*at)) {
        Anywhere(*at);
        return at + 1;
    }
    const Bytes start = at;
    while (at != end && *at >= 0x80 && !(rules_.c1 && IsC1(*at)))
        ++at;
    sink_.HighBytes({start, at});
    return at;
}

void Parser::EscapeByte(uint8_t byte)
{
    state_ = State::Ground;
    if (byte >= 0x80)
        return; // no such sequence
    if (rules_.vt52) {
        if (byte == 'Y')
            state_ = State::Vt52Row;
        else
            sink_.Escape({}, char(byte));
        return;
    }
    if (IsIntermediate(byte)) {
        escapeIntermediates_[0] = char(byte);
        escapeIntermediateCount_ = 1;
        state_ = State::EscapeIntermediate;
    } else if (byte == '[') {
        StartControl();
    } else if (kStringStarts.find(char(byte)) != std::string_view::npos) {
        StartString(KindOf(byte));
    } else {
        sink_.Escape({}, char(byte));
    }
}

void Parser::StartControl()
{
    sequence_.marker = 0;
    sequence_.intermediate = 0;
    sequence_.params.Clear();
    tooManyIntermediates_ = false;
    state_ = State::Csi;
}

void Parser::EscapeIntermediateByte(uint8_t byte)
{
    if (!IsIntermediate(byte)) {
        EscapeFinal(char(byte));
        return;
    }
    if (escapeIntermediateCount_ < MaxIntermediates)
        escapeIntermediates_[escapeIntermediateCount_++] = char(byte);
    else
        tooManyIntermediates_ = true;
}

void Parser::EscapeFinal(char final)
{
    state_ = State::Ground;
    if (!tooManyIntermediates_ && uint8_t(final) < 0x80)
        sink_.Escape(Intermediates(), final);
}

Parser::Bytes Parser::Csi(Bytes at, Bytes end)
{
    for (; at != end; ++at) {
        at = sequence_.params.Take(at, end);
        if (at == end)
            return at;
        const uint8_t byte = *at;
        if (IsFinal(byte)) {
            CsiFinal(char(byte));
            return at + 1;
        } else if (byte >= '<' && byte <= '?') {
            if (sequence_.params.Size() != 0 || sequence_.marker != 0)
                tooManyIntermediates_ = true; // a marker stands first
            sequence_.marker = char(byte);
        } else if (IsIntermediate(byte)) {
            tooManyIntermediates_ |= sequence_.intermediate != 0;
            sequence_.intermediate = char(byte);
        } else if (Anywhere(byte)) {
            return at + 1;
        } else if (IsC0(byte)) {
            sink_.Execute(byte);
        } else if (byte != kDelete) {
            state_ = State::CsiIgnore; // text beyond ASCII has no place here
            return at + 1;
        }
    }
    return at;
}

void Parser::CsiFinal(char final)
{
    state_ = State::Ground;
    if (tooManyIntermediates_)
        return;
    if (rules_.linuxConsole && final == '[' && sequence_.params.Size() == 0 && sequence_.marker == 0) {
        state_ = State::LinuxFunctionKey; // an echoed function key
        return;
    }
    sequence_.final = final;
    sink_.Control(sequence_);
}

void Parser::StartString(StringKind kind)
{
    stringKind_ = kind;
    stringTooLong_ = false;
    string_.clear();
    state_ = State::StringBody;
}

Parser::Bytes Parser::Body(Bytes at, Bytes end)
{
    const size_t limit = stringKind_ == StringKind::Osc ? MaxOsc : stringKind_ == StringKind::Dcs ? MaxDcs : 0;
    for (; at != end; ++at) {
        const uint8_t byte = *at;
        if (byte == kEscape) {
            state_ = State::StringEscape;
            return at + 1;
        }
        if (byte == kCancel || byte == kSubstitute) {
            Anywhere(byte);
            return at + 1;
        }
        if ((byte == 0x07 && stringKind_ == StringKind::Osc) || (rules_.c1 && byte == 0x9C)) {
            EndString();
            return at + 1;
        }
        if (rules_.c1 && IsC1(byte)) {
            Anywhere(byte);
            return at + 1;
        }
        if (string_.size() < limit)
            string_ += char(byte);
        else
            stringTooLong_ = true;
        if (rules_.linuxConsole && stringKind_ == StringKind::Osc &&
            (string_ == "R" || (string_.size() == 8 && string_[0] == 'P'))) {
            EndString();
            return at + 1;
        }
    }
    return at;
}

void Parser::EndString()
{
    state_ = State::Ground;
    if (!stringTooLong_ && stringKind_ != StringKind::Ignored)
        sink_.String(stringKind_, string_);
    DropString();
}

void Parser::DropString()
{
    if (string_.capacity() > MaxDcs)
        std::string().swap(string_); // a clipboard's worth of memory is not kept
    string_.clear();
}

Parser::Bytes Parser::Printer(Bytes at, Bytes end)
{
    const std::span<const std::string_view> marks = PrinterEnds(rules_);
    Bytes start = at;
    const auto flush = [&](Bytes to) {
        if (to != start)
            sink_.ToPrinter({start, to});
        start = to;
    };
    for (; at != end; ++at) {
        if (*at == 0 || *at == 0x11 || *at == 0x13) { // NUL, XON and XOFF are not for the printer
            flush(at);
            ++start;
            continue;
        }
        if (printerHeld_.empty() && *at != kEscape && *at != 0x9B)
            continue;
        if (printerHeld_.empty())
            flush(at);
        printerHeld_ += char(*at);
        start = at + 1;
        bool begun = false;
        for (const std::string_view mark : marks) {
            if (mark == printerHeld_) {
                state_ = State::Ground;
                printerHeld_.clear();
                sink_.PrinterEnds();
                return at + 1;
            }
            begun |= mark.starts_with(printerHeld_);
        }
        if (!begun) { // it was data; the last byte may begin the mark anew
            const bool again = printerHeld_.size() > 1 && (*at == kEscape || *at == 0x9B);
            const std::string data = printerHeld_.substr(0, printerHeld_.size() - (again ? 1 : 0));
            sink_.ToPrinter({reinterpret_cast<Bytes>(data.data()), data.size()});
            printerHeld_.erase(0, data.size());
        }
    }
    flush(end);
    return end;
}

} // namespace kestrune::emu
