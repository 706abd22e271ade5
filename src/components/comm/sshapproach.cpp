#include "sshapproach.h"

#include <dispatch/failure.h>

#include <QCoreApplication>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

struct ApproachText
{
    Q_DECLARE_TR_FUNCTIONS(SshLine)
};

constexpr std::size_t MostJumps = 8;

// What the session says is about its own host: keys and trust are asked for at each on the way.
LineOptions OptionsOnTheWay(const LineOptions& options)
{
    LineOptions own = options;
    own.ssh.auth = SshAuth::Automatic;
    own.ssh.hostKeyFingerprint.clear();
    own.ssh.jump.clear();
    own.ssh.forwards.clear();
    own.ssh.forwardAgent = false;
    return own;
}

std::vector<SshTarget> ConfiguredJumps(const SshContact& contact)
{
    return JumpsOfCommand(contact.ProxyCommand()).value_or(std::vector<SshTarget>());
}

} // namespace

SshApproach::SshApproach(const LineOptions& options, SshMailbox& mail, Enter enter)
    : options_(OptionsOnTheWay(options)), mail_(mail), enter_(enter)
{}

// The nearest first. Only its own configuration can put more in front; the others are reached by the one before.
SshApproach::Route SshApproach::RouteTo(const SshContact& host, const std::vector<SshTarget>& jumps)
{
    Route route;
    std::vector<SshTarget> more = jumps;
    while (!more.empty()) {
        for (; !more.empty(); more.pop_back())
            route.push_front(std::make_unique<SshContact>(mail_, options_, more.back()));
        if (route.size() > MostJumps)
            host.Fail(LineErrorNumber::InvalidArgument,
                      ApproachText::tr("Unable to connect to %1: the hosts on the way to it lead in a circle.")
                          .arg(host.Host()));
        more = ConfiguredJumps(*route.front());
    }
    return route;
}

int SshApproach::FirstSocket(SshContact& nearest, bool byCommand)
{
    if (byCommand) {
        if (nearest.ProxyCommand().contains(u"%r"_s) && !SshTarget::IsSafeInCommand(nearest.User()))
            nearest.Fail(
                LineErrorNumber::InvalidArgument,
                ApproachText::tr("Unable to connect to %1: the user name \"%2\" cannot be given to the command "
                                 "that leads there.")
                    .arg(nearest.Host(), nearest.User().left(80)));
        const QString command =
            ExpandedCommand(nearest.ProxyCommand(), nearest.Host(), nearest.Port(), nearest.User(), nearest.Given());
        try {
            return command_.emplace(command.toLocal8Bit()).TakeSocket();
        } catch (const Failure& failure) {
            nearest.Fail(LineErrorNumber::NoBufferSpace, failure.Text());
        }
    }
    mail_.Tell([host = nearest.Host(), port = static_cast<quint16>(nearest.Port())](SshNotices& line) {
        line.SshDial(host, port);
    });
    const int socket = mail_.AwaitSocket();
    if (socket < 0)
        throw SshFailure(SshEnding{});
    return socket;
}

int SshApproach::To(SshContact& host)
{
    const LineOptions::Ssh& session = host.Options().ssh;
    const bool sessionSays = !session.jump.trimmed().isEmpty();
    Route route = RouteTo(host, sessionSays ? JumpsFrom(session.jump) : ConfiguredJumps(host));
    SshContact& nearest = route.empty() ? host : *route.front();
    // A proxy of the session's takes the place of a command; "none" takes that of everything in the configuration.
    const bool byCommand = options_.proxy.kind == 0 && !nearest.ProxyCommand().isEmpty() &&
                           ConfiguredJumps(nearest).empty() && (!route.empty() || !sessionSays);
    int socket = FirstSocket(nearest, byCommand);
    while (!route.empty()) {
        auto contact = std::move(route.front());
        route.pop_front();
        enter_(*contact, socket);
        const SshContact& next = route.empty() ? host : *route.front();
        last_ = std::make_unique<SshJump>(std::move(last_), std::move(contact), next.Host(), next.Port());
        socket = last_->TakeSocket();
    }
    return socket;
}

} // namespace kestrune::comm
