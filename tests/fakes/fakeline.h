#pragma once

// A host that says and hears what the test wants. It keeps the promises of a real line: nothing is told from
// inside Open, nothing is received after it is closed, and LineClosed is the last thing it says.

#include <ports/clock.h>
#include <ports/line.h>

#include <set>
#include <string>
#include <vector>

namespace kestrune {

class FakeLine;

class FakeLineFactory : public LineFactory
{
public:
    bool Exists(Device device) const override { return devices.contains(device); }
    QString Name(Device device) const override { return QStringLiteral("Device %1").arg(int(device)); }
    std::unique_ptr<Line> Make(const LineOptions& options, LineListener& listener) override;

    FakeLine& Current() const { return *current; }

    std::set<Device> devices{Device::Telnet, Device::Extension};
    std::vector<LineOptions> made; // what each line was asked for
    FakeLine* current = nullptr;   // the line that lives; null: none
};

class FakeLine : public Line
{
public:
    FakeLine(FakeLineFactory& factory, const LineOptions& options, LineListener& listener)
        : factory_(factory), listener_(listener), size(options.size)
    {
        factory_.current = this;
    }
    ~FakeLine() override
    {
        if (factory_.current == this)
            factory_.current = nullptr;
    }

    // --- what the control calls
    void Open() override { open = true; }
    void Close() override { closing = true; }
    bool IsOpen() const override { return open; }
    void Send(std::string_view bytes) override
    {
        if (!connected)
            return;
        sent += bytes;
        unsent += held ? qsizetype(bytes.size()) : 0;
    }
    qsizetype Unsent() const override { return unsent; }
    void SetReceiving(bool on) override { receiving = on; }
    void Resize(const TerminalSize& to) override
    {
        size = to;
        ++resizes;
    }
    void Break(int) override { ++breaks; }
    void Answer(LineAnswer answer) override { answers.push_back(std::move(answer)); }
    std::shared_ptr<LineResume> TakeResume() override { return std::move(resume); }
    bool HasChildren() const override { return hasChildren; }
    bool Dial(const QString& number) override
    {
        if (!dials)
            return false;
        dialled.push_back(number);
        listener_.LineDialStatus(DialStatus::Dialing, {});
        return true;
    }
    bool HangUp() override
    {
        ++hangUps;
        return dials;
    }

    // --- what the far side does
    void Connect()
    {
        listener_.LineStateChanged(LineState::Connecting, QStringLiteral("Connecting"));
        connected = true;
        listener_.LineDeviceStatus(QStringLiteral("Fake host"));
        listener_.LineStateChanged(LineState::Connected, QStringLiteral("Connected"));
    }
    void HostSays(std::string_view bytes) { listener_.LineReceived(bytes); }
    void Ask(const LineQuestion& question) { listener_.LineAsks(question); }
    void Resumed(bool sameSession) { listener_.LineResumed(sameSession); }
    void RemoteEcho(bool on) { listener_.LineRemoteEcho(on); }
    void Fail(quint32 word, const QString& text)
    {
        listener_.LineError(word, text, true);
        Drop();
    }
    void Exit(int code, int signal = 0)
    {
        listener_.LineProgramEnded(code, signal);
        Drop();
    }
    void Drop() // the last thing: the line may be gone after it
    {
        connected = open = false;
        listener_.LineStateChanged(LineState::Closed, QString());
        listener_.LineClosed();
    }
    void Call(DialStatus status) { listener_.LineDialStatus(status, {}); }
    void Drain()
    {
        unsent = 0;
        listener_.LineDrained();
    }
    std::string TakeSent() { return std::exchange(sent, {}); }

private:
    FakeLineFactory& factory_;
    LineListener& listener_;

public:
    std::string sent;
    TerminalSize size;
    bool open = false;
    bool connected = false;
    bool closing = false; // Close was called; the test answers with Drop
    bool receiving = true;
    bool hasChildren = false;
    bool held = false; // what is sent stays queued until Drain
    qsizetype unsent = 0;
    std::vector<LineAnswer> answers;
    std::shared_ptr<LineResume> resume; // what a lost line leaves behind
    bool dials = true; // as a modem that is ready
    std::vector<QString> dialled;
    int hangUps = 0;
    int breaks = 0;
    int resizes = 0;
};

inline std::unique_ptr<Line> FakeLineFactory::Make(const LineOptions& options, LineListener& listener)
{
    made.push_back(options);
    if (!Exists(options.device))
        return nullptr;
    return std::make_unique<FakeLine>(*this, options, listener);
}

} // namespace kestrune
