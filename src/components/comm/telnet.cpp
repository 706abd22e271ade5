#include <comm/telnet.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace kestrune::comm {

namespace {

enum Code : std::uint8_t
{
    EOR = 239,
    SE = 240,
    NOP = 241,
    DM = 242,
    BRK = 243,
    IP = 244,
    AYT = 246,
    SB = 250,
    WILL = 251,
    WONT = 252,
    DO = 253,
    DONT = 254,
    IAC = 255
};

enum OptionCode : std::uint8_t
{
    Binary = 0,
    Echo = 1,
    SuppressGoAhead = 3,
    Status = 5,
    TimingMark = 6,
    TerminalType = 24,
    EndOfRecord = 25,
    WindowSize = 31,
    TerminalSpeed = 32,
    NewEnviron = 39
};

constexpr char IacChar = '\xff';
constexpr char SubIs = 0;
constexpr char SubSend = 1;

// NEW-ENVIRON (RFC 1572)
constexpr char EnvVar = 0;
constexpr char EnvValue = 1;
constexpr char EnvEsc = 2;
constexpr char EnvUserVar = 3;

// The longest honest sub-negotiation, a list of environment names, has some hundred bytes.
constexpr std::size_t MaxSub = 1024;
// One without an end would swallow the session; after this much it is given up and text shows again.
constexpr std::size_t AbandonSub = std::size_t{64} * 1024;

bool Always(const TelnetSettings&) { return true; }
bool Never(const TelnetSettings&) { return false; }
bool WhenBinaryIsAsked(const TelnetSettings& s) { return s.binary; }
bool WhenHostMayEcho(const TelnetSettings& s) { return !s.localEcho; }
bool WhenUserIsKnown(const TelnetSettings& s) { return !s.userName.empty(); }

std::string Escaped(std::string_view text, std::string_view special, char escape)
{
    std::string out;
    for (const char c : text) {
        if (special.find(c) != std::string_view::npos)
            out += escape;
        out += c;
    }
    return out;
}

} // namespace

// What this side agrees to (us: the host says DO; him: the host says WILL), what it offers by itself, and what
// follows an agreement or a sub-negotiation.
struct Telnet::OptionRow
{
    using Rule = bool (*)(const TelnetSettings&);
    std::uint8_t code;
    Rule us;
    Rule him;
    Rule offerUs;
    Rule askHim;
    void (Telnet::*agreed)();                         // we have begun to do it
    void (Telnet::*subNegotiation)(std::string_view); // payload after the option byte
};

struct OptionTable
{
    using Row = Telnet::OptionRow;
    static constexpr std::array rows = {
        Row{Binary, Always, Always, WhenBinaryIsAsked, WhenBinaryIsAsked, nullptr, nullptr},
        Row{Echo, Never, WhenHostMayEcho, Never, Never, nullptr, nullptr},
        Row{SuppressGoAhead, Always, Always, Always, Always, nullptr, nullptr},
        Row{Status, Always, Never, Never, Never, nullptr, &Telnet::SendStatus},
        Row{EndOfRecord, Always, Always, Never, Never, nullptr, nullptr},
        Row{TerminalType, Always, Never, Always, Never, nullptr, &Telnet::SendTerminalName},
        Row{WindowSize, Always, Never, Always, Never, &Telnet::SendSize, nullptr},
        Row{TerminalSpeed, Always, Never, Always, Never, nullptr, &Telnet::SendSpeed},
        Row{NewEnviron, WhenUserIsKnown, Never, WhenUserIsKnown, Never, nullptr, &Telnet::SendEnvironment},
    };
};

Telnet::Telnet(TelnetSettings settings, TelnetEvents& events) : settings_(std::move(settings)), events_(events) {}

bool Telnet::RemoteEcho() const { return him_[Echo] == Side::Yes; }

const Telnet::OptionRow* Telnet::Find(std::uint8_t option)
{
    const auto row = std::ranges::find(OptionTable::rows, option, &OptionRow::code);
    return row == OptionTable::rows.end() ? nullptr : &*row;
}

