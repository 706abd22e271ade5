#pragma once

// Cuts the host's bytes into text, controls and strings, after the state machine that DEC terminals follow
// (ECMA-48 forms; the well-known state diagram of the ANSI parser). It keeps its place between calls: how the
// bytes are cut into pieces never matters. It knows forms, not meanings.

#include "charsets.h"
#include "runs.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kestrune::emu {

// Numeric parameters of a control sequence. Missing ones are told from zero; values stop at Limit.
class Params
{
public:
    static constexpr int Max = 32;
    static constexpr int Limit = 16383;

    int Size() const { return count_ < Max ? count_ : Max; }
    // A selector: missing reads as `missing`.
    int At(int index, int missing = 0) const { return Given(index) ? values_[index] : missing; }
    // A count: missing and zero both mean one.
    int Count(int index) const { return At(index) == 0 ? 1 : At(index); }
    bool Given(int index) const { return index < Size() && values_[index] >= 0; }
    bool AfterColon(int index) const { return index < Size() && ((colons_ >> index) & 1u) != 0; }
    bool HasColons() const { return colons_ != 0; }

    void Clear()
    {
        count_ = 0;
        colons_ = 0;
    }
    // Digits and separators from `at` on; returns where they end.
    const uint8_t* Take(const uint8_t* at, const uint8_t* end)
    {
        int place = count_ - 1;
        int value = place < 0 ? -1 : values_[place];
        for (; at != end; ++at) {
            const int byte = *at;
            if (const int digit = byte - '0'; digit >= 0 && digit <= 9) {
                place += place < 0 ? 1 : 0;
                value = value < 0 ? digit : value * 10 + digit;
                value = value > Limit ? Limit : value;
            } else if (byte == ';' || byte == ':') {
                place += place < 0 ? 1 : 0;
                values_[place] = value;
                if (place < Max) // the place past the last one takes what is ignored
                    ++place;
                if (byte == ':' && place < Max)
                    colons_ |= 1u << place;
                value = -1;
            } else {
                break;
            }
        }
        if (place >= 0)
            values_[place] = value;
        count_ = place + 1;
        return at;
    }

private:
    int values_[Max + 1] = {};
    int count_ = 0; // at most Max + 1
    uint32_t colons_ = 0;
};

struct ControlSequence
{
    char marker = 0;       // one of < = > ? or 0
    char intermediate = 0; // 0x20 to 0x2F or 0
    char final = 0;
    Params params;
};

enum class StringKind : uint8_t
{
    Osc,
    Dcs,
    Ignored // APC, PM, SOS: nobody here wants them
};

class ParserSink
{
public:
    virtual ~ParserSink() = default;
    virtual void Ascii(std::span<const uint8_t> run) = 0;     // 0x20 to 0x7E, to be read through GL
    virtual void HighBytes(std::span<const uint8_t> run) = 0; // 8-bit encodings: from 0x80 or 0xA0
    virtual void Points(std::span<const char32_t> run) = 0;   // UTF-8, from U+00A0
    virtual void Execute(uint8_t control) = 0;                // C0
    virtual void Delete() {}                                  // 0x7F in the text: the last place of a set of 96
    virtual void LineEnd()                                    // CR and LF, one right after the other
    {
        Execute('\r');
        Execute('\n');
    }
    // More lines of plain text may follow: what is taken of them is not told otherwise.
    virtual LinesTaken Lines(std::span<const uint8_t> bytes) { return {0, bytes.size()}; }
    virtual void Aborted(uint8_t by) = 0; // CAN or SUB inside a sequence
    // C1 controls come in this form too. Of intermediates there are at most Parser::MaxIntermediates.
    virtual void Escape(std::string_view intermediates, char final) = 0;
    virtual void Control(const ControlSequence& sequence) = 0;
    virtual void String(StringKind kind, std::string_view body) = 0; // whole; too long ones never come
    virtual void Vt52Address(int row, int col) = 0;
    virtual void ToPrinter(std::span<const uint8_t> bytes) = 0;
    virtual void PrinterEnds() = 0;
};

struct ParserRules
{
    bool utf8 = false;
    bool c1 = false;           // 0x80 to 0x9F are controls
    bool vt52 = false;         // ESC letter, no CSI
    bool linuxConsole = false; // ESC ] P and ESC ] R have no end mark; ESC [ [ takes one more byte
};

class Parser
{
public:
    static constexpr size_t MaxOsc = size_t{256} * 1024; // a clipboard fits
    static constexpr size_t MaxIntermediates = 3;        // of an escape sequence; one with more is passed over
    static constexpr size_t MaxDcs = size_t{16} * 1024;  // the largest macro in hexadecimal

    explicit Parser(ParserSink& sink) : sink_(sink) {}

    void Feed(std::string_view bytes);
    // May be called from inside the sink; holds from the next byte on. A character cut in two is given up.
    void SetRules(const ParserRules& rules);
    const ParserRules& Rules() const { return rules_; }
    // From now on all bytes go to the printer, until CSI 4 i (or ESC X in VT52 mode).
    void StartPrinter();
    void Reset();

private:
    enum class State : uint8_t
    {
        Ground,
        Escape,
        EscapeIntermediate,
        Csi,
        CsiIgnore,
        LinuxFunctionKey,
        StringBody,
        StringEscape,
        Vt52Row,
        Vt52Col,
        Printer
    };
    using Bytes = const uint8_t*;

    Bytes Step(Bytes at, Bytes end);
    Bytes Ground(Bytes at, Bytes end);
    Bytes OfferLines(Bytes at, Bytes end);
    Bytes Utf8Run(Bytes at, Bytes end);
    Bytes HighRun(Bytes at, Bytes end);
    Bytes Csi(Bytes at, Bytes end);
    Bytes Body(Bytes at, Bytes end);
    Bytes Printer(Bytes at, Bytes end);
    bool Anywhere(uint8_t byte);
    void EscapeByte(uint8_t byte);
    void EscapeIntermediateByte(uint8_t byte);
    void EscapeFinal(char final);
    void CsiFinal(char final);
    void StartControl();
    void StartString(StringKind kind);
    void EndString();
    void DropString();
    void EndText();
    std::string_view Intermediates() const { return {escapeIntermediates_.data(), escapeIntermediateCount_}; }

    ParserSink& sink_;
    ParserRules rules_;
    State state_ = State::Ground;
    size_t offerAgain_ = 0; // when so many bytes, or fewer, are left of those being fed
    ControlSequence sequence_;
    std::array<char, MaxIntermediates> escapeIntermediates_{}; // which set, and up to two of the set's name (ISO 2022)
    size_t escapeIntermediateCount_ = 0;
    bool tooManyIntermediates_ = false;
    Utf8Decoder decoder_;
    StringKind stringKind_ = StringKind::Ignored;
    bool stringTooLong_ = false;
    std::string string_;
    int vt52Row_ = 0;
    std::string printerHeld_; // a start of the end mark
};

} // namespace kestrune::emu
