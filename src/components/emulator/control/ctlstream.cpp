// The host's data as programs see it: reading and waiting, commands inside the data, data for another control.

#include "ctlemulator.h"

#include "datastream.h"
#include "extensionfilter.h"
#include "hosttext.h"

#include <dispatch/failure.h>

#include <QPointer>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kLeadInPause = std::chrono::milliseconds(500); // between two pieces of one lead-in
constexpr int kMaxTargets = 10;

[[noreturn]] void RefuseCall(const QString& text) { throw Failure(ErrorNumber::InvalidCall, text, u"ctlEmulator"_s); }

// The control may be gone when this returns.
DataStream::Outcome RunWait(Waiter& waiter, DataStream& stream,
                            const std::function<void(DataStream&, DataStream::Done)>& begin)
{
    const auto outcome = std::make_shared<DataStream::Outcome>();
    const std::shared_ptr<Waiter::Wait> wait = waiter.Begin();
    begin(stream, [outcome, wait](const DataStream::Outcome& answer) {
        *outcome = answer;
        wait->End();
    });
    wait->Run();
    return *outcome;
}

} // namespace

// --- reading and waiting

int ctlEmulator::InputMode() const { return stream_->Mode(); }
void ctlEmulator::SetInputMode(int mode) { stream_->SetMode(mode); }

void ctlEmulator::RefuseSecondWait() const
{
    if (stream_->IsWaiting())
        RefuseCall(tr("The session is already waiting for the host in another call."));
}

QString ctlEmulator::ReadText(int mode, int length, int timeout)
{
    if (mode != 0 && mode != 1)
        RefuseCall(tr("There is no way %1 of reading text.").arg(mode));
    if (length < 1)
        RefuseCall(tr("A length of %1 characters cannot be read.").arg(length));
    RefuseSecondWait();
    const auto reading = mode == 1 ? DataStream::Reading::Line : DataStream::Reading::Length;
    return RunWait(ports_.waiter, *stream_,
                   [=](DataStream& stream, DataStream::Done done) {
                       stream.Read(reading, length, timeout, std::move(done));
                   })
        .text;
}

int ctlEmulator::WaitFor(int compare, int timeout, const QStringList& targets)
{
    const bool nothing = std::all_of(targets.begin(), targets.end(), [](const QString& t) { return t.isEmpty(); });
    if (nothing || targets.size() > kMaxTargets)
        RefuseCall(tr("One to %1 texts can be waited for.").arg(kMaxTargets));
    if (compare != 0 && compare != 1)
        RefuseCall(tr("There is no way %1 of comparing.").arg(compare));
    RefuseSecondWait();
    const auto sensitivity = compare == 0 ? Qt::CaseSensitive : Qt::CaseInsensitive;
    return RunWait(ports_.waiter, *stream_,
                   [=](DataStream& stream, DataStream::Done done) {
                       stream.WaitFor(sensitivity, targets, timeout, std::move(done));
                   })
        .target;
}

// --- commands inside the data

// By reference, as the design has them; neither is changed.
void ctlEmulator::SetExtension(QString& leadIn, QString& terminator)
{
    leadInTimer_.reset();
    ShowHostBytes(extension_->TakeHeld());
    extension_->Set(terminal_->EncodeText(leadIn.toStdString()), terminal_->EncodeText(terminator.toStdString()));
}

std::string ctlEmulator::WithoutExtensions(std::string_view bytes)
{
    std::vector<std::string> commands;
    std::string data = extension_->Feed(bytes, commands);
    for (const std::string& command : commands)
        extensions_.append(hostText_->DecodeWhole(command));
    if (!commands.empty())
        ScheduleEvents();
    leadInTimer_.reset();
    if (extension_->IsHolding()) // a prompt that only looks like a lead-in must not stay away
        leadInTimer_ = ports_.clock.After(kLeadInPause, [this] { ShowHostBytes(extension_->TakeHeld()); });
    return data;
}

// --- the host's data on its way

void ctlEmulator::ShowHostBytes(std::string_view bytes)
{
    if (bytes.empty() || shutDown_)
        return;
    const QString text = recordingText_ || stream_->Listens() ? hostText_->Decode(bytes) : QString();
    if (printerMode_ != 0)
        Print(bytes);
    if (!stream_->HidesFromScreen() && printerMode_ != 2)
        terminal_->Receive(bytes);
    if (recordingText_)
        emit RecordText(text);
    dataReady_ = stream_->Arrived(text) || dataReady_;
    AfterChange();
}

// --- data for another control

int ctlEmulator::AttachState() const { return sink_ ? 1 : source_ ? 2 : 0; }

void ctlEmulator::AttachAlternateSink(ctlEmulator& target, qint16& exitMode, qint16& exitCode)
{
    constexpr int byEnd = 0, byByte = 1, largestByte = 255;
    if (exitMode != byEnd && exitMode != byByte)
        RefuseCall(tr("There is no way %1 of ending an attachment.").arg(exitMode));
    if (exitMode == byByte && (exitCode < 0 || exitCode > largestByte))
        RefuseCall(tr("The host cannot send a byte %1.").arg(exitCode));
    // Pairs only: a ring would never end.
    if (&target == this || target.shutDown_ || target.AttachState() != 0 || source_)
        RefuseCall(tr("The host's data cannot go to that session."));
    DetachAlternateSink();
    sink_ = &target;
    target.source_ = this;
    sinkExit_ = exitMode == byByte ? exitCode : -1;
}

void ctlEmulator::DetachAlternateSink()
{
    if (sink_)
        sink_->source_.clear();
    if (source_)
        source_->sink_.clear();
    sink_.clear();
    source_.clear();
}

void ctlEmulator::ToSink(std::string_view bytes)
{
    const size_t end = sinkExit_ < 0 ? std::string_view::npos : bytes.find(char(sinkExit_));
    sink_->ShowHostBytes(bytes.substr(0, end));
    if (end == std::string_view::npos)
        return;
    DetachAlternateSink();
    ShowHostBytes(bytes.substr(end + 1));
}

// The last events of a turn: a script that handles one may wait for the host, and end the session meanwhile.
void ctlEmulator::RunStreamEvents()
{
    const QPointer self(this);
    const QStringList commands = std::exchange(extensions_, {});
    for (const QString& command : commands) {
        emit Extension(command);
        if (!self || shutDown_)
            return;
    }
    if (std::exchange(dataReady_, false))
        emit DataReady();
}

} // namespace kestrune
