#pragma once

// One working terminal for a test: bytes in as from a host, rows and replies out as a user and a host see them.

#include <emulator/engine/terminal.h>
#include <emulator/personalities/personalities.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace kestrune::emu {

namespace Type {
inline constexpr int Tty = 0, Vt52 = 7, Vt220 = 8, Ansi = 9, Vt100 = 12, Vt320 = 13, Vt420 = 14, Sco = 15, Linux = 16,
                     Lanpar = 77;
}

struct Heard : TerminalListener
{
    void Reply(std::string_view bytes) override { replies += bytes; }
    void Bell() override { ++bells; }
    void TitleChanged(std::string_view utf8) override { title = utf8; }
    void ScreenSizeChanged(Size size) override { sizes.push_back(size); }
    void KeyboardLockChanged(bool locked) override { locks.push_back(locked); }
    void PrinterData(std::string_view bytes) override { printed += bytes; }
    void PrinterStateChanged(int state) override { printerStates.push_back(state); }
    void HistoryAdded(int rows) override { historyAdded += rows; }
    void ClipboardOffered(std::string_view utf8) override { clipboard = utf8; }

    std::string replies, title, printed, clipboard;
    std::vector<Size> sizes;
    std::vector<bool> locks;
    std::vector<int> printerStates;
    int bells = 0;
    int historyAdded = 0;
};

inline TerminalOptions Utf8Options(int rows, int cols, int history = 100)
{
    TerminalOptions options;
    options.size = {cols, rows};
    options.historyRows = history;
    options.charset = HostCharset::Utf8;
    return options;
}

class Bench
{
public:
    Bench(int rows, int cols, int type = Type::Vt220) : Bench(Utf8Options(rows, cols), type) {}
    explicit Bench(const TerminalOptions& options, int type = Type::Vt220)
        : terminal(options, *FindPersonality(type), heard)
    {}

    Bench& HostSays(std::string_view bytes)
    {
        terminal.Receive(bytes);
        return *this;
    }

    // Text of one row, trailing blanks cut; row -1 is the newest of the history.
    std::string Line(int row) const
    {
        std::string text = terminal.TextOf(row, 0, terminal.ScreenSize().cols);
        text.erase(text.find_last_not_of(' ') + 1);
        return text;
    }
    // All rows, joined by '|', blank ones at the end left out.
    std::string Rows() const { return Joined(0, terminal.ScreenSize().rows); }
    std::string HistoryRows() const { return Joined(-terminal.HistoryCount(), 0); }
    Style StyleAt(int row, int col) const
    {
        const RowView view = terminal.Row(row);
        return size_t(col) < view.cells.size() ? terminal.StyleOf(view.cells[size_t(col)].style) : Style{};
    }
    std::string Replies() { return std::exchange(heard.replies, {}); }

    // Everything that can be seen, for comparing two terminals.
    std::string Everything() const
    {
        const Position cursor = terminal.Cursor();
        std::string out = std::to_string(cursor.row).append(",").append(std::to_string(cursor.col)).append("\n");
        for (int row = -terminal.HistoryCount(); row < terminal.ScreenSize().rows; ++row) {
            const RowView view = terminal.Row(row);
            out.append(Line(row)).append(view.wraps ? "\\" : "").append(1, char('0' + int(view.size)));
            for (size_t col = 0; col < view.cells.size(); ++col)
                out += Look(terminal.StyleOf(view.cells[col].style), view.cells[col].flags);
            out += '\n';
        }
        return out + heard.replies + '\n' + heard.title + '\n' + heard.printed + '\n' + heard.clipboard;
    }

    Heard heard;
    Terminal terminal;

private:
    static std::string Look(const Style& style, uint16_t flags)
    {
        if (style == Style{} && flags == 0)
            return {};
        std::ostringstream out;
        out << '<' << style.foreground.value << ' ' << style.background.value << ' ' << style.underlineColor.value
            << ' ' << style.attributes << ' ' << int(style.underline) << ' ' << style.link << ' ' << flags << '>';
        return out.str();
    }
    std::string Joined(int from, int to) const
    {
        std::string out;
        for (int row = from; row < to; ++row)
            out.append(row > from ? "|" : "").append(Line(row));
        out.erase(out.find_last_not_of('|') + 1);
        return out;
    }
};

} // namespace kestrune::emu
