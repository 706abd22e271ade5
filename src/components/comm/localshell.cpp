#include "localshell.h"

#include <comm/commandline.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcessEnvironment>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

namespace kestrune::comm {

namespace {

// One wake-up takes so much at most, by amount or time; the window is drawn between wake-ups.
constexpr qsizetype WakeUpBytes = qsizetype{256} * 1024;
constexpr qint64 WakeUpNanoseconds = 250'000;
constexpr std::size_t PieceBytes = std::size_t{16} * 1024;
// Once the program has ended the system holds at most some 64 KiB of its output. What comes beyond this amount
// is a background process's that has kept the terminal, and is not waited for.
constexpr qsizetype AfterEndBytes = qsizetype{1024} * 1024;
constexpr Clock::Duration QuietAfterEnd{50};
// Nobody had the terminal open, yet the program runs: it may open it again.
constexpr Clock::Duration ReopenTime{100};

// Facts about another terminal, or about how we were started, that would mislead a program in this one.
constexpr std::array NotInherited{"COLUMNS",
                                  "LINES",
                                  "TERMCAP",
                                  "COLORTERM",
                                  "TERM_PROGRAM",
                                  "VTE_VERSION",
                                  "TERM_PROGRAM_VERSION",
                                  "WINDOWID",
                                  "DBUS_STARTER_ADDRESS",
                                  "DBUS_STARTER_BUS_TYPE"};

std::vector<std::string> ChildEnvironment(const QString& terminalName)
{
    using namespace Qt::StringLiterals;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : NotInherited)
        environment.remove(QString::fromLatin1(name));
    for (const QString& name : environment.keys())
        if (name.startsWith("KESTRUNE_"_L1))
            environment.remove(name);
    environment.insert(u"TERM"_s, terminalName.isEmpty() ? u"dumb"_s : terminalName);
    std::vector<std::string> entries;
    for (const QString& entry : environment.toStringList())
        entries.push_back(QFile::encodeName(entry).toStdString());
    return entries;
}

void UseLoginShell(ProgramStart& start)
{
    start.file = LoginShell();
    std::string name(1, '-'); // argument 0 of a login shell
    name.append(start.file, start.file.rfind('/') + 1);
    start.arguments = {name};
    start.workingFolder = QFile::encodeName(QDir::homePath()).toStdString();
}

} // namespace

LocalShell::LocalShell(const LineOptions& options, LineListener& listener, Clock& clock)
    : DeviceLine(options, listener, clock)
{}

LocalShell::~LocalShell() = default; // the program is hung up by its owner's end

// False: the command line is not usable; the line has been failed.
bool LocalShell::Describe(ProgramStart& start)
{
    const QString& line = Options().hostName;
    const auto words = SplitCommandLine(QFile::encodeName(line).toStdString());
    if (!words) {
        Fail(LineErrorNumber::InvalidArgument, tr("Unable to run %1: a quotation mark is not closed").arg(line));
        return false;
    }
    if (words->empty())
        UseLoginShell(start);
    else {
        start.file = FindProgram(words->front());
        start.arguments = *words;
        start.workingFolder = QFile::encodeName(QDir::currentPath()).toStdString();
    }
    if (start.file.empty()) {
        Fail(LineErrorNumber::NoSuchFile,
             tr("Unable to run %1: no program of this name was found").arg(QFile::decodeName(words->front().c_str())));
        return false;
    }
    const TerminalSize& size = Options().size;
    start.environment = ChildEnvironment(Options().terminalName);
    start.cols = size.cols;
    start.rows = size.rows;
    start.pixelWidth = size.pixelWidth;
    start.pixelHeight = size.pixelHeight;
    start.utf8 = Options().utf8;
    start.eraseCharacter = Options().eraseCharacter;
    return true;
}

void LocalShell::Begin()
{
    ProgramStart start;
    if (!Describe(start))
        return;
    int systemError = 0;
    program_ = TerminalProgram::Start(start, systemError);
    const QString name = QFile::decodeName(start.file.c_str());
    if (!program_) {
        const QString reason = QString::fromStdString(std::generic_category().message(systemError));
        Fail(static_cast<quint16>(systemError), tr("Unable to run %1: %2").arg(name, reason));
        return;
    }
    buffer_ = std::make_unique<char[]>(PieceBytes);
    Watch();
    Listener().LineDeviceStatus(tr("Local Shell"));
    if (!HasEnded())
        BecomeOpen(tr("Running %1").arg(name.section(u'/', -1)));
}

