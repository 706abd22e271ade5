#include <platform/endrequests.h>

#include <array>
#include <atomic>
#include <csignal>
#include <utility>

namespace kestrune {

namespace {

constexpr std::array kEndSignals{SIGTERM, SIGHUP, SIGINT};

std::atomic<WakeUp*> asleep{nullptr};
static_assert(std::atomic<WakeUp*>::is_always_lock_free); // it is read in a signal's handler

void Ring(int)
{
    if (WakeUp* wake = asleep)
        wake->Wake(); // one write, which a handler may do
}

} // namespace

EndRequests::EndRequests(std::function<void()> asked) : notifier_(wake_.Descriptor(), QSocketNotifier::Read)
{
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this, asked = std::move(asked)] {
        notifier_.setEnabled(false);
        asked();
    });
    asleep = &wake_;
    struct sigaction action = {};
    action.sa_handler = Ring;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (const int number : kEndSignals) {
        struct sigaction found = {};
        ::sigaction(number, &action, &found);
        if (found.sa_handler == SIG_IGN) // nohup, say
            ::sigaction(number, &found, nullptr);
    }
}

EndRequests::~EndRequests()
{
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    for (const int number : kEndSignals) {
        struct sigaction found = {};
        ::sigaction(number, nullptr, &found);
        if (found.sa_handler == Ring)
            ::sigaction(number, &byDefault, nullptr);
    }
    asleep = nullptr;
}

} // namespace kestrune
