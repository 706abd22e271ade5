// Answers to the host. Only what the terminal itself knows goes back: never text that the host has sent.

#include "hexpairs.h"
#include "machine.h"

namespace kestrune::emu {
namespace {

struct StatusRow
{
    int request;
    Dialects dialects;
    bool isPrivate;
    std::string_view answer; // after CSI
};

// Ordered from the latest model to the oldest: the first that is spoken answers.
constexpr StatusRow kStatus[] = {
    {5, Dialect::Common, false, "0n"},        // in order
    {15, Dialect::Vt220, true, "?13n"},       // no printer
    {26, Dialect::Vt420, true, "?27;1;0;0n"}, // North American keyboard, ready, LK401
    {26, Dialect::Vt320, true, "?27;1;0n"},   //
    {26, Dialect::Vt220, true, "?27;1n"},     //
    {53, Dialect::Vt320, true, "?50n"},       // no locator
    {55, Dialect::Vt320, true, "?50n"},       //
    {56, Dialect::Vt320, true, "?57;0n"},     //
    {75, Dialect::Vt420, true, "?70n"},       // no errors
    {85, Dialect::Vt420, true, "?83n"},       // no sessions
};

struct SettingRow
{
    std::string_view request;
    Dialects dialects;
    std::string (*value)(const Machine& machine);
};

std::string Margins(const Machine& m)
{
    return std::to_string(m.Display().TopMargin() + 1) + ';' + std::to_string(m.Display().BottomMargin() + 1);
}

std::string SideMargins(const Machine& m)
{
    return std::to_string(m.Display().LeftMargin() + 1) + ';' + std::to_string(m.Display().RightMargin() + 1);
}

constexpr SettingRow kSettings[] = {
    {"s", Dialect::Vt420, SideMargins},
    {"*x", Dialect::Vt420,
     [](const Machine& m) { return std::string(m.AttributeExtent() == ChangeExtent::Rectangle ? "2" : "1"); }},
    {"*|", Dialect::Vt420, [](const Machine& m) { return std::to_string(m.Display().WindowRows()); }},
    {"$}", Dialect::Vt320, [](const Machine& m) { return std::string(m.Display().IsOnStatusLine() ? "1" : "0"); }},
    {"$~", Dialect::Vt320, [](const Machine& m) { return std::to_string(int(m.StatusLine())); }},
    {"m", Dialect::Vt320, [](const Machine& m) { return m.SgrSetting(); }},
    {"r", Dialect::Vt320, Margins},
    {"t", Dialect::Vt320, [](const Machine& m) { return std::to_string(m.Display().ScreenExtent().rows); }},
    {"$|", Dialect::Vt320, [](const Machine& m) { return std::to_string(m.Display().ScreenExtent().cols); }},
    {" q", Dialect::Vt320, [](const Machine& m) { return std::to_string(int(m.Shape()) + 1); }},
    {"\"p", Dialect::Vt320,
     [](const Machine& m) {
         return std::to_string(60 + m.Level()) + (m.Level() == 1 ? "" : m.SendsEightBit() ? ";0" : ";1");
     }},
    {"\"q", Dialect::Vt320,
     [](const Machine& m) { return std::string(m.Display().Cursor().pen.attributes & Attr::Protected ? "1" : "0"); }},
};

} // namespace

std::string Machine::InSentForm(std::string_view sevenBit) const
{
    if (!SendsEightBit())
        return std::string(sevenBit);
    std::string out;
    for (size_t i = 0; i < sevenBit.size(); ++i)
        if (sevenBit[i] == '\x1b' && i + 1 < sevenBit.size() && sevenBit[i + 1] >= '@' && sevenBit[i + 1] <= '_')
            out += char(uint8_t(sevenBit[++i]) + 0x40);
        else
            out += sevenBit[i];
    return out;
}

void Machine::Reply(std::string_view sevenBit)
{
    if (!sevenBit.empty())
        listener_.Reply(InSentForm(sevenBit));
}

void Machine::ReplyControl(std::string_view afterCsi)
{
    if (!afterCsi.empty())
        Reply(std::string("\x1b[").append(afterCsi));
}

void Machine::ReplyDcs(std::string_view body) { Reply(std::string("\x1bP").append(body).append("\x1b\\")); }

void Machine::SendAnswerBack()
{
    if (!options_.answerBack.empty() && !Speaks(Dialect::Vt52))
        listener_.Reply(options_.answerBack);
}

void Machine::ReportStatus(const ControlSequence& sequence)
{
    const int request = sequence.params.At(0);
    const bool isPrivate = sequence.marker == '?';
    const std::string place =
        std::to_string(screen_.RowForHost() + 1) + ';' + std::to_string(screen_.ColumnForHost() + 1);
    if (request == 6 && !isPrivate) {
        ReplyControl(place + 'R');
    } else if (request == 6 && Speaks(Dialect::Vt320)) {
        ReplyControl('?' + place + ';' + std::to_string(screen_.ActivePage() + 1) + 'R');
    } else if (request == 255 && !isPrivate && Speaks(Dialect::Ansi)) { // boards ask the size this way
        ReplyControl(std::to_string(screen_.Extent().rows) + ';' + std::to_string(screen_.Extent().cols) + 'R');
    } else if (request == 25 && isPrivate) {
        ReplyControl(FunctionKeysLocked() ? "?21n" : "?20n");
    } else if (request == 62 && isPrivate && Speaks(Dialect::Vt420)) { // in units of 16 bytes
        ReplyControl(std::to_string(macros_.SpaceLeft() / 16) + "*{");
    } else if (request == 63 && isPrivate && Speaks(Dialect::Vt420)) {
        ReplyDcs(std::to_string(sequence.params.At(1)) + "!~" + HexWord(macros_.Checksum()));
    } else {
        for (const StatusRow& row : kStatus)
            if (row.isPrivate == isPrivate && row.request == request && Speaks(row.dialects)) {
                ReplyControl(row.answer);
                return;
            }
    }
}

void Machine::ReportMode(const ControlSequence& sequence)
{
    const int number = sequence.params.At(0);
    const bool isPrivate = sequence.marker == '?';
    // Level 2 does not answer. The modes that are not DEC's are reported by every type that has them.
    if (!Speaks(Dialect::Vt320) && !(isPrivate && number >= 1000))
        return;
    const ModeRow* row = FindMode(number, isPrivate, speaks_);
    const char* state = IsPermanentlyReset(number, isPrivate) ? "4" : "0";
    if (row != nullptr)
        state = modes_.Has(row->mode) ? "1" : "2";
    ReplyControl(
        std::string(isPrivate ? "?" : "").append(std::to_string(number)).append(";").append(state).append("$y"));
}

void Machine::RequestSetting(std::string_view request)
{
    if (!Speaks(Dialect::Vt320))
        return;
    for (const SettingRow& row : kSettings)
        if (row.request == request && Speaks(row.dialects)) {
            ReplyDcs(std::string("1$r").append(row.value(*this)).append(row.request));
            return;
        }
    ReplyDcs("0$r"); // unknown; what was asked is not repeated
}

} // namespace kestrune::emu