void Telnet::Start()
{
    if (std::exchange(started_, true))
        return;
    for (const OptionRow& row : OptionTable::rows) {
        if (row.offerUs(settings_))
            Offer(row.code, true);
        if (row.askHim(settings_))
            Offer(row.code, false);
    }
}

void Telnet::Offer(std::uint8_t option, bool us)
{
    Side& side = us ? us_[option] : him_[option];
    if (side != Side::No)
        return;
    side = Side::WantYes;
    SendCommand(us ? WILL : DO, option);
}

// --- from the wire

void Telnet::Receive(std::string_view wire)
{
    while (!wire.empty()) {
        std::size_t taken = 1;
        if (state_ == State::Data)
            taken = TakeData(wire);
        else if (state_ == State::SubData)
            taken = TakeSubData(wire);
        else
            TakeByte(static_cast<std::uint8_t>(wire.front()));
        wire.remove_prefix(taken);
    }
}

// Takes text up to the next IAC, which is nearly always all of it.
std::size_t Telnet::TakeData(std::string_view wire)
{
    const std::size_t length = std::min(wire.find(IacChar), wire.size());
    if (length == 0) {
        state_ = State::Command;
        return 1;
    }
    EmitData(wire.substr(0, length));
    return length;
}

// Outside BINARY a CR of the host's is CR LF or CR NUL on the wire, and the NUL is not text (RFC 854).
void Telnet::EmitData(std::string_view run)
{
    if (synch_) {
        afterCr_ = false;
        return;
    }
    if (him_[Binary] == Side::Yes) {
        afterCr_ = false;
        events_.TelnetData(run);
        return;
    }
    const auto emit = [this](std::string_view text) {
        if (!text.empty())
            events_.TelnetData(text);
    };
    std::size_t begin = 0;
    for (std::size_t nul = run.find('\0'); nul != std::string_view::npos; nul = run.find('\0', nul + 1)) {
        const bool followsCr = nul == 0 ? afterCr_ : run[nul - 1] == '\r';
        if (!followsCr)
            continue;
        emit(run.substr(begin, nul - begin));
        begin = nul + 1;
    }
    emit(run.substr(begin));
    afterCr_ = run.back() == '\r';
}

std::size_t Telnet::TakeSubData(std::string_view wire)
{
    const std::size_t length = std::min({wire.find(IacChar), wire.size(), AbandonSub - subLength_});
    if (length == 0 && subLength_ < AbandonSub) {
        state_ = State::SubDataCommand;
        return 1;
    }
    sub_.append(wire.substr(0, std::min(length, MaxSub + 1 - std::min(sub_.size(), MaxSub + 1))));
    subLength_ += length;
    if (subLength_ >= AbandonSub)
        state_ = State::Data;
    return length;
}

void Telnet::TakeByte(std::uint8_t byte)
{
    switch (state_) {
    case State::Command:
        TakeCommand(byte);
        break;
    case State::Option:
        state_ = State::Data;
        Negotiate(verb_, byte);
        break;
    case State::SubOption:
        subOption_ = byte;
        sub_.clear();
        subLength_ = 0;
        state_ = State::SubData;
        break;
    case State::SubDataCommand:
        TakeSubCommand(byte);
        break;
    case State::Data:
    case State::SubData:
        break; // taken in runs
    }
}

void Telnet::TakeCommand(std::uint8_t command)
{
    state_ = State::Data;
    if (command == IAC) {
        const char literal = IacChar;
        EmitData({&literal, 1});
        return;
    }
    Start(); // the host speaks telnet, so our offers are understood
    switch (command) {
    case WILL:
    case WONT:
    case DO:
    case DONT:
        verb_ = command;
        state_ = State::Option;
        break;
    case SB:
        state_ = State::SubOption;
        break;
    case AYT:
        SendNop(); // a sign of life that does not come out as input on the host
        break;
    case DM:
        EndSynch();
        break;
    default:
        break; // NOP, GA, EOR (a stream has no records) and commands to a printer that is not here
    }
}

