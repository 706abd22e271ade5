#include <comm/deviceline.h>

#include "proxylogin.h"

#include <utility>

namespace kestrune::comm {

DeviceLine::DeviceLine(LineOptions options, LineListener& listener, Clock& clock)
    : options_(std::move(options)), listener_(listener), clock_(clock)
{}

void DeviceLine::Post(std::function<void()> run)
{
    QMetaObject::invokeMethod(this, std::move(run), Qt::QueuedConnection);
}

void DeviceLine::Open()
{
    if (phase_ != Phase::Fresh)
        return;
    phase_ = Phase::Opening;
    Post([this] {
        if (phase_ == Phase::Opening)
            Begin();
    });
}

void DeviceLine::Close()
{
    if (phase_ == Phase::Opening || phase_ == Phase::Open)
        End({.stateText = tr("Disconnected")});
}

void DeviceLine::SetReceiving(bool on)
{
    if (receiving_ == on)
        return;
    receiving_ = on;
    if (on)
        Post([this] {
            if (receiving_ && IsOpen())
                TakeWaiting();
        });
}

void DeviceLine::EnterState(LineState state, const QString& text) { listener_.LineStateChanged(state, text); }

void DeviceLine::BecomeOpen(const QString& text)
{
    phase_ = Phase::Open;
    EnterState(LineState::Connected, text);
}

void DeviceLine::Fail(quint16 number, const QString& text)
{
    End({.errorWord = LineErrorWord(options_.device, number), .error = text, .stateText = text});
}

void DeviceLine::End(Ending ending)
{
    if (phase_ == Phase::Ended)
        return;
    phase_ = Phase::Ended;
    LetGo();
    Post([this, ending = std::move(ending)] {
        if (ending.before)
            ending.before();
        if (ending.errorWord != 0)
            listener_.LineError(ending.errorWord, ending.error, true);
        EnterState(LineState::Closed, ending.stateText);
        listener_.LineClosed(); // may destroy this line
    });
}

void DeviceLine::Ask(LineQuestion question, std::function<void(LineAnswer)> then)
{
    question.id = ++questions_;
    answered_ = std::move(then);
    listener_.LineAsks(question);
}

void DeviceLine::AskProxyLogin(const QString& proxy, const QString& host, bool again,
                               std::function<void(const QString& user, Secret password)> retry)
{
    if (proxyLogins_++ == MostProxyLogins) {
        Fail(LineErrorNumber::AccessDenied,
             tr("Unable to connect to %1: the proxy %2 refuses this name and password.").arg(host, proxy));
        return;
    }
    const QString& user = options_.proxy.user;
    Ask(ProxyLoginQuestion(proxy, host, user, again),
        [this, proxy, host, user, retry = std::move(retry)](LineAnswer answer) {
            const bool nobody = answer.choice == LineAnswer::Choice::Nobody;
            if (auto login = ProxyLoginFrom(std::move(answer), user))
                retry(login->user, std::move(login->password));
            else if (nobody)
                Fail(LineErrorNumber::AccessDenied,
                     tr("Unable to connect to %1: the proxy %2 wants a password, and there is nobody to ask for it.")
                         .arg(host, proxy));
            else
                Close();
        });
}

void DeviceLine::Answer(LineAnswer answer)
{
    if (!HasEnded() && answer.question == questions_ && answered_)
        std::exchange(answered_, nullptr)(std::move(answer));
}

bool DeviceLine::HasRoomFor(qsizetype bytes)
{
    if (Unsent() + bytes <= MaxUnsent)
        return true;
    if (!std::exchange(overflowTold_, true))
        listener_.LineError(LineErrorWord(options_.device, LineErrorNumber::NoBufferSpace),
                            tr("The host takes no input at present. What is sent now is lost."), false);
    return false;
}

void DeviceLine::Drained()
{
    overflowTold_ = false;
    listener_.LineDrained();
}

} // namespace kestrune::comm
