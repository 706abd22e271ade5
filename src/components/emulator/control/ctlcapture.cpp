// Capture of received data and of printer data, and the line in which the control speaks to the user.

#include "ctlemulator.h"

#include "hostcapture.h"
#include "sessionoptions.h"

#include <dispatch/failure.h>

#include <QDir>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kTold = std::chrono::seconds(15); // long enough to be read

} // namespace

void ctlEmulator::TellUser(const QString& line)
{
    emit DeviceStatus(line);
    toldTimer_ = ports_.clock.After(kTold, [this] { emit DeviceStatus(deviceStatus_); });
}

QString ctlEmulator::CaptureFileName() const { return capture_ ? capture_->Facts().fileName : QString(); }
int ctlEmulator::CaptureMode() const { return capture_ ? capture_->Facts().mode : 0; }
int ctlEmulator::CaptureSource() const { return capture_ ? capture_->Facts().source : 0; }

void ctlEmulator::Capture(const QString& fileName, int source, int mode)
{
    if (!HostCapture::IsMode(mode) || (source != HostCapture::Received && source != HostCapture::PrinterData))
        throw Failure(ErrorNumber::InvalidCall,
                      tr("There is no capture of source %1 in mode %2.").arg(source).arg(mode), u"ctlEmulator"_s);
    CaptureEnd();
    const emu::TerminalOptions options = TerminalOptionsOf(settings_, {});
    const QDir folder(settings_.Text(Setting("DefaultCaptureDir")));
    HostCapture::Plan plan{.fileName = fileName.isEmpty() ? fileName : folder.filePath(fileName),
                           .source = source,
                           .mode = mode,
                           .encoding = textFileEncoding_,
                           .charset = options.charset,
                           .eightBitControls = options.eightBitControls};
    // Whoever asked looks at CaptureSource: a file that cannot be used is no error of the call.
    try {
        capture_ = std::make_unique<HostCapture>(HostCapture::Ports{ports_.outputs, ports_.texts, ports_.clipboard},
                                                 std::move(plan), [this](const QString& why) { StopCapture(why); });
    } catch (const Failure& failure) {
        TellUser(tr("No capture: %1").arg(failure.Text()));
        return;
    }
    emit CaptureChange(source);
}

void ctlEmulator::CaptureEnd() { StopCapture({}); }

void ctlEmulator::StopCapture(const QString& why)
{
    const auto ended = std::move(capture_);
    if (!ended)
        return;
    const QString atEnd = ended->End();
    const QString reason = why.isEmpty() ? atEnd : why;
    emit CaptureChange(0);
    if (reason.isEmpty())
        return;
    // From the event loop: the session may end, or has ended, while the box is up.
    const QString file = ended->Facts().fileName;
    const QString text = file.isEmpty() ? reason
                                        : tr("The capture to %1 has ended. What was written until then is in the file.")
                                                  .arg(QDir::toNativeSeparators(file)) +
                                              u"\r\n"_s + reason;
    ports_.clock.Post([&ask = ports_.ask, text] {
        ask.MsgBox({.text = text, .flags = MsgFlag::Ok + MsgFlag::Exclamation, .title = {}, .owner = 0});
    });
}

} // namespace kestrune
