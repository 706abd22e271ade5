// Presses keys at a terminal through the XTEST extension and prints milliseconds as one line of JSON.
//
//   key_watch pixel COUNT PROGRAM ARGUMENT..        the terminal runs "window_probe keys": from key press to the first
//                                                   changed pixel
//   key_watch flood COUNT FILE PROGRAM ARGUMENT..   the terminal runs "window_probe busy FILE": from key press to its
//                                                   arrival in a program that prints without end

#include "display.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xtest.h>

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;
constexpr auto StartLimit = std::chrono::seconds(30);
constexpr auto KeyLimit = std::chrono::seconds(2);
constexpr auto Settling = std::chrono::milliseconds(500);

class Keyboard
{
public:
    explicit Keyboard(const bench::Display& display) : display_(display)
    {
        const xcb_setup_t* setup = xcb_get_setup(display.Connection());
        const auto asked =
            xcb_get_keyboard_mapping(display.Connection(), setup->min_keycode,
                                     static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1));
        const std::unique_ptr<xcb_get_keyboard_mapping_reply_t, bench::FreeMemory> map(
            xcb_get_keyboard_mapping_reply(display.Connection(), asked, nullptr));
        const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
        for (int i = 0; i < xcb_get_keyboard_mapping_keysyms_length(map.get()); i += map->keysyms_per_keycode)
            if (symbols[i] == 'x')
                key_ = static_cast<std::uint8_t>(setup->min_keycode + i / map->keysyms_per_keycode);
    }

    // There is no window manager: whose window lies under the block has the keyboard.
    void FocusAt(int x, int y) const
    {
        xcb_warp_pointer(display_.Connection(), XCB_NONE, display_.Root(), 0, 0, 0, 0, static_cast<std::int16_t>(x),
                         static_cast<std::int16_t>(y));
        const std::unique_ptr<xcb_query_pointer_reply_t, bench::FreeMemory> under(xcb_query_pointer_reply(
            display_.Connection(), xcb_query_pointer(display_.Connection(), display_.Root()), nullptr));
        xcb_set_input_focus(display_.Connection(), XCB_INPUT_FOCUS_PARENT, under->child, XCB_CURRENT_TIME);
        xcb_flush(display_.Connection());
    }

    Clock::time_point Press() const
    {
        const auto now = Clock::now();
        for (const auto what : {std::uint8_t{XCB_KEY_PRESS}, std::uint8_t{XCB_KEY_RELEASE}})
            xcb_test_fake_input(display_.Connection(), what, key_, XCB_CURRENT_TIME, display_.Root(), 0, 0, 0);
        xcb_flush(display_.Connection());
        return now;
    }

private:
    const bench::Display& display_;
    std::uint8_t key_ = 0;
};

template <typename Condition>
bool WaitFor(Clock::duration limit, std::chrono::microseconds pause, Condition&& condition)
{
    for (const auto end = Clock::now() + limit; Clock::now() < end; std::this_thread::sleep_for(pause))
        if (condition())
            return true;
    return false;
}

// The arrivals that stand in the file so far.
std::vector<Clock::time_point> Arrivals(const std::string& file)
{
    std::vector<Clock::time_point> all;
    std::ifstream in(file);
    for (Clock::rep value = 0; in >> value;)
        all.emplace_back(Clock::duration(value));
    return all;
}

using Measure = std::function<std::optional<double>(const Keyboard&)>;

Measure PixelMeasure(const bench::Display& display, int x, int y)
{
    return [&display, x, y](const Keyboard& keyboard) -> std::optional<double> {
        const bench::Paint before = display.At(x, y);
        const auto pressed = keyboard.Press();
        if (!WaitFor(KeyLimit, std::chrono::microseconds(0), [&] { return display.At(x, y) != before; }))
            return std::nullopt;
        return Milliseconds(Clock::now() - pressed).count();
    };
}

Measure ArrivalMeasure(const std::string& file)
{
    return [file](const Keyboard& keyboard) -> std::optional<double> {
        const std::size_t known = Arrivals(file).size();
        const auto pressed = keyboard.Press();
        if (!WaitFor(KeyLimit, std::chrono::milliseconds(5), [&] { return Arrivals(file).size() > known; }))
            return std::nullopt;
        return Milliseconds(Arrivals(file)[known] - pressed).count();
    };
}

void Print(std::vector<double> times, int lost)
{
    std::sort(times.begin(), times.end());
    const auto at = [&](double share) {
        return times.empty() ? 0 : times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
    };
    std::printf("{\"least\": %.2f, \"median\": %.2f, \"high\": %.2f, \"lost\": %d}\n", at(0), at(0.5), at(0.95), lost);
}

int Run(bool flood, int presses, const std::string& file)
{
    const bench::Display display;
    bench::Area block;
    if (!WaitFor(StartLimit, std::chrono::milliseconds(10), [&] {
            block = display.FindBlock();
            return block.rows >= 4;
        })) {
        std::fputs("key_watch: no block was shown\n", stderr);
        return 1;
    }
    std::this_thread::sleep_for(Settling); // starting up still goes on behind the first picture
    block = display.FindBlock();
    const int x = (block.left + block.right) / 2;
    const int y = (block.top + block.bottom) / 2;
    const Keyboard keyboard(display);
    keyboard.FocusAt(x, y);
    std::this_thread::sleep_for(Settling);
    const Measure measure = flood ? ArrivalMeasure(file) : PixelMeasure(display, x, y);
    if (flood) {
        keyboard.Press(); // starts the flood
        std::this_thread::sleep_for(Settling);
    }
    std::mt19937 random(5);
    std::vector<double> times;
    int lost = 0;
    for (int i = 0; i < presses; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(60 + random() % 60));
        if (const auto time = measure(keyboard))
            times.push_back(*time);
        else if (++lost > 5)
            break; // nobody hears
    }
    Print(times, lost);
    return 0;
}

} // namespace

int main(int count, char** arguments)
{
    const std::string_view mode = count > 1 ? arguments[1] : "";
    const bool flood = mode == "flood";
    const int program = flood ? 4 : 3;
    if ((!flood && mode != "pixel") || count <= program) {
        std::fputs("usage: key_watch pixel COUNT PROGRAM ARGUMENT.. | flood COUNT FILE PROGRAM ARGUMENT..\n", stderr);
        return 2;
    }
    const pid_t terminal = fork();
    if (terminal == 0) {
        execvp(arguments[program], arguments + program);
        std::perror(arguments[program]);
        _exit(127);
    }
    const int result = Run(flood, std::stoi(arguments[2]), flood ? arguments[3] : "");
    kill(terminal, SIGKILL);
    waitpid(terminal, nullptr, 0);
    return result;
}
