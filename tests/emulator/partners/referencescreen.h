#pragma once

// What a program shows in another terminal emulator: tmux keeps a screen for it, under the terminal type that tmux
// itself is. One server of its own for each screen, with its socket in the folder given.

#include <poll.h>

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace kestrune::emu::partners {

struct ScreenSize
{
    int cols;
    int rows;
};

class ReferenceScreen
{
public:
    ReferenceScreen(std::string folder, const std::string& command, ScreenSize size) : folder_(std::move(folder))
    {
        const std::string settings = folder_ + "/reference.conf";
        if (FILE* file = std::fopen(settings.c_str(), "w")) {
            std::fputs("set -g status off\nset -g default-terminal screen\n", file);
            std::fclose(file);
        }
        const std::string where = " -x " + std::to_string(size.cols) + " -y " + std::to_string(size.rows);
        Tmux("-f " + settings + " new-session -d" + where + " '" + command + "'");
        Tmux("set -g window-size manual"); // without a client there is nobody whose window it could follow
    }
    ReferenceScreen(const ReferenceScreen&) = delete;
    ReferenceScreen& operator=(const ReferenceScreen&) = delete;
    ~ReferenceScreen() { Tmux("kill-server"); }

    void Type(const std::string& keys)
    {
        for (const char key : keys) {
            char hex[3];
            std::snprintf(hex, sizeof hex, "%02x", unsigned(uint8_t(key)));
            Tmux(std::string("send-keys -H ") + hex);
        }
    }
    void Resize(ScreenSize size)
    {
        Tmux("resize-window -x " + std::to_string(size.cols) + " -y " + std::to_string(size.rows));
    }
    // Once `marker` is there and the screen has stopped changing: UTF-8 lines, line drawing as ASCII.
    std::string Settled(const std::string& marker)
    {
        std::string last;
        for (int same = 0, tries = 0; same < kSettledLooks; ++tries) {
            if (tries == kMostLooks)
                throw std::runtime_error("never shows \"" + marker + "\":\n" + last);
            poll(nullptr, 0, kLookMilliseconds);
            std::string now = WithoutRenditions(Tmux("capture-pane -p -e"));
            same = now == last && now.find(marker) != now.npos ? same + 1 : 0;
            last = std::move(now);
        }
        return last;
    }

private:
    static constexpr int kLookMilliseconds = 100, kSettledLooks = 5, kMostLooks = 300;

    std::string Tmux(const std::string& arguments) const
    {
        const std::string line = "env -u TMUX TMUX_TMPDIR=" + folder_ + " HOME=" + folder_ +
                                 " LC_ALL=C tmux -L reference " + arguments + " 2>&1";
        std::string out;
        FILE* pipe = popen(line.c_str(), "r");
        if (pipe == nullptr)
            throw std::runtime_error("no shell");
        std::array<char, 4096> piece{};
        while (const size_t got = std::fread(piece.data(), 1, piece.size(), pipe))
            out.append(piece.data(), got);
        pclose(pipe);
        return out;
    }

    // tmux marks line drawing by SO and SI; what it draws is then named by the letters of the VT100.
    static std::string WithoutRenditions(const std::string& text)
    {
        std::string out;
        bool drawing = false;
        for (size_t i = 0; i < text.size(); ++i) {
            const char c = text[i];
            if (c == '\x1b')
                i = text.find('m', i);
            else if (c == '\x0e' || c == '\x0f')
                drawing = c == '\x0e';
            else if (drawing)
                out += c == 'q'                                                ? '-'
                       : c == 'x'                                              ? '|'
                       : std::string("jklmntuvw").find(c) != std::string::npos ? '+'
                                                                               : c;
            else
                out += c;
        }
        return out;
    }

    std::string folder_;
};

} // namespace kestrune::emu::partners
