#include <platform/serialport.h>

#include "filedescriptor.h"

// Not <termios.h>, which knows no speeds but those in its list.
#include <array>
#include <asm/termbits.h>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace kestrune {

namespace {

struct PortFamily
{
    int first; // number
    int last;
    const char* device;
};

constexpr std::array PortFamilies{
    PortFamily{1, 32, "ttyS"},
    PortFamily{33, 64, "ttyUSB"},
    PortFamily{65, 96, "ttyACM"},
    PortFamily{97, 127, "ttyAMA"},
};

constexpr std::array<tcflag_t, 9> SizeFlags{0, 0, 0, 0, 0, CS5, CS6, CS7, CS8};
// Mark and space are odd and even of a byte that counts as zero.
constexpr std::array<tcflag_t, 5> ParityFlags{0, PARENB | PARODD, PARENB, PARENB | PARODD | CMSPAR, PARENB | CMSPAR};
constexpr std::array<tcflag_t, 5> HandshakeInput{0, IXON, 0, 0, IXON | IXOFF};
constexpr tcflag_t FrameFlags = CSIZE | CSTOPB | PARENB | PARODD | CMSPAR | CRTSCTS;

// False: the port has taken something else. A driver that cannot do a frame says so only by what it keeps.
bool SetFrame(int port, const SerialFrame& frame)
{
    termios2 wanted{};
    wanted.c_cflag = BOTHER | CREAD | CLOCAL | HUPCL | SizeFlags.at(static_cast<std::size_t>(frame.dataBits)) |
                     ParityFlags.at(static_cast<std::size_t>(frame.parity)) | (frame.stopBits == 2 ? CSTOPB : 0U) |
                     (frame.handshake == SerialHandshake::RtsCts ? CRTSCTS : 0U);
    wanted.c_iflag = IGNBRK | HandshakeInput.at(static_cast<std::size_t>(frame.handshake));
    wanted.c_ispeed = wanted.c_ospeed = static_cast<speed_t>(frame.baud);
    wanted.c_cc[VSTART] = 0x11;
    wanted.c_cc[VSTOP] = 0x13;
    wanted.c_cc[VMIN] = 1;
    termios2 kept{};
    return ::ioctl(port, TCSETS2, &wanted) == 0 && ::ioctl(port, TCGETS2, &kept) == 0 &&
           (kept.c_cflag & FrameFlags) == (wanted.c_cflag & FrameFlags) && kept.c_ospeed == wanted.c_ospeed;
}

class TerminalSerialPort : public SerialPort
{
public:
    TerminalSerialPort(FileDescriptor port, const SerialFrame& frame) : port_(std::move(port)), frame_(frame) {}

    // The mark stays with a pseudo-terminal for as long as its other side is open.
    ~TerminalSerialPort() override { ::ioctl(port_.Number(), TIOCNXCL); }

    int Descriptor() const override { return port_.Number(); }
    std::optional<ModemLines> Lines() const override
    {
        int bits = 0;
        if (::ioctl(port_.Number(), TIOCMGET, &bits) != 0)
            return std::nullopt;
        return ModemLines{.clearToSend = (bits & TIOCM_CTS) != 0,
                          .dataSetReady = (bits & TIOCM_DSR) != 0,
                          .carrier = (bits & TIOCM_CAR) != 0,
                          .ring = (bits & TIOCM_RNG) != 0};
    }
    void SetBreak(bool on) override { ::ioctl(port_.Number(), on ? TIOCSBRK : TIOCCBRK); }
    void SetTerminalReady(bool on) override
    {
        const int line = TIOCM_DTR;
        ::ioctl(port_.Number(), on ? TIOCMBIS : TIOCMBIC, &line);
    }
    bool SetSpeed(int baud) override
    {
        SerialFrame frame = frame_;
        frame.baud = baud;
        if (SetFrame(port_.Number(), frame)) {
            frame_ = frame;
            return true;
        }
        SetFrame(port_.Number(), frame_);
        return false;
    }

private:
    FileDescriptor port_;
    SerialFrame frame_;
};

// The system keeps names for ports that a board might have; those of type 0 it does not have.
bool IsThere(const std::string& path)
{
    if (::access(path.c_str(), F_OK) != 0)
        return false;
    std::ifstream file("/sys/class/tty" + path.substr(path.rfind('/')) + "/type");
    int type = 0;
    return !(file >> type) || type != 0;
}

} // namespace

std::unique_ptr<SerialPort> OpenSerialPort(const std::string& path, const SerialFrame& frame, int& systemError)
{
    FileDescriptor port(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    systemError = errno;
    if (!port)
        return nullptr;
    if (::isatty(port.Number()) != 1) {
        systemError = ENOTTY;
        return nullptr;
    }
    // The lock keeps others of the same manners out, also those of the administrator; the mark all other users.
    if (::flock(port.Number(), LOCK_EX | LOCK_NB) != 0 || ::ioctl(port.Number(), TIOCEXCL) != 0) {
        systemError = EBUSY;
        return nullptr;
    }
    if (!SetFrame(port.Number(), frame)) {
        systemError = EINVAL;
        ::ioctl(port.Number(), TIOCNXCL);
        return nullptr;
    }
    systemError = 0;
    return std::make_unique<TerminalSerialPort>(std::move(port), frame);
}

std::string SerialPortPath(int number)
{
    for (const PortFamily& family : PortFamilies)
        if (number >= family.first && number <= family.last)
            return std::string("/dev/") + family.device + std::to_string(number - family.first);
    return {};
}

std::vector<int> SerialPortNumbers()
{
    std::vector<int> numbers;
    for (int number = PortFamilies.front().first; number <= PortFamilies.back().last; ++number)
        if (IsThere(SerialPortPath(number)))
            numbers.push_back(number);
    return numbers;
}

} // namespace kestrune