void LocalShell::Watch()
{
    readable_ = std::make_unique<QSocketNotifier>(program_->Terminal(), QSocketNotifier::Read);
    writable_ = std::make_unique<QSocketNotifier>(program_->Terminal(), QSocketNotifier::Write);
    ended_ = std::make_unique<QSocketNotifier>(program_->EndDescriptor(), QSocketNotifier::Read);
    writable_->setEnabled(false);
    connect(readable_.get(), &QSocketNotifier::activated, this, &LocalShell::TakeWaiting);
    connect(writable_.get(), &QSocketNotifier::activated, this, [this] {
        WriteUnsent();
        if (IsOpen() && Unsent() == 0)
            Drained();
    });
    connect(ended_.get(), &QSocketNotifier::activated, this, &LocalShell::ProgramHasEnded);
}

// --- from the program

void LocalShell::TakeWaiting()
{
    QElapsedTimer time;
    time.start();
    qsizetype total = 0;
    Taken last = Taken::Something;
    while (IsOpen() && Receiving() && last == Taken::Something && total < WakeUpBytes &&
           time.nsecsElapsed() < WakeUpNanoseconds)
        last = TakePiece(total);
    if (IsOpen())
        AfterReading(last, total);
}

// The system hands out at most 4 KiB a read; they are gathered, since each call upwards has its price too.
LocalShell::Taken LocalShell::TakePiece(qsizetype& total)
{
    std::size_t filled = 0;
    std::ptrdiff_t got = 1;
    while (filled < PieceBytes && got > 0) {
        got = program_->Read(buffer_.get() + filled, PieceBytes - filled);
        filled += static_cast<std::size_t>(std::max<std::ptrdiff_t>(got, 0));
    }
    total += static_cast<qsizetype>(filled);
    if (programHasEnded_)
        afterEnd_ += static_cast<qsizetype>(filled);
    if (filled > 0)
        Listener().LineReceived({buffer_.get(), filled});
    if (got > 0)
        return Taken::Something;
    return got < 0 ? Taken::NobodyThere : Taken::NothingNow;
}

void LocalShell::AfterReading(Taken last, qsizetype total)
{
    // A notifier that cannot be served would fire without end.
    readable_->setEnabled(Receiving() && last != Taken::NobodyThere);
    if (!Receiving())
        return;
    const bool silent = last == Taken::NothingNow && total == 0;
    if (programHasEnded_ && (last == Taken::NobodyThere || afterEnd_ > AfterEndBytes || (quietTimePassed_ && silent)))
        Finish();
    else if (programHasEnded_ && last == Taken::NothingNow)
        LookAgainAfter(QuietAfterEnd);
    else if (last == Taken::NobodyThere)
        LookAgainAfter(ReopenTime);
}

void LocalShell::LookAgainAfter(Clock::Duration time)
{
    quietTimePassed_ = false;
    quiet_ = Time().After(time, [this] {
        quietTimePassed_ = true;
        if (IsOpen())
            TakeWaiting();
    });
}

void LocalShell::ProgramHasEnded()
{
    const auto end = program_->End();
    if (!end)
        return;
    end_ = *end;
    programHasEnded_ = true;
    ended_->setEnabled(false);
    if (Receiving())
        TakeWaiting();
}

// All output has been told; only now does its end make sense to the user.
void LocalShell::Finish()
{
    QString text = tr("The program has ended");
    if (end_.signal != 0)
        text = tr("The program was ended by signal %1").arg(end_.signal);
    else if (end_.exitCode != 0)
        text = tr("The program has ended with exit code %1").arg(end_.exitCode);
    End({.stateText = text, .before = [this] { Listener().LineProgramEnded(end_.exitCode, end_.signal); }});
}

void LocalShell::LetGo()
{
    quiet_.reset();
    if (!program_)
        return;
    for (auto* notifier : {&readable_, &writable_, &ended_})
        (*notifier)->setEnabled(false);
    program_->HangUp();
}

// --- to the program

void LocalShell::Send(std::string_view bytes)
{
    if (!IsOpen() || bytes.empty() || !HasRoomFor(static_cast<qsizetype>(bytes.size())))
        return;
    unsent_.append(bytes);
    WriteUnsent();
}

void LocalShell::WriteUnsent()
{
    if (!IsOpen())
        return;
    const std::ptrdiff_t put = program_->Write(std::string_view(unsent_).substr(sent_));
    sent_ += static_cast<std::size_t>(std::max<std::ptrdiff_t>(put, 0));
    if (put < 0) // nobody reads; the end of the program is told by other ways
        sent_ = unsent_.size();
    const bool all = sent_ == unsent_.size();
    if (all || sent_ > unsent_.size() / 2) {
        unsent_.erase(0, sent_);
        sent_ = 0;
    }
    writable_->setEnabled(!all);
}

void LocalShell::Resize(const TerminalSize& size)
{
    if (IsOpen())
        program_->Resize(size.cols, size.rows, size.pixelWidth, size.pixelHeight);
}

void LocalShell::Break(int)
{
    if (IsOpen())
        program_->Interrupt();
}

bool LocalShell::HasChildren() const { return IsOpen() && program_->HasForegroundJob(); }

} // namespace kestrune::comm
