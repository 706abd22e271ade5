#pragma once

// The terminal's switches. One table holds each mode's number, who knows it, its state at power-up and what a
// soft reset makes of it; setting, reporting and resetting all read that table.

#include <emulator/engine/personality.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace kestrune::emu {

enum class Mode : uint8_t
{
    KeyboardAction,
    ShowControls,
    Insert,
    SendReceive,
    NewLine,
    CursorKeys,
    Ansi,
    Columns132,
    SmoothScroll,
    ReverseScreen,
    Origin,
    AutoWrap,
    AutoRepeat,
    Interlace,
    PrintFormFeed,
    PrintWholeScreen,
    CursorVisible,
    NationalSets,
    VerticalCoupling,
    PageCoupling,
    NumericKeypad,
    BackspaceSendsBs,
    DataProcessingKeys,
    RateLimit,
    KeyPositions,
    SideMargins,
    MouseX10,
    MouseClick,
    MouseDrag,
    MouseMotion,
    MouseUtf8,
    MouseSgr,
    MouseDecimal,
    FocusReports,
    AlternateScreen,
    AlternateScreenCleared,
    AlternateScreenSaved,
    SavedCursor,
    BracketedPaste,
    SynchronizedUpdate,
    AutoPrint
};

class Modes
{
public:
    bool Has(Mode mode) const { return (bits_ >> unsigned(mode)) & 1u; }
    void Set(Mode mode, bool on)
    {
        const uint64_t bit = uint64_t(1) << unsigned(mode);
        bits_ = on ? bits_ | bit : bits_ & ~bit;
    }

private:
    uint64_t bits_ = 0;
};

class Machine;

enum class OnSoftReset : uint8_t
{
    Keep,
    Off,
    On
};

struct ModeRow
{
    int number;
    bool isPrivate; // CSI ? h instead of CSI h
    Mode mode;
    std::string_view mnemonic;
    Dialects dialects;
    bool initially;
    OnSoftReset soft;
    uint8_t group;                              // of the modes of one group other than 0, one at most is on
    void (*changed)(Machine& machine, bool on); // nullptr: the state alone matters
};

std::span<const ModeRow> ModeRows();
const ModeRow* FindMode(int number, bool isPrivate, Dialects dialects);
bool IsPermanentlyReset(int number, bool isPrivate); // known by its number, without an effect here

} // namespace kestrune::emu
