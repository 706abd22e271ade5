// The program of a session under test: on a raw terminal it prints so many bytes of noise, reads as many of another
// noise, and ends with 7 when every one of them was right, with 1 at the first that was not.

#include "noise.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

int main(int, char** arguments)
{
    termios raw{};
    tcgetattr(0, &raw);
    cfmakeraw(&raw);
    tcsetattr(0, TCSANOW, &raw);

    Noise mine(1), theirs(2);
    long toPrint = std::atol(arguments[1]);
    long toRead = toPrint;
    std::string piece = "+"; // the terminal is raw from here on
    while (toPrint > 0 || toRead > 0 || !piece.empty()) {
        if (piece.empty() && toPrint > 0) {
            piece = mine.Take(std::size_t(std::min(toPrint, 4096L)));
            toPrint -= long(piece.size());
        }
        pollfd files[] = {{0, short(toRead > 0 ? POLLIN : 0), 0}, {1, short(piece.empty() ? 0 : POLLOUT), 0}};
        poll(files, 2, -1);
        if ((files[1].revents & POLLOUT) != 0) {
            const auto count = write(1, piece.data(), std::min<std::size_t>(piece.size(), 512));
            piece.erase(0, count > 0 ? std::size_t(count) : 0);
        }
        if ((files[0].revents & POLLIN) != 0) {
            char bytes[4096];
            const auto count = read(0, bytes, sizeof bytes);
            for (ssize_t i = 0; i < count; ++i)
                if (static_cast<unsigned char>(bytes[i]) != theirs.Next())
                    return 1;
            toRead -= count > 0 ? count : 0;
        }
        if (((files[0].revents | files[1].revents) & (POLLHUP | POLLERR)) != 0)
            return 2;
    }
    return toRead < 0 ? 3 : 7;
}
