#pragma once

// A serial port of the machine: opened for this program alone, set to speed and frame, never blocking.

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrune {

enum class SerialParity
{
    None,
    Odd,
    Even,
    Mark,
    Space
};

enum class SerialHandshake
{
    None,
    XonXoff, // the far side may stop us
    RtsCts,
    DtrDsr,         // not known to the system's driver: the owner watches DSR and moves DTR
    XonXoffBothWays // and the driver stops the far side when its buffer fills
};

struct SerialFrame
{
    int baud = 9600; // bits per second, also uncommon ones
    int dataBits = 8;
    int stopBits = 1;
    SerialParity parity = SerialParity::None;
    SerialHandshake handshake = SerialHandshake::None;
};

struct ModemLines // that come in
{
    bool clearToSend = false;
    bool dataSetReady = false;
    bool carrier = false;
    bool ring = false;
    bool operator==(const ModemLines&) const = default;
};

class SerialPort
{
public:
    virtual ~SerialPort() = default;
    virtual int Descriptor() const = 0;                  // for reading, writing and notifiers
    virtual std::optional<ModemLines> Lines() const = 0; // nothing: this port has no such lines
    virtual void SetBreak(bool on) = 0;
    virtual void SetTerminalReady(bool on) = 0; // DTR
    virtual bool SetSpeed(int baud) = 0;        // bits per second; false: it cannot, and keeps the old one
};

// Null when it cannot be had; systemError is then ENOENT, EACCES, EBUSY (another program has it), ENOTTY (it is no
// serial port), EINVAL (it cannot be set to this frame), or whatever else the system says.
std::unique_ptr<SerialPort> OpenSerialPort(const std::string& path, const SerialFrame& frame, int& systemError);

// Ports by number, as other platforms have them: 1 to 32 are ttyS0 on, 33 to 64 ttyUSB0 on, 65 to 96 ttyACM0 on,
// 97 to 127 ttyAMA0 on. Empty: no such number.
std::string SerialPortPath(int number);

// The numbers of those that this machine has, in order.
std::vector<int> SerialPortNumbers();

} // namespace kestrune
