#pragma once

// Device 6: a program on this machine, on a pseudo-terminal. The host name is its command line, by the rules of
// comm/commandline.h; empty means the user's login shell, started as one, in the home folder. A command starts in
// the current folder.

#include <comm/deviceline.h>

#include <platform/pseudoterminal.h>

#include <QSocketNotifier>

#include <memory>
#include <string>

namespace kestrune::comm {

class LocalShell final : public DeviceLine
{
    Q_OBJECT

public:
    LocalShell(const LineOptions& options, LineListener& listener, Clock& clock);
    ~LocalShell() override;

    void Send(std::string_view bytes) override;
    qsizetype Unsent() const override { return static_cast<qsizetype>(unsent_.size() - sent_); }
    void Resize(const TerminalSize& size) override;
    void Break(int milliseconds) override; // a pseudo-terminal carries none: the foreground job is interrupted
    bool HasChildren() const override;

private:
    enum class Taken
    {
        Something,
        NothingNow,
        NobodyThere // no process has the terminal open
    };

    void Begin() override;
    void LetGo() override;
    void TakeWaiting() override;
    bool Describe(ProgramStart& start);
    void Watch();
    Taken TakePiece(qsizetype& total);
    void AfterReading(Taken last, qsizetype total);
    void ProgramHasEnded();
    void LookAgainAfter(Clock::Duration time);
    void Finish();
    void WriteUnsent();

    std::unique_ptr<TerminalProgram> program_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
    std::unique_ptr<QSocketNotifier> ended_;
    std::unique_ptr<Clock::Timer> quiet_;
    std::unique_ptr<char[]> buffer_;
    std::string unsent_;
    std::size_t sent_ = 0; // how much of unsent_ has gone
    qsizetype afterEnd_ = 0;
    ProgramEnd end_;
    bool programHasEnded_ = false;
    bool quietTimePassed_ = false;
};

} // namespace kestrune::comm
