#pragma once

// The far end of a serial cable, on a pseudo-terminal.

#include "linerig.h"

#include <array>
#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace kestrune {

class Cable
{
public:
    Cable()
    {
        int slave = -1;
        EXPECT_EQ(::openpty(&master_, &slave, nullptr, nullptr, nullptr), 0);
        path_ = QString::fromLocal8Bit(::ttyname(slave));
        ::close(slave);
        ::fcntl(master_, F_SETFL, O_NONBLOCK);
    }
    ~Cable() { Cut(); }
    void Cut()
    {
        if (master_ >= 0)
            ::close(master_);
        master_ = -1;
    }
    const QString& Path() const { return path_; }
    void Says(const QByteArray& bytes) const
    {
        EXPECT_EQ(::write(master_, bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
    }
    bool Hears(const QByteArray& bytes)
    {
        return WaitUntil([&] { return Heard().contains(bytes); });
    }
    QByteArray& Heard() // all so far; the test may take from it
    {
        std::array<char, 4096> piece;
        for (auto count = ::read(master_, piece.data(), piece.size()); count > 0;
             count = ::read(master_, piece.data(), piece.size()))
            heard_.append(piece.data(), count);
        return heard_;
    }
    // As the kernel keeps it; <termios.h> knows none but the speeds in its list. See ioctl_tty(2), TCGETS2.
    unsigned Speed() const
    {
        constexpr unsigned long getWithSpeeds = 0x802C542A;
        std::array<unsigned, 11> settings{};
        EXPECT_EQ(::ioctl(master_, getWithSpeeds, settings.data()), 0);
        return settings.back(); // that of output
    }
    termios Settings() const
    {
        termios settings{};
        EXPECT_EQ(::tcgetattr(master_, &settings), 0);
        return settings;
    }

private:
    int master_ = -1;
    QString path_;
    QByteArray heard_;
};

} // namespace kestrune
