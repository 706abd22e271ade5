#include <comm/modemline.h>

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

// That a call can have, at the port as well: what another modem calls a speed is its own affair.
constexpr std::array PortSpeeds{300, 1200, 2400, 4800, 9600, 14400, 19200, 38400, 57600, 115200};

struct CallWords
{
    ModemCall call;
    const char* text; // %1: the number; %2: the modem's own words
};

constexpr std::array CallTexts{
    CallWords{ModemCall::Dialing, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "Dialing %1 %2")},
    CallWords{ModemCall::Connected, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "Call connected %2")},
    CallWords{ModemCall::Busy, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "%1 is busy")},
    CallWords{ModemCall::NoCarrier, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "No carrier")},
    CallWords{ModemCall::NoDialTone, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "No dial tone")},
    CallWords{ModemCall::NoAnswer, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "%1 does not answer")},
    CallWords{ModemCall::Failed, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "The modem refuses to dial")},
    CallWords{ModemCall::Answering, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "Answering a call")},
    CallWords{ModemCall::Ringing, QT_TRANSLATE_NOOP("kestrune::comm::ModemLine", "A call is coming in")},
};

constexpr bool SameNumber(ModemCall call, DialStatus status)
{
    return static_cast<int>(call) == static_cast<int>(status);
}
static_assert(SameNumber(ModemCall::None, DialStatus::NoCall) && SameNumber(ModemCall::Dialing, DialStatus::Dialing) &&
              SameNumber(ModemCall::Connected, DialStatus::Connected) &&
              SameNumber(ModemCall::Busy, DialStatus::Busy) &&
              SameNumber(ModemCall::NoCarrier, DialStatus::NoCarrier) &&
              SameNumber(ModemCall::NoDialTone, DialStatus::NoDialTone) &&
              SameNumber(ModemCall::NoAnswer, DialStatus::NoAnswer) &&
              SameNumber(ModemCall::Failed, DialStatus::Failed) &&
              SameNumber(ModemCall::Answering, DialStatus::Answering) &&
              SameNumber(ModemCall::Ringing, DialStatus::Ringing));

} // namespace

ModemLine::ModemLine(const LineOptions& options, LineListener& listener, Clock& clock, SerialLine::PortOpener open)
    : DeviceLine(options, listener, clock), open_(std::move(open))
{
    const ModemCatalog catalog(options.modem.programFolder, options.modem.userFolder);
    location_ = catalog.Location();
    modem_ = catalog.Find(options);
}

ModemLine::~ModemLine() = default;

void ModemLine::Begin()
{
    if (!modem_) {
        Fail(LineErrorNumber::InvalidArgument,
             tr("Unable to connect: there is no modem \"%1\".").arg(Options().hostName.left(80)));
        return;
    }
    LineOptions inner = Options();
    inner.hostName = modem_->port;
    inner.serial = modem_->serial;
    port_ = std::make_unique<SerialLine>(inner, static_cast<LineListener&>(*this), Time(), open_);
    port_->WatchModemLines([this](const ModemLines& lines) {
        if (!dialogue_)
            return;
        dialogue_->Carrier(lines.carrier, Time().Now());
        Schedule();
    });
    port_->SetReceiving(Receiving());
    port_->Open();
}

// Closing the port lowers DTR, which ends a call that stands.
void ModemLine::LetGo()
{
    timer_.reset();
    Post([gone = std::shared_ptr<ModemDialogue>(std::move(dialogue_))] {}); // it may be the one that is telling
    if (port_)
        port_->Close();
}

void ModemLine::SetReceiving(bool on)
{
    DeviceLine::SetReceiving(on);
    if (port_)
        port_->SetReceiving(on);
}

// --- the port

void ModemLine::LineReceived(std::string_view bytes)
{
    if (HasEnded())
        return;
    Listener().LineReceived(bytes);
    if (dialogue_)
        dialogue_->Receive(bytes, Time().Now());
    Schedule();
}

void ModemLine::LineStateChanged(LineState state, const QString& text)
{
    if (HasEnded() || state == LineState::Closed)
        return;
    if (state == LineState::Connected) {
        SetUpModem();
        return;
    }
    timer_.reset();
    if (dialogue_ && std::exchange(dialogue_, nullptr)->Call() != ModemCall::None)
        Listener().LineDialStatus(DialStatus::NoCarrier, {});
    if (!HasEnded())
        EnterState(state, text);
}

