#pragma once

// Any line whose host may keep the session alive (see comm/rebind/handshake.h): the device's own line inside, and what
// it carries sorted into screen and agreement. With a host that knows nothing of it, it is the line inside.

#include <comm/rebind/terminalside.h>
#include <ports/clock.h>
#include <ports/line.h>

#include <QCoreApplication>

#include <functional>

namespace kestrune::comm {

class ResumableLine : public Line, private LineListener, private RebindEvents
{
    Q_DECLARE_TR_FUNCTIONS(ResumableLine)

public:
    using Maker = std::function<std::unique_ptr<Line>(const LineOptions&, LineListener&, Clock&)>;
    ResumableLine(const LineOptions& options, LineListener& listener, Clock& clock, const Maker& make);

    static bool IsWanted(const LineOptions& options);

    void Open() override { inner_->Open(); }
    void Close() override;
    bool IsOpen() const override { return inner_->IsOpen(); }
    void Send(std::string_view bytes) override;
    qsizetype Unsent() const override;
    void SetReceiving(bool on) override { inner_->SetReceiving(on); }
    void Resize(const TerminalSize& size) override { inner_->Resize(size); }
    void Break(int milliseconds) override { inner_->Break(milliseconds); }
    void Answer(LineAnswer answer) override { inner_->Answer(std::move(answer)); }
    bool HasChildren() const override { return inner_->HasChildren(); }
    std::shared_ptr<LineResume> TakeResume() override;

private:
    // --- of the line inside
    void LineReceived(std::string_view bytes) override;
    void LineStateChanged(LineState state, const QString& text) override;
    void LineDeviceStatus(const QString& text) override;
    void LineError(quint32 errorWord, const QString& description, bool fatal) override;
    void LineClosed() override;
    void LineProgramEnded(int exitCode, int signalNumber) override;
    void LineRemoteEcho(bool remote) override { listener_.LineRemoteEcho(remote); }
    void LineAsks(const LineQuestion& question) override { listener_.LineAsks(question); }
    void LineDrained() override;

    // --- of the agreement
    void RebindData(std::string_view bytes) override
    {
        if (!closing_)
            listener_.LineReceived(bytes);
    }
    void RebindOutput(std::string_view wire) override { inner_->Send(wire); }
    void RebindAnswered() override;
    void RebindAgreed(bool sameSession) override;
    void RebindEnded(int exitCode) override;
    void RebindBroken() override;

    void GiveUp();
    bool CanResume() const { return !closing_ && !ended_ && terminal_.IsBound(); }

    LineListener& listener_;
    Clock& clock_;
    Device device_;
    bool resumes_; // a session is to be resumed, and has not been yet
    RebindTerminal terminal_;
    std::unique_ptr<Line> inner_;
    std::unique_ptr<Clock::Timer> timer_;
    QString status_;
    bool closing_ = false;
    bool ended_ = false; // the program at the far end, by its own exit code
    bool failureTold_ = false;
    bool overflowTold_ = false;
};

} // namespace kestrune::comm
