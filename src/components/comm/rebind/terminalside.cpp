#include "terminalside.h"

#include <algorithm>
#include <utility>

namespace kestrune::comm {

namespace {

constexpr std::size_t kWatched = 0x40000; // a login says less; what comes later is some file being shown
constexpr std::size_t kPiece = 0x4000;

} // namespace

RebindTerminal::RebindTerminal(std::size_t bufferSize, std::unique_ptr<RebindTicket> ticket, RebindEvents& events)
    : events_(events), bufferSize_(bufferSize), ticket_(std::move(ticket))
{}

void RebindTerminal::FromLine(std::string_view wire)
{
    while (!wire.empty() && (state_ == State::Watching || state_ == State::Answered))
        wire.remove_prefix(Watch(wire));
    if (wire.empty())
        return;
    if (state_ == State::Bound)
        TakeStream(wire);
    else
        events_.RebindData(wire);
}

// Takes some of the bytes: those that cannot be the host's message go to the screen at once.
std::size_t RebindTerminal::Watch(std::string_view wire)
{
    const bool announced = state_ == State::Answered;
    const std::string_view wanted = announced ? rebind::Opening : rebind::Announcement;
    if (held_.empty()) {
        const std::size_t start = std::min(wire.find(wanted.front()), wire.size());
        if (start > 0) {
            watched_ += start;
            events_.RebindData(wire.substr(0, start));
            if (watched_ > kWatched)
                GiveUp();
            return start;
        }
    }
    // The rest of a message has no length of its own but ends as it must.
    const bool inBody = held_.size() >= wanted.size();
    if (inBody || wire.front() == wanted[held_.size()]) {
        held_ += wire.front();
        if (!announced && held_.size() == wanted.size()) {
            held_.clear();
            AnswerHost();
        } else if (announced && held_.ends_with(rebind::Closing)) {
            const std::string message = std::exchange(held_, {});
            TakeReady(std::string_view(message).substr(wanted.size(),
                                                       message.size() - wanted.size() - rebind::Closing.size()));
        } else if (held_.size() > wanted.size() + rebind::LongestMessage) {
            GiveUp();
        }
        return 1;
    }
    events_.RebindData(std::exchange(held_, {}));
    return 0; // the byte itself may start the message
}

void RebindTerminal::AnswerHost()
{
    state_ = State::Answered;
    rebind::Answer answer{.sevenBit = sevenBit_, .token = {}, .received = 0};
    if (ticket_) {
        answer.token = ticket_->token;
        answer.received = ticket_->stream.Received();
    }
    events_.RebindAnswered();
    events_.RebindOutput(rebind::Format(answer));
}

void RebindTerminal::TakeReady(std::string_view message)
{
    const auto ready = rebind::ParseReady(message);
    const bool same = ready && ticket_ && ready->token == ticket_->token;
    if (!ready || (same && !ticket_->stream.Resume(ready->received))) {
        ticket_.reset(); // whatever comes, that session cannot be had again
        events_.RebindBroken();
        GiveUp();
        return;
    }
    if (same)
        waiting_.insert(0, ticket_->waiting);
    else
        ticket_ = std::make_unique<RebindTicket>(RebindTicket{ready->token, ResumableStream(bufferSize_)});
    ticket_->stream.SetSevenBit(sevenBit_);
    state_ = State::Bound;
    events_.RebindAgreed(same);
    Push();
}

void RebindTerminal::TakeStream(std::string_view wire)
{
    std::string data;
    const bool whole = ticket_->stream.Receive(wire, data);
    if (!data.empty())
        events_.RebindData(data);
    if (!whole) {
        events_.RebindBroken();
        return;
    }
    const auto ended = ticket_->stream.Ended();
    if (ended && !std::exchange(endTold_, true))
        events_.RebindEnded(*ended);
    Push();
}

void RebindTerminal::FromUser(std::string_view bytes)
{
    switch (state_) {
    case State::Watching:
    case State::Plain:
        events_.RebindOutput(bytes);
        return;
    case State::Answered:
        waiting_ += bytes;
        return;
    case State::Bound:
        waiting_ += bytes;
        Push();
        return;
    }
}

void RebindTerminal::Push()
{
    ResumableStream& stream = ticket_->stream;
    do {
        const std::size_t some = std::min(waiting_.size(), stream.Room());
        stream.Write(std::string_view(waiting_).substr(0, some));
        waiting_.erase(0, some);
        while (stream.HasOutput())
            events_.RebindOutput(stream.TakeOutput(kPiece));
    } while (!waiting_.empty() && stream.Room() > 0);
}

void RebindTerminal::GiveUp()
{
    if (state_ != State::Watching && state_ != State::Answered)
        return;
    state_ = State::Plain;
    if (!held_.empty())
        events_.RebindData(std::exchange(held_, {}));
    if (!waiting_.empty())
        events_.RebindOutput(std::exchange(waiting_, {}));
}

void RebindTerminal::Quit()
{
    if (state_ != State::Bound)
        return;
    ticket_->stream.Quit();
    Push();
}

std::unique_ptr<RebindTicket> RebindTerminal::TakeTicket()
{
    const bool alive = ticket_ && (state_ == State::Bound ? !ticket_->stream.Ended() : true);
    if (!alive)
        return nullptr;
    if (state_ == State::Bound)
        ticket_->waiting = std::move(waiting_);
    return std::move(ticket_);
}

} // namespace kestrune::comm
