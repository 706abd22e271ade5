#include <comm/serialline.h>

#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace kestrune::comm {

namespace {

constexpr qsizetype SerialPiece = qsizetype{16} * 1024;
constexpr auto WatchInterval = std::chrono::milliseconds(250);   // of the modem lines
constexpr auto ReturnInterval = std::chrono::milliseconds(1000); // of looks for a port that was pulled out

SerialFrame FrameOf(const LineOptions::Serial& options)
{
    return {.baud = options.baud,
            .dataBits = std::clamp(options.dataBits, 5, 8),
            .stopBits = options.stopBits,
            .parity = static_cast<SerialParity>(std::clamp(options.parity, 0, 4)),
            .handshake = static_cast<SerialHandshake>(std::clamp(options.handshake, 0, 4))};
}

QString FrameText(const SerialFrame& frame)
{
    static constexpr std::array<char, 5> parities{'N', 'O', 'E', 'M', 'S'};
    return QStringLiteral("%1 %2%3%4")
        .arg(frame.baud)
        .arg(frame.dataBits)
        .arg(QLatin1Char(parities.at(static_cast<std::size_t>(frame.parity))))
        .arg(frame.stopBits);
}

struct LineName
{
    bool ModemLines::*line;
    const char* name;
};
constexpr std::array LineNames{LineName{&ModemLines::clearToSend, "CTS"}, LineName{&ModemLines::dataSetReady, "DSR"},
                               LineName{&ModemLines::carrier, "DCD"}, LineName{&ModemLines::ring, "RI"}};

struct OpenFailure
{
    int systemError;
    quint16 number;
    const char* words;
};

constexpr std::array OpenFailures{
    OpenFailure{ENOENT, LineErrorNumber::NoSuchFile,
                QT_TRANSLATE_NOOP("kestrune::comm::SerialLine", "there is no such port")},
    OpenFailure{EACCES, LineErrorNumber::AccessDenied,
                QT_TRANSLATE_NOOP("kestrune::comm::SerialLine",
                                  "you may not use it; the system's group of serial ports, often dialout, may")},
    OpenFailure{EBUSY, LineErrorNumber::AccessDenied,
                QT_TRANSLATE_NOOP("kestrune::comm::SerialLine", "another program is using it")},
    OpenFailure{ENOTTY, LineErrorNumber::InvalidArgument,
                QT_TRANSLATE_NOOP("kestrune::comm::SerialLine", "it is not a serial port")},
    OpenFailure{ENXIO, LineErrorNumber::NoSuchFile,
                QT_TRANSLATE_NOOP("kestrune::comm::SerialLine", "nothing is connected there")},
};

quint16 NumberOf(int systemError)
{
    const auto row = std::ranges::find(OpenFailures, systemError, &OpenFailure::systemError);
    return row == OpenFailures.end() ? LineErrorNumber::InvalidArgument : row->number;
}

} // namespace

SerialLine::SerialLine(const LineOptions& options, LineListener& listener, Clock& clock, PortOpener open)
    : DeviceLine(options, listener, clock), open_(std::move(open)), frame_(FrameOf(options.serial))
{}

SerialLine::~SerialLine() = default;

QString SerialLine::WhyNot(int systemError) const
{
    if (systemError == EINVAL)
        return tr("it cannot be set to %1").arg(FrameText(frame_));
    const auto row = std::ranges::find(OpenFailures, systemError, &OpenFailure::systemError);
    return row != OpenFailures.end() ? tr(row->words)
                                     : QString::fromStdString(std::generic_category().message(systemError));
}

void SerialLine::Begin()
{
    const QString& named = Options().hostName;
    path_ = named.isEmpty() ? QString::fromStdString(SerialPortPath(Options().serial.port)) : named.trimmed();
    if (path_.isEmpty()) {
        Fail(LineErrorNumber::InvalidArgument, tr("Unable to connect: the session names no serial port."));
        return;
    }
    EnterState(LineState::Connecting, tr("Opening %1").arg(path_));
    if (HasEnded())
        return;
    int systemError = 0;
    if (!OpenPort(systemError)) {
        Fail(NumberOf(systemError), tr("Unable to open %1: %2").arg(path_, WhyNot(systemError)));
        return;
    }
    BecomeOpen(tr("Connected to %1").arg(path_));
}