void Telnet::TakeSubCommand(std::uint8_t command)
{
    if (command == IAC) {
        if (sub_.size() <= MaxSub)
            sub_ += IacChar;
        ++subLength_;
        state_ = State::SubData;
        return;
    }
    EndSub();
    // Anything but SE breaks the rule of RFC 855; the command then stands for itself and ends the rest.
    if (command == SE)
        state_ = State::Data;
    else
        TakeCommand(command);
}

void Telnet::EndSub()
{
    const OptionRow* row = Find(subOption_);
    if (row && row->subNegotiation && us_[subOption_] == Side::Yes && sub_.size() <= MaxSub)
        (this->*row->subNegotiation)(sub_);
    sub_.clear();
}

// --- options (RFC 1143: only a change of state is answered, so no two sides can loop)

void Telnet::Negotiate(std::uint8_t verb, std::uint8_t option)
{
    if (verb == WILL || verb == WONT)
        HostOffers(option, verb == WILL);
    else
        HostAsks(option, verb == DO);
}

void Telnet::HostOffers(std::uint8_t option, bool offers)
{
    Side& him = him_[option];
    const Side before = him;
    if (offers) {
        const OptionRow* row = Find(option);
        if (before == Side::No) {
            const bool agree = row && row->him(settings_);
            SendCommand(agree ? DO : DONT, option);
            if (!agree)
                return;
        }
        him = Side::Yes;
    } else {
        him = Side::No;
        if (before == Side::Yes)
            SendCommand(DONT, option);
    }
    if (option == Echo && (before == Side::Yes) != offers)
        events_.TelnetRemoteEcho(offers);
}

void Telnet::HostAsks(std::uint8_t option, bool asks)
{
    // Each DO asks whether all before it has been processed; there is no state to agree on (RFC 860).
    if (option == TimingMark) {
        if (asks)
            SendCommand(WILL, option);
        return;
    }
    Side& us = us_[option];
    const Side before = us;
    if (!asks) {
        us = Side::No;
        if (before == Side::Yes)
            SendCommand(WONT, option);
        return;
    }
    const OptionRow* row = Find(option);
    if (before == Side::No) {
        const bool agree = row && row->us(settings_);
        SendCommand(agree ? WILL : WONT, option);
        if (!agree)
            return;
    }
    us = Side::Yes;
    if (before != Side::Yes && row && row->agreed)
        (this->*row->agreed)();
}

// --- to the wire

void Telnet::SendCommand(std::uint8_t verb, std::uint8_t option)
{
    const std::array bytes{IacChar, static_cast<char>(verb), static_cast<char>(option)};
    events_.TelnetOutput({bytes.data(), bytes.size()});
}

void Telnet::SendSub(std::uint8_t option, std::string_view payload)
{
    std::string wire{IacChar, static_cast<char>(SB), static_cast<char>(option)};
    wire += Escaped(payload, {&IacChar, 1}, IacChar);
    wire += {IacChar, static_cast<char>(SE)};
    events_.TelnetOutput(wire);
}

void Telnet::SendSize()
{
    const auto high = [](int n) { return static_cast<char>(std::clamp(n, 0, 65535) >> 8); };
    const auto low = [](int n) { return static_cast<char>(std::clamp(n, 0, 65535) & 0xff); };
    const std::array size{high(settings_.cols), low(settings_.cols), high(settings_.rows), low(settings_.rows)};
    SendSub(WindowSize, {size.data(), size.size()});
}

// Each request gets the next name. The last one comes twice, which tells the host that the list is over, and
// the request after that begins anew (RFC 1091).
void Telnet::SendTerminalName(std::string_view request)
{
    if (request.empty() || request.front() != SubSend)
        return;
    const std::size_t last = settings_.terminalNames.size() - 1;
    SendSub(TerminalType, SubIs + settings_.terminalNames[std::min(nextName_, last)]);
    nextName_ = nextName_ > last ? 0 : nextName_ + 1;
}

