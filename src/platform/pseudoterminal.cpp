#include <platform/pseudoterminal.h>

#include "filedescriptor.h"

#include <platform/processors.h>

#include <QCoreApplication>
#include <QFile>
#include <QObject>
#include <QSocketNotifier>
#include <QStandardPaths>
#include <QTimer>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace kestrune {

namespace {

constexpr tcflag_t InputModes = ICRNL | IXON | IMAXBEL | BRKINT;
constexpr tcflag_t OutputModes = OPOST | ONLCR;
constexpr tcflag_t LocalModes = ISIG | ICANON | IEXTEN | ECHO | ECHOE | ECHOK | ECHOCTL | ECHOKE;

// What people expect of a fresh terminal: echo, line editing and the usual control characters.
termios FreshTerminal(const ProgramStart& start)
{
    termios t{};
    t.c_iflag = InputModes | (start.utf8 ? IUTF8 : 0U);
    t.c_oflag = OutputModes;
    t.c_cflag = CREAD | CS8 | HUPCL;
    t.c_lflag = LocalModes;
    const auto control = [](char letter) { return static_cast<cc_t>(letter & 0x1f); };
    t.c_cc[VINTR] = control('C');
    t.c_cc[VQUIT] = control('\\');
    t.c_cc[VERASE] = static_cast<cc_t>(start.eraseCharacter);
    t.c_cc[VKILL] = control('U');
    t.c_cc[VEOF] = control('D');
    t.c_cc[VSTART] = control('Q');
    t.c_cc[VSTOP] = control('S');
    t.c_cc[VSUSP] = control('Z');
    t.c_cc[VREPRINT] = control('R');
    t.c_cc[VDISCARD] = control('O');
    t.c_cc[VWERASE] = control('W');
    t.c_cc[VLNEXT] = control('V');
    t.c_cc[VMIN] = 1;
    cfsetispeed(&t, B38400);
    cfsetospeed(&t, B38400);
    return t;
}

winsize SizeOf(int cols, int rows, int pixelWidth, int pixelHeight)
{
    const auto narrow = [](int n) { return static_cast<unsigned short>(qBound(0, n, 65535)); };
    return {narrow(rows), narrow(cols), narrow(pixelWidth), narrow(pixelHeight)};
}

struct TerminalPair
{
    FileDescriptor ours;
    FileDescriptor theirs;
};

// Both sides closed on exec, ours never blocking. Invalid sides: errno tells why.
TerminalPair OpenTerminal(const ProgramStart& start)
{
    FileDescriptor ours(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 64> name{};
    if (!ours || ::grantpt(ours.Number()) != 0 || ::unlockpt(ours.Number()) != 0 ||
        ::ptsname_r(ours.Number(), name.data(), name.size()) != 0)
        return {};
    FileDescriptor theirs(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!theirs)
        return {};
    const termios fresh = FreshTerminal(start);
    const winsize size = SizeOf(start.cols, start.rows, start.pixelWidth, start.pixelHeight);
    if (::tcsetattr(theirs.Number(), TCSANOW, &fresh) != 0 || ::ioctl(theirs.Number(), TIOCSWINSZ, &size) != 0)
        return {};
    return {std::move(ours), std::move(theirs)};
}

std::vector<char*> PointersTo(const std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str())); // NOLINT: exec's old signature; it does not write
    pointers.push_back(nullptr);
    return pointers;
}

// All that the child needs, made before the fork: between fork and exec nothing may allocate or lock.
struct ChildFacts
{
    const char* file;
    char* const* arguments;
    char* const* environment;
    const char* workingFolder;
    int terminal;
    int report;
};

// Runs in the forked child: system calls only. Comes back only when a step failed, with errno set.
void BecomeProgram(const ChildFacts& facts)
{
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number)
        ::sigaction(number, &byDefault, nullptr);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    GiveBackProcessors();

    if (::setsid() < 0 || ::ioctl(facts.terminal, TIOCSCTTY, 0) != 0)
        return;
    // The report pipe first goes out of the way of the three standard descriptors and of the terminal.
    const int report = ::fcntl(facts.report, F_DUPFD_CLOEXEC, 10);
    if (report < 0)
        return;
    for (int standard = 0; standard < 3; ++standard)
        if (::dup2(facts.terminal, standard) < 0)
            return;
    if (facts.terminal < 3) // dup2 onto itself keeps the close-on-exec flag
        ::fcntl(facts.terminal, F_SETFD, 0);
    ::close_range(3, static_cast<unsigned>(report) - 1, 0);
    ::close_range(static_cast<unsigned>(report) + 1, ~0U, 0);
    if (::chdir(facts.workingFolder) != 0 && ::chdir("/") != 0)
        return;
    ::execve(facts.file, facts.arguments, facts.environment);
    const int error = errno;
    (void)!::write(report, &error, sizeof error);
    ::_exit(127);
}

// The child's errno from the pipe, or 0 when the pipe closed because the exec succeeded.
int ReadReport(int pipe)
{
    int error = 0;
    ssize_t got = 0;
    do
        got = ::read(pipe, &error, sizeof error);
    while (got < 0 && errno == EINTR);
    return got == static_cast<ssize_t>(sizeof error) ? error : 0;
}