void ModemLine::SetUpModem()
{
    EnterState(LineState::Connecting, tr("Setting up %1").arg(modem_->name));
    if (HasEnded())
        return;
    const auto lines = port_->Lines();
    const ModemOptions options{.autoAnswer = Options().modem.autoAnswer,
                               .hasLines = lines.has_value(),
                               .patience = std::chrono::seconds(std::max(Options().connectTimeout, 0))};
    dialogue_ = std::make_unique<ModemDialogue>(modem_->definition, options, static_cast<ModemEvents&>(*this));
    if (lines)
        dialogue_->Carrier(lines->carrier, Time().Now());
    dialogue_->Start(Time().Now());
    Schedule();
}

void ModemLine::LineDeviceStatus(const QString& text)
{
    if (!HasEnded())
        Listener().LineDeviceStatus(text);
}

void ModemLine::LineError(quint32 errorWord, const QString& description, bool fatal)
{
    if (HasEnded())
        return;
    if (fatal)
        Fail(static_cast<quint16>(errorWord & 0xFFFFU), description);
    else
        Listener().LineError(errorWord, description, false);
}

void ModemLine::LineClosed()
{
    if (!HasEnded())
        End({.stateText = tr("Disconnected")});
}

void ModemLine::LineDrained()
{
    if (!HasEnded() && IsOpen())
        Listener().LineDrained();
}

// --- what goes out

void ModemLine::Send(std::string_view bytes)
{
    if (!IsOpen() || !dialogue_ || bytes.empty())
        return;
    if (dialogue_->MayType())
        port_->Send(bytes);
    else if (dialogue_->Call() == ModemCall::Dialing || dialogue_->Call() == ModemCall::Answering)
        HangUp(); // as with the modem itself: any key stops it
}

void ModemLine::Break(int milliseconds)
{
    if (port_ && dialogue_ && dialogue_->Call() == ModemCall::Connected)
        port_->Break(milliseconds);
}

bool ModemLine::Dial(const QString& number)
{
    const auto translated = TranslateTyped(number.toStdString(), location_);
    if (!IsOpen() || !dialogue_ || !translated)
        return false;
    number_ = QString::fromStdString(translated->displayed);
    const bool dials = dialogue_->Dial(translated->dialable, Time().Now());
    Schedule();
    return dials;
}

bool ModemLine::HangUp()
{
    const bool ends = dialogue_ && dialogue_->HangUp(Time().Now());
    Schedule();
    return ends;
}

// --- the modem

void ModemLine::Schedule()
{
    timer_.reset();
    const auto deadline = dialogue_ ? dialogue_->Deadline() : std::nullopt;
    if (!deadline)
        return;
    timer_ = Time().After(std::max(*deadline - Time().Now(), Clock::Duration(0)), [this] {
        if (dialogue_)
            dialogue_->Tick(Time().Now());
        Schedule();
    });
}

void ModemLine::ModemOutput(std::string_view bytes)
{
    if (port_)
        port_->Send(bytes);
}

void ModemLine::ModemTerminalReady(bool on)
{
    if (port_)
        port_->SetTerminalReady(on);
}

void ModemLine::ModemSpeed(int bitsPerSecond)
{
    const bool known = bitsPerSecond == 0 || std::ranges::find(PortSpeeds, bitsPerSecond) != PortSpeeds.end();
    if (port_ && known && !Options().modem.lockBaudRate)
        port_->SetSpeed(bitsPerSecond);
}

void ModemLine::TellReady()
{
    const QString text = tr("%1 is ready").arg(modem_->name);
    if (IsOpen())
        EnterState(LineState::Connected, text);
    else
        BecomeOpen(text);
}

void ModemLine::ModemIsReady()
{
    if (!HasEnded())
        TellReady();
}

void ModemLine::ModemIsSilent()
{
    Fail(LineErrorNumber::TimedOut, tr("Unable to connect: the modem at %1 does not answer.").arg(modem_->port));
}

void ModemLine::ModemCallChanged(ModemCall call, const std::string& said)
{
    if (HasEnded())
        return;
    const QString words = QString::fromLatin1(said.data(), static_cast<qsizetype>(said.size()));
    const auto row = std::ranges::find(CallTexts, call, &CallWords::call);
    Listener().LineDialStatus(static_cast<DialStatus>(call), words);
    if (HasEnded())
        return;
    if (row == CallTexts.end())
        TellReady();
    else
        EnterState(LineState::Connected, tr(row->text).replace(u"%1"_s, number_).replace(u"%2"_s, words).trimmed());
}

} // namespace kestrune::comm
