#include "resumableline.h"

#include <utility>

namespace kestrune::comm {

namespace {

using namespace std::chrono_literals;

constexpr auto kWatching = 5min; // a login with a password to look up; its volume is limited too
constexpr auto kAgreeing = 10s;
constexpr auto kLeaving = 1s;

struct Ticket : LineResume
{
    explicit Ticket(std::unique_ptr<RebindTicket> of) : ticket(std::move(of)) {}
    std::unique_ptr<RebindTicket> ticket;
};

std::unique_ptr<RebindTicket> TicketOf(const LineOptions& options)
{
    auto* kept = dynamic_cast<Ticket*>(options.resume.from.get());
    return kept ? std::move(kept->ticket) : nullptr;
}

// Outside BINARY a network virtual terminal has seven bits (RFC 854).
bool HasSevenBits(const LineOptions& options)
{
    const bool telnet = options.device == Device::Telnet || options.device == Device::SslTelnet;
    return telnet && !options.telnet.bypass && !options.telnet.binary;
}

} // namespace

bool ResumableLine::IsWanted(const LineOptions& options)
{
    // Not over a serial cable or a modem, where seven bits or XON/XOFF may stand between the two ends.
    constexpr std::array without{Device::None, Device::SerialPort, Device::Modem, Device::Extension};
    return options.resume.enabled && std::ranges::find(without, options.device) == without.end();
}

ResumableLine::ResumableLine(const LineOptions& options, LineListener& listener, Clock& clock, const Maker& make)
    : listener_(listener), clock_(clock), device_(options.device), resumes_(options.resume.from != nullptr),
      terminal_(std::size_t(options.resume.bufferBytes), TicketOf(options), *this), inner_(make(options, *this, clock))
{
    terminal_.SetSevenBit(HasSevenBits(options));
}

void ResumableLine::Close()
{
    // Who leaves for good takes the host's session along: told so, it ends, and the login and the line with it.
    const bool bound = CanResume();
    if (std::exchange(closing_, true))
        return;
    if (bound) {
        terminal_.Quit();
        timer_ = clock_.After(kLeaving, [this] { inner_->Close(); });
    } else {
        inner_->Close();
    }
}

void ResumableLine::Send(std::string_view bytes)
{
    if (terminal_.Waiting() + bytes.size() <= std::size_t{MaxUnsent}) {
        terminal_.FromUser(bytes);
        return;
    }
    if (!std::exchange(overflowTold_, true))
        listener_.LineError(LineErrorWord(device_, LineErrorNumber::NoBufferSpace),
                            tr("The host takes no input at present. What is sent now is lost."), false);
}

qsizetype ResumableLine::Unsent() const { return inner_->Unsent() + qsizetype(terminal_.Waiting()); }

std::shared_ptr<LineResume> ResumableLine::TakeResume()
{
    auto ticket = closing_ || ended_ ? nullptr : terminal_.TakeTicket();
    return ticket ? std::make_shared<Ticket>(std::move(ticket)) : nullptr;
}

// --- the line inside

void ResumableLine::LineReceived(std::string_view bytes)
{
    const bool waited = terminal_.Waiting() > 0;
    terminal_.FromLine(bytes);
    if (waited && Unsent() == 0)
        LineDrained();
}

void ResumableLine::LineStateChanged(LineState state, const QString& text)
{
    if (state == LineState::Connected)
        timer_ = clock_.After(kWatching, [this] { GiveUp(); });
    listener_.LineStateChanged(state, text);
}

void ResumableLine::LineDeviceStatus(const QString& text)
{
    status_ = text;
    listener_.LineDeviceStatus(text);
}

void ResumableLine::LineError(quint32 errorWord, const QString& description, bool fatal)
{
    failureTold_ = failureTold_ || fatal;
    listener_.LineError(fatal && (CanResume() || resumes_) ? errorWord | LineErrorCanResume : errorWord, description,
                        fatal);
}

void ResumableLine::LineClosed()
{
    timer_.reset();
    if (!failureTold_ && CanResume())
        LineError(LineErrorWord(device_, LineErrorNumber::ConnectionReset),
                  tr("The connection to the host has been lost. The session there goes on and can be resumed."), true);
    listener_.LineClosed(); // may destroy this line
}

void ResumableLine::LineProgramEnded(int exitCode, int signalNumber)
{
    if (!terminal_.IsBound()) // else it is the login's end, not the session's
        listener_.LineProgramEnded(exitCode, signalNumber);
}

void ResumableLine::LineDrained()
{
    overflowTold_ = false;
    if (terminal_.Waiting() == 0)
        listener_.LineDrained();
}

// --- the agreement

void ResumableLine::RebindAnswered()
{
    timer_ = clock_.After(kAgreeing, [this] { GiveUp(); });
}

void ResumableLine::RebindAgreed(bool sameSession)
{
    timer_.reset();
    resumes_ = false;
    listener_.LineDeviceStatus(tr("%1, can be resumed").arg(status_));
    listener_.LineResumed(sameSession);
}

void ResumableLine::GiveUp()
{
    terminal_.GiveUp();
    if (std::exchange(resumes_, false))
        listener_.LineResumed(false);
}

void ResumableLine::RebindEnded(int exitCode)
{
    ended_ = true;
    listener_.LineProgramEnded(exitCode, 0);
}

void ResumableLine::RebindBroken()
{
    LineError(LineErrorWord(device_, LineErrorNumber::ConnectionReset),
              tr("The line to the host changes or drops bytes, and was closed."), true);
    inner_->Close();
}

} // namespace kestrune::comm
