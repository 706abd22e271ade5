// start_watch PROGRAM ARGUMENT..: starts a terminal that runs "window_probe block", watches the screen's pixels
// until the block is there, ends the terminal and prints one line of JSON: milliseconds from start to sight,
// processor milliseconds and resident kilobytes of the terminal by then.

#include "processes.h"

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto TimeLimit = std::chrono::seconds(30);
constexpr int ScanLines = 24;

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};

// Magenta in any palette: red and blue well above green.
bool IsBlock(const std::uint8_t* pixel) { return pixel[2] > pixel[1] + 40 && pixel[0] > pixel[1] + 40; }

class Screen
{
public:
    Screen() : connection_(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(connection_) != 0) {
            std::fputs("start_watch: no display\n", stderr);
            std::exit(1);
        }
        screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    }
    ~Screen() { xcb_disconnect(connection_); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // Some lines across the whole screen are enough for a block of 80 by 24 cells.
    bool ShowsBlock() const
    {
        std::vector<xcb_get_image_cookie_t> asked;
        for (int i = 1; i <= ScanLines; ++i) {
            const int y = screen_->height_in_pixels * i / (ScanLines + 1);
            asked.push_back(xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, 0,
                                          static_cast<std::int16_t>(y), screen_->width_in_pixels, 1, ~0U));
        }
        int linesWithBlock = 0;
        for (const auto& cookie : asked) {
            const std::unique_ptr<xcb_get_image_reply_t, Free> line(xcb_get_image_reply(connection_, cookie, nullptr));
            linesWithBlock += line && IsBlockLine(*line) ? 1 : 0;
        }
        return linesWithBlock >= 4;
    }

private:
    static bool IsBlockLine(const xcb_get_image_reply_t& line)
    {
        const std::uint8_t* pixels = xcb_get_image_data(&line);
        const int count = xcb_get_image_data_length(&line) / 4;
        int found = 0;
        for (int x = 0; x < count; ++x)
            found += IsBlock(pixels + 4 * static_cast<std::ptrdiff_t>(x)) ? 1 : 0;
        return found > 300;
    }

    xcb_connection_t* connection_;
    const xcb_screen_t* screen_ = nullptr;
};

} // namespace

int main(int count, char** arguments)
{
    if (count < 2) {
        std::fputs("usage: start_watch PROGRAM ARGUMENT..\n", stderr);
        return 2;
    }
    const Screen screen;
    if (screen.ShowsBlock()) {
        std::fputs("start_watch: the block is there before the start\n", stderr);
        return 1;
    }
    const auto begin = Clock::now();
    const pid_t terminal = fork();
    if (terminal == 0) {
        execvp(arguments[1], arguments + 1);
        std::perror(arguments[1]);
        _exit(127);
    }
    bool seen = false;
    while (!seen && Clock::now() - begin < TimeLimit && waitpid(terminal, nullptr, WNOHANG) == 0) {
        seen = screen.ShowsBlock();
        usleep(seen ? 0 : 1000);
    }
    const double milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    if (seen)
        std::printf("{\"shown\": %.1f, \"processor\": %.1f, \"resident\": %ld}\n", milliseconds,
                    1000 * bench::ProcessorSeconds(terminal), bench::ResidentKilobytes(terminal));
    else
        std::fprintf(stderr, "start_watch: %s has shown no block\n", arguments[1]);
    kill(terminal, SIGKILL);
    waitpid(terminal, nullptr, 0);
    return seen ? 0 : 1;
}