void Telnet::SendSpeed(std::string_view request)
{
    if (!request.empty() && request.front() == SubSend)
        SendSub(TerminalSpeed, SubIs + settings_.speed);
}

// What each side does at present, as RFC 859 lists it.
void Telnet::SendStatus(std::string_view request)
{
    if (request.empty() || request.front() != SubSend)
        return;
    std::string answer{SubIs};
    const auto list = [&answer](const std::array<Side, 256>& sides, Code verb) {
        for (std::size_t option = 0; option < sides.size(); ++option)
            if (sides[option] == Side::Yes)
                answer += {static_cast<char>(verb), static_cast<char>(option)};
    };
    list(us_, WILL);
    list(him_, DO);
    SendSub(Status, answer);
}

// The user's name is all that is ever told, and only when it is asked for: by name, by kind or by asking for
// everything. What else stands in our environment is none of the host's business.
void Telnet::SendEnvironment(std::string_view request)
{
    if (request.empty() || request.front() != SubSend)
        return;
    request.remove_prefix(1);
    bool wanted = request.empty();
    while (!request.empty()) {
        const char kind = request.front();
        request.remove_prefix(1);
        constexpr std::array kinds{EnvVar, EnvUserVar};
        const auto end = std::ranges::find_first_of(request, kinds);
        const std::string_view name = request.substr(0, static_cast<std::size_t>(end - request.begin()));
        request.remove_prefix(name.size());
        wanted = wanted || (kind == EnvVar && (name.empty() || name == "USER"));
    }
    std::string answer{SubIs};
    if (wanted) {
        constexpr std::array special{EnvVar, EnvValue, EnvEsc, EnvUserVar};
        answer += EnvVar;
        answer += "USER";
        answer += EnvValue;
        answer += Escaped(settings_.userName, {special.data(), special.size()}, EnvEsc);
    }
    SendSub(NewEnviron, answer);
}

// Outside BINARY a CR never stands alone on the wire (RFC 854). While the host still takes whole lines the key
// Enter means the network's end of line, CR LF; once it reads characters it means the character CR, CR NUL.
void Telnet::Send(std::string_view bytes)
{
    const bool literal = us_[Binary] == Side::Yes;
    const bool wholeLines = him_[SuppressGoAhead] != Side::Yes;
    std::string wire;
    wire.reserve(bytes.size() + 16);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        wire += c;
        if (c == IacChar)
            wire += IacChar;
        else if (c == '\r' && !literal) {
            const bool lineFeedFollows = i + 1 < bytes.size() && bytes[i + 1] == '\n';
            if (wholeLines && !lineFeedFollows)
                wire += '\n';
            else if (!wholeLines)
                wire += '\0';
        }
    }
    // The Enter key ends a record of a host that asked for records.
    if (us_[EndOfRecord] == Side::Yes && bytes.ends_with('\r'))
        wire += {IacChar, static_cast<char>(EOR)};
    if (!wire.empty())
        events_.TelnetOutput(wire);
}

void Telnet::Resize(int cols, int rows)
{
    if (cols == settings_.cols && rows == settings_.rows)
        return;
    settings_.cols = cols;
    settings_.rows = rows;
    if (us_[WindowSize] == Side::Yes)
        SendSize();
}

namespace {

void OutputPair(TelnetEvents& events, Code command)
{
    const std::array bytes{IacChar, static_cast<char>(command)};
    events.TelnetOutput({bytes.data(), bytes.size()});
}

} // namespace

void Telnet::SendBreak(TelnetBreak kind) { OutputPair(events_, kind == TelnetBreak::Break ? BRK : IP); }
void Telnet::SendNop() { OutputPair(events_, NOP); }
void Telnet::SendAreYouThere() { OutputPair(events_, AYT); }

} // namespace kestrune::comm
