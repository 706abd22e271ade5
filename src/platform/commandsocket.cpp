#include <platform/commandsocket.h>

#include <platform/systemfailure.h>

#include <QCoreApplication>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrune {

CommandSocket::CommandSocket(const QByteArray& command)
{
    const auto fail = [](int error) {
        throw SystemFailure(error, Subject::File,
                            QCoreApplication::translate("CommandSocket", "The command could not be started"));
    };
    const auto ends = SocketPair();
    if (!ends)
        fail(errno);
    ours_ = OwnedSocket((*ends)[0]);
    const OwnedSocket theirs((*ends)[1]);
    ::fcntl(theirs.Number(), F_SETFL, 0); // programs expect input that can be waited for

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, theirs.Number(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, theirs.Number(), STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t group; // a group of its own: what the shell starts goes with it
    ::posix_spawnattr_init(&group);
    ::posix_spawnattr_setflags(&group, POSIX_SPAWN_SETPGROUP);
    std::string text = command.toStdString();
    std::string shell = "sh";
    std::string option = "-c";
    char* const words[]{shell.data(), option.data(), text.data(), nullptr};
    pid_t started = -1;
    const int error = ::posix_spawn(&started, "/bin/sh", &actions, &group, words, environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::posix_spawnattr_destroy(&group);
    if (error != 0)
        fail(error);
    process_ = started;
}

CommandSocket::~CommandSocket()
{
    if (process_ < 0)
        return;
    // Not kindly: what its owner knew it for, the connection, is over, and a wait for it must end.
    ::kill(-process_, SIGHUP);
    ::kill(-process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

} // namespace kestrune