pid_t Fork(const ProgramStart& start, int terminal, int report)
{
    const std::vector<char*> arguments = PointersTo(start.arguments);
    const std::vector<char*> environment = PointersTo(start.environment);
    const ChildFacts facts{start.file.c_str(),          arguments.data(), environment.data(),
                           start.workingFolder.c_str(), terminal,         report};
    // No handler of ours may run in the child before it has reset them.
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t process = ::fork();
    if (process == 0) {
        BecomeProgram(facts);
        const int error = errno;
        (void)!::write(report, &error, sizeof error);
        ::_exit(127);
    }
    const int error = errno;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return process;
}

std::optional<ProgramEnd> Collect(int process)
{
    siginfo_t info{};
    if (::waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG) != 0)
        return errno == ECHILD ? std::optional<ProgramEnd>(ProgramEnd{}) : std::nullopt;
    if (info.si_pid == 0)
        return std::nullopt;
    if (info.si_code == CLD_EXITED)
        return ProgramEnd{info.si_status, 0};
    return ProgramEnd{0, info.si_status};
}

// Collects a program that nobody waits for any more, and kills its group when it outstays its grace.
class ProgramCollector : public QObject
{
public:
    ProgramCollector(int process, int processHandle, int graceMilliseconds)
        : QObject(QCoreApplication::instance()), process_(process), handle_(processHandle),
          ended_(processHandle, QSocketNotifier::Read)
    {
        connect(&ended_, &QSocketNotifier::activated, this, &ProgramCollector::TakeEnd);
        connect(&grace_, &QTimer::timeout, this, [this] { ::kill(-process_, SIGKILL); });
        grace_.setSingleShot(true);
        grace_.start(graceMilliseconds);
    }

private:
    void TakeEnd()
    {
        if (!Collect(process_))
            return;
        grace_.stop(); // the number may soon be another process's
        ended_.setEnabled(false);
        deleteLater();
    }

    int process_;
    FileDescriptor handle_;
    QSocketNotifier ended_;
    QTimer grace_;
};

} // namespace

std::unique_ptr<TerminalProgram> TerminalProgram::Start(const ProgramStart& start, int& systemError)
{
    TerminalPair terminal = OpenTerminal(start);
    std::array<int, 2> ends{-1, -1};
    if (!terminal.ours || ::pipe2(ends.data(), O_CLOEXEC) != 0) {
        systemError = errno;
        return nullptr;
    }
    FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    const pid_t process = Fork(start, terminal.theirs.Number(), writeEnd.Number());
    systemError = process < 0 ? errno : 0;
    ::close(writeEnd.Release()); // the child's copy alone is left, and goes with the exec
    if (process < 0)
        return nullptr;
    systemError = ReadReport(readEnd.Number());
    const int handle = systemError ? -1 : static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
    if (systemError == 0 && handle >= 0)
        return std::unique_ptr<TerminalProgram>(new TerminalProgram(terminal.ours.Release(), handle, process));
    systemError = systemError ? systemError : errno;
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
    return nullptr;
}

TerminalProgram::TerminalProgram(int terminal, int processHandle, int process)
    : terminal_(terminal), processHandle_(processHandle), process_(process)
{}

TerminalProgram::~TerminalProgram() { HangUp(); }

std::ptrdiff_t TerminalProgram::Read(char* to, std::size_t room)
{
    const ssize_t got = ::read(terminal_, to, room);
    if (got > 0)
        return got;
    return got < 0 && (errno == EAGAIN || errno == EINTR) ? 0 : -1;
}

std::ptrdiff_t TerminalProgram::Write(std::string_view bytes)
{
    const ssize_t put = ::write(terminal_, bytes.data(), bytes.size());
    if (put >= 0)
        return put;
    return errno == EAGAIN || errno == EINTR ? 0 : -1;
}

void TerminalProgram::Resize(int cols, int rows, int pixelWidth, int pixelHeight)
{
    const winsize size = SizeOf(cols, rows, pixelWidth, pixelHeight);
    ::ioctl(terminal_, TIOCSWINSZ, &size);
}

void TerminalProgram::Interrupt() { ::ioctl(terminal_, TIOCSIG, SIGINT); }

bool TerminalProgram::HasForegroundJob() const
{
    const pid_t foreground = ::tcgetpgrp(terminal_);
    return !end_ && foreground > 0 && foreground != process_;
}

std::optional<ProgramEnd> TerminalProgram::End()
{
    if (!end_)
        end_ = Collect(process_);
    return end_;
}

void TerminalProgram::HangUp(int graceMilliseconds)
{
    if (terminal_ < 0)
        return;
    const bool running = !End();
    if (running) {
        ::kill(-process_, SIGHUP);
        ::kill(-process_, SIGCONT); // a stopped program cannot hear it
    }
    ::close(std::exchange(terminal_, -1));
    const int handle = std::exchange(processHandle_, -1);
    if (running && QCoreApplication::instance())
        new ProgramCollector(process_, handle, graceMilliseconds);
    else
        ::close(handle);
}

std::string FindProgram(const std::string& name)
{
    if (name.find('/') != std::string::npos)
        return name;
    return QFile::encodeName(QStandardPaths::findExecutable(QFile::decodeName(name.c_str()))).toStdString();
}

std::string LoginShell()
{
    const auto runs = [](const char* path) { return path && *path == '/' && ::access(path, X_OK) == 0; };
    const char* shell = std::getenv("SHELL"); // NOLINT(concurrency-mt-unsafe): read at the user's command only
    if (runs(shell))
        return shell;
    std::array<char, 4096> room{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, room.data(), room.size(), &found) == 0 && found && runs(found->pw_shell))
        return found->pw_shell;
    return "/bin/sh";
}

} // namespace kestrune
