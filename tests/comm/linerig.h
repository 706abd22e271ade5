#pragma once

// A listener that keeps what it is told, and a way to wait for it with the event loop running.

#include <comm/commlibrary.h>
#include <platform/eventclock.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QStringList>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

namespace kestrune {

inline void PrintTo(const QByteArray& bytes, std::ostream* out)
{
    *out << '"' << bytes.toPercentEncoding(" ").data() << '"';
}

// Runs the event loop until it has happened; false: it never did.
inline bool WaitUntil(const std::function<bool()>& happened,
                      std::chrono::milliseconds limit = std::chrono::seconds(30)) // reached only when a test fails
{
    const QDeadlineTimer longEnough(limit);
    QTimer look;
    look.start(5);
    while (!happened()) {
        if (longEnough.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

class LineRig : public LineListener
{
public:
    explicit LineRig(const LineOptions& options, const QString& trustFolder = {})
        : LineRig(options, eventClock_, trustFolder)
    {}
    LineRig(const LineOptions& options, Clock& clock, const QString& trustFolder = {})
        : library_(clock, QStringLiteral("Local Shell"), trustFolder), line(library_.Make(options, *this))
    {}

    LineRig& Opened()
    {
        line->Open();
        return *this;
    }
    bool Until(const std::function<bool()>& happened) { return WaitUntil(happened); }
    bool UntilReceived(const QByteArray& text)
    {
        return Until([&] { return received.contains(text); });
    }
    bool UntilOpen()
    {
        return Until([this] { return line->IsOpen(); });
    }
    bool UntilClosed()
    {
        return Until([this] { return closed > 0; });
    }
    void Type(const QByteArray& bytes) { line->Send({bytes.constData(), static_cast<std::size_t>(bytes.size())}); }

    void LineReceived(std::string_view bytes) override
    {
        EXPECT_EQ(closed, 0);
        EXPECT_TRUE(!line || receiving);
        receivedBytes += static_cast<qint64>(bytes.size());
        if (keep)
            received.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
        if (onReceived)
            onReceived();
    }
    void LineStateChanged(LineState state, const QString& text) override
    {
        states.push_back(state);
        stateText = text;
    }
    void LineDeviceStatus(const QString& text) override { deviceStatus = text; }
    void LineError(quint32 word, const QString& description, bool fatal) override
    {
        errorWord = word;
        errors += description;
        anyFatal |= fatal;
    }
    void LineClosed() override
    {
        ++closed;
        if (dropWhenClosed)
            line.reset();
    }
    void LineProgramEnded(int exit, int signal) override
    {
        EXPECT_EQ(closed, 0);
        ++programEnds;
        exitCode = exit;
        signalNumber = signal;
        receivedAtEnd = receivedBytes;
    }
    void LineRemoteEcho(bool remote) override { remoteEcho = remote; }
    void LineAsks(const LineQuestion& question) override
    {
        questions.push_back(question);
        if (onQuestion)
            line->Answer(onQuestion(question));
    }
    void LineDrained() override { ++drained; }
    void LineDialStatus(DialStatus status, const QString&) override
    {
        dials.push_back(status);
        if (onDial)
            onDial(status);
    }

    QByteArray received;
    qint64 receivedBytes = 0, receivedAtEnd = -1;
    bool keep = true;      // received is filled
    bool receiving = true; // what the test has told the line
    bool dropWhenClosed = false;
    std::function<void()> onReceived;
    std::vector<LineState> states;
    QString stateText, deviceStatus;
    QStringList errors;
    quint32 errorWord = 0;
    bool anyFatal = false;
    int closed = 0, programEnds = 0, exitCode = -1, signalNumber = -1, drained = 0;
    std::optional<bool> remoteEcho;
    std::vector<DialStatus> dials;
    std::function<void(DialStatus)> onDial;
    std::vector<LineQuestion> questions;
    std::function<LineAnswer(const LineQuestion&)> onQuestion; // null: the test answers later

private:
    EventClock eventClock_;
    CommLibrary library_;

public:
    std::unique_ptr<Line> line; // last, so that it goes first
};

} // namespace kestrune
