#include "modes.h"

#include "machine.h"

#include <algorithm>

namespace kestrune::emu {
namespace {

using namespace Dialect;
using enum OnSoftReset;

constexpr Dialects kDecLevel3 = Vt320;
constexpr uint8_t kMouse = 1;         // at most one way of reporting
constexpr uint8_t kMouseEncoding = 2; // at most one form of the reports

void HomeCursor(Machine& m, bool) { m.Display().MoveTo(0, 0); }
void LockKeyboard(Machine& m, bool on) { m.Listener().KeyboardLockChanged(on); }
void SwitchToVt52(Machine& m, bool) { m.UpdateRules(); }
void Columns(Machine& m, bool on) { m.SetColumns132(on); }
void FollowPage(Machine& m, bool on)
{
    if (on)
        m.Display().ShowActivePage();
}

void FollowRow(Machine& m, bool) { m.Display().FollowCursor(); }

constexpr ModeRow kModes[] = {
    // number, private, mode, mnemonic, dialects, initially, soft reset, group, what else
    {2, false, Mode::KeyboardAction, "KAM", Common, false, Off, 0, LockKeyboard},
    {4, false, Mode::Insert, "IRM", Common, false, Off, 0, nullptr},
    {12, false, Mode::SendReceive, "SRM", Vt100, true, Keep, 0, nullptr},
    {20, false, Mode::NewLine, "LNM", Common, false, Keep, 0, nullptr},

    {1, true, Mode::CursorKeys, "DECCKM", Common, false, Off, 0, nullptr},
    {2, true, Mode::Ansi, "DECANM", Vt100, true, Keep, 0, SwitchToVt52},
    {3, true, Mode::Columns132, "DECCOLM", Common, false, Keep, 0, Columns},
    {4, true, Mode::SmoothScroll, "DECSCLM", Vt100, false, Keep, 0, nullptr},
    {5, true, Mode::ReverseScreen, "DECSCNM", Common, false, Keep, 0, nullptr},
    {6, true, Mode::Origin, "DECOM", Common, false, Off, 0, HomeCursor},
    // Soft reset leaves DECAWM as set up, not off as the hardware did: hosts of today count on wrapping.
    {7, true, Mode::AutoWrap, "DECAWM", Common, true, Keep, 0, nullptr},
    {8, true, Mode::AutoRepeat, "DECARM", Common, true, Keep, 0, nullptr},
    {9, true, Mode::Interlace, "DECINLM", Vt100, false, Keep, 0, nullptr},
    {9, true, Mode::MouseX10, "X10 mouse", Linux, false, Off, kMouse, nullptr},
    {18, true, Mode::PrintFormFeed, "DECPFF", Vt220, false, Keep, 0, nullptr},
    {19, true, Mode::PrintWholeScreen, "DECPEX", Vt220, true, Keep, 0, nullptr},
    {25, true, Mode::CursorVisible, "DECTCEM", Vt220 | Linux | Ansi | Sco | Extension, true, On, 0, nullptr},
    {42, true, Mode::NationalSets, "DECNRCM", Vt220, false, Off, 0, nullptr},
    {61, true, Mode::VerticalCoupling, "DECVCCM", Vt420, true, Keep, 0, FollowRow},
    {64, true, Mode::PageCoupling, "DECPCCM", Vt420, true, Keep, 0, FollowPage},
    {66, true, Mode::NumericKeypad, "DECNKM", kDecLevel3, false, Off, 0, nullptr},
    {67, true, Mode::BackspaceSendsBs, "DECBKM", Vt220, false, Keep, 0, nullptr},
    {68, true, Mode::DataProcessingKeys, "DECKBUM", kDecLevel3, false, Keep, 0, nullptr},
    {69, true, Mode::SideMargins, "DECLRMM", Vt420, false, Off, 0,
     [](Machine& m, bool on) { m.Display().AllowSideMargins(on); }},
    {73, true, Mode::RateLimit, "DECXRLM", Vt420, false, Keep, 0, nullptr},
    {81, true, Mode::KeyPositions, "DECKPM", Vt420, false, Off, 0, nullptr},

    // not DEC's: what hosts of today ask of every terminal
    {47, true, Mode::AlternateScreen, "alternate screen", Extension, false, Keep, 0,
     [](Machine& m, bool on) { m.SwitchAlternate(on, Mode::AlternateScreen); }},
    {1000, true, Mode::MouseClick, "mouse clicks", Extension, false, Off, kMouse, nullptr},
    {1002, true, Mode::MouseDrag, "mouse drags", Extension, false, Off, kMouse, nullptr},
    {1003, true, Mode::MouseMotion, "mouse motion", Extension, false, Off, kMouse, nullptr},
    {1004, true, Mode::FocusReports, "focus", Extension, false, Off, 0, nullptr},
    {1005, true, Mode::MouseUtf8, "mouse in UTF-8", Extension, false, Off, kMouseEncoding, nullptr},
    {1006, true, Mode::MouseSgr, "mouse in SGR form", Extension, false, Off, kMouseEncoding, nullptr},
    {1015, true, Mode::MouseDecimal, "mouse in decimals", Extension, false, Off, kMouseEncoding, nullptr},
    {1047, true, Mode::AlternateScreenCleared, "alternate screen", Extension, false, Keep, 0,
     [](Machine& m, bool on) { m.SwitchAlternate(on, Mode::AlternateScreenCleared); }},
    {1048, true, Mode::SavedCursor, "save cursor", Extension, false, Keep, 0,
     [](Machine& m, bool on) { on ? m.Display().SaveCursor() : m.Display().RestoreCursor(); }},
    {1049, true, Mode::AlternateScreenSaved, "alternate screen", Extension, false, Keep, 0,
     [](Machine& m, bool on) { m.SwitchAlternate(on, Mode::AlternateScreenSaved); }},
    {2004, true, Mode::BracketedPaste, "bracketed paste", Extension, false, Off, 0, nullptr},
    {2026, true, Mode::SynchronizedUpdate, "synchronized update", Extension, false, Off, 0, nullptr},
};

consteval bool EachClaimedOnce()
{
    for (size_t i = 0; i < std::size(kModes); ++i)
        for (size_t j = i + 1; j < std::size(kModes); ++j)
            if (kModes[i].number == kModes[j].number && kModes[i].isPrivate == kModes[j].isPrivate &&
                (kModes[i].dialects & kModes[j].dialects) != 0)
                return false;
    return true;
}
static_assert(EachClaimedOnce(), "two modes claim one number");

// EK-VT320-RM, DECRQM: known by number, permanently reset.
constexpr int kResetForGood[] = {1, 3, 5, 7, 10, 11, 13, 14, 15, 16, 17, 18, 19};
constexpr int kPrivateResetForGood[] = {60};

} // namespace

std::span<const ModeRow> ModeRows() { return kModes; }

const ModeRow* FindMode(int number, bool isPrivate, Dialects dialects)
{
    for (const ModeRow& row : kModes)
        if (row.number == number && row.isPrivate == isPrivate && (row.dialects & dialects))
            return &row;
    return nullptr;
}

bool IsPermanentlyReset(int number, bool isPrivate)
{
    const std::span<const int> numbers =
        isPrivate ? std::span<const int>(kPrivateResetForGood) : std::span<const int>(kResetForGood);
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

} // namespace kestrune::emu