bool SerialLine::OpenPort(int& systemError)
{
    frame_ = FrameOf(Options().serial); // a modem may have changed it
    port_ = open_(QFile::encodeName(path_).toStdString(), frame_, systemError);
    if (!port_)
        return false;
    readable_ = std::make_unique<QSocketNotifier>(port_->Descriptor(), QSocketNotifier::Read);
    writable_ = std::make_unique<QSocketNotifier>(port_->Descriptor(), QSocketNotifier::Write);
    writable_->setEnabled(false);
    connect(readable_.get(), &QSocketNotifier::activated, this, &SerialLine::TakeWaiting);
    connect(writable_.get(), &QSocketNotifier::activated, this, &SerialLine::Write);
    lines_ = port_->Lines();
    TellStatus();
    WatchLines();
    return true;
}

void SerialLine::ClosePort()
{
    watch_.reset();
    break_.reset();
    // Possibly in the middle of their own signal.
    for (auto* notifier : {&readable_, &writable_})
        if (*notifier) {
            (*notifier)->setEnabled(false);
            notifier->release()->deleteLater();
        }
    port_.reset();
    unsent_.clear();
}

void SerialLine::LetGo()
{
    return_.reset();
    ClosePort();
}

// --- what comes in

void SerialLine::TakeWaiting()
{
    if (!port_ || !readable_)
        return;
    readable_->setEnabled(Receiving());
    if (frame_.handshake == SerialHandshake::DtrDsr)
        port_->SetTerminalReady(Receiving());
    if (!Receiving())
        return;
    std::array<char, SerialPiece> piece;
    const auto count = ::read(port_->Descriptor(), piece.data(), piece.size());
    if (count > 0)
        Listener().LineReceived({piece.data(), static_cast<std::size_t>(count)});
    else if (count == 0 || (errno != EAGAIN && errno != EINTR))
        PortGone();
}

// The adapter was pulled out, or the other side of a pseudo-terminal has closed.
void SerialLine::PortGone()
{
    if (!IsOpen() || !port_)
        return;
    ClosePort();
    EnterState(LineState::Connecting, tr("%1 is gone; waiting for it to come back").arg(path_));
    if (IsOpen())
        WaitForReturn();
}

void SerialLine::WaitForReturn()
{
    return_ = Time().After(ReturnInterval, [this] {
        int systemError = 0;
        if (OpenPort(systemError))
            EnterState(LineState::Connected, tr("Connected to %1").arg(path_));
        else
            WaitForReturn();
    });
}

// --- what goes out

bool SerialLine::MaySend() const
{
    return frame_.handshake != SerialHandshake::DtrDsr || !lines_ || lines_->dataSetReady;
}

void SerialLine::Send(std::string_view bytes)
{
    if (!IsOpen() || !port_ || bytes.empty() || !HasRoomFor(static_cast<qsizetype>(bytes.size())))
        return;
    unsent_.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
    Write();
}

void SerialLine::Write()
{
    if (!port_ || !writable_)
        return;
    if (MaySend() && !unsent_.isEmpty()) {
        const auto count = ::write(port_->Descriptor(), unsent_.constData(), static_cast<std::size_t>(unsent_.size()));
        if (count < 0 && errno != EAGAIN && errno != EINTR) {
            Post([this] { PortGone(); });
            return;
        }
        unsent_.remove(0, std::max<qsizetype>(count, 0));
        if (unsent_.isEmpty())
            Post([this] {
                if (unsent_.isEmpty())
                    Drained();
            });
    }
    writable_->setEnabled(MaySend() && !unsent_.isEmpty());
}

void SerialLine::Break(int milliseconds)
{
    if (!port_ || !IsOpen())
        return;
    port_->SetBreak(true);
    break_ = Time().After(std::chrono::milliseconds(milliseconds), [this] { port_->SetBreak(false); });
}

// --- modem lines

void SerialLine::WatchLines()
{
    if (!lines_)
        return;
    watch_ = Time().After(WatchInterval, [this] {
        const auto now = port_->Lines();
        const bool changed = now != lines_;
        lines_ = now;
        WatchLines();
        if (!changed)
            return;
        TellStatus();
        Write();
        if (port_ && lines_ && linesTold_)
            linesTold_(*lines_);
    });
}

void SerialLine::SetTerminalReady(bool on)
{
    if (port_)
        port_->SetTerminalReady(on);
}

void SerialLine::SetSpeed(int baud)
{
    const int wanted = baud > 0 ? baud : Options().serial.baud;
    if (!port_ || wanted == frame_.baud || !port_->SetSpeed(wanted))
        return;
    frame_.baud = wanted;
    TellStatus();
}

void SerialLine::TellStatus()
{
    QString text = tr("%1 %2").arg(path_.section(u'/', -1), FrameText(frame_));
    for (const LineName& row : LineNames)
        if (lines_ && (*lines_).*row.line)
            text += u' ' + QLatin1StringView(row.name);
    Listener().LineDeviceStatus(text);
}

} // namespace kestrune::comm
