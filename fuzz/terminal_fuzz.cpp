// Host bytes with resizes, changes of type and looks in between. The first bytes choose type, encoding and size;
// after that 0xFF starts an action of the user, everything else is the host's.

#include <emulator/engine/terminal.h>
#include <emulator/personalities/personalities.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace kestrune::emu;

struct Sink : TerminalListener
{
    void Reply(std::string_view bytes) override { replied += bytes.size(); }
    void TitleChanged(std::string_view utf8) override { replied += utf8.size(); }
    size_t replied = 0;
};

void LookAtShape(const Terminal& terminal, char32_t point)
{
    const SoftGlyph* glyph = terminal.SoftGlyphOf(point);
    if (glyph == nullptr)
        return;
    const bool fits = glyph->IsLoaded() && glyph->width <= SoftGlyph::MostWide && glyph->height > 0 &&
                      glyph->height <= SoftGlyph::MostHigh;
    if (!fits || !IsSoftPoint(point))
        std::abort();
    for (const uint16_t line : glyph->lines)
        if ((line >> glyph->width) != 0)
            std::abort();
}

void Look(const Terminal& terminal)
{
    const Size size = terminal.ScreenSize();
    const Position cursor = terminal.Cursor();
    if (cursor.col < 0 || cursor.col >= size.cols || cursor.row < 0 || cursor.row >= size.rows)
        std::abort();
    for (int row = -terminal.HistoryCount(); row < size.rows + terminal.StatusRows(); ++row) {
        const RowView view = terminal.Row(row);
        if (view.cells.size() > size_t(size.cols))
            std::abort();
        for (size_t col = 0; col < view.cells.size(); ++col) {
            (void)terminal.StyleOf(view.cells[col].style);
            LookAtShape(terminal, view.cells[col].text);
            const bool hasTail = col + 1 < view.cells.size() && (view.cells[col + 1].flags & Cell::WideTail);
            if (row >= 0 && ((view.cells[col].flags & Cell::Wide) != 0) != hasTail)
                std::abort();
        }
        (void)terminal.TextOf(row, 0, size.cols);
    }
}

TerminalOptions OptionsFor(uint8_t charset, uint8_t cols, uint8_t rows)
{
    TerminalOptions options;
    options.charset = HostCharset(charset % 5);
    options.size = {cols % 90 + 1, rows % 40 + 1};
    options.historyRows = 30;
    options.pages = cols % 4;
    options.reflow = rows % 2 == 0;
    options.extended = {rows % 140 + 1, charset % 30};
    options.startsExtended = charset % 7 == 0;
    options.messageRows = charset % 4 - 1;
    return options;
}

void Act(Terminal& terminal, uint8_t what, uint8_t how)
{
    const auto types = AllPersonalities();
    const Size size = terminal.ScreenSize();
    const Position place{how % size.cols, how / 3 % size.rows};
    switch (what % 17) {
    case 0:
        terminal.Resize({how % 90 + 1, terminal.ScreenSize().rows});
        break;
    case 1:
        terminal.Resize({terminal.ScreenSize().cols, how % 40 + 1});
        break;
    case 2:
        terminal.SelectPersonality(*types[how % types.size()]);
        break;
    case 3:
        terminal.SetHistoryRows(how);
        break;
    case 4:
        terminal.SetCharset(HostCharset(how % 5));
        break;
    case 5:
        terminal.PutText(place,
                         "x\xe4\xb8\xad"
                         "e\xcc\x81"
                         "\xff",
                         {});
        break;
    case 6:
        terminal.EraseArea({0, 0}, place, {});
        break;
    case 7:
        terminal.MoveCursor(place);
        break;
    case 8:
        terminal.PrintNotice("the line has gone");
        break;
    case 9:
        terminal.Reset();
        break;
    case 10:
        terminal.ClearHistory();
        break;
    case 11:
        terminal.SetOptions(OptionsFor(uint8_t(how / 7), how, what));
        break;
    case 12:
        (void)terminal.PasteBytes("a\x1b[201~b\r\n");
        (void)terminal.FocusBytes(how % 2 != 0);
        (void)terminal.MouseBytes({});
        (void)terminal.EncodeText("\xc3\xa9 \xe4\xb8\xad");
        break;
    case 13: // what chance would hardly write: soft characters, in use
        terminal.Receive("\x1bP" + std::to_string(how % 3) + ";" + std::to_string(how % 97) + ";" +
                         std::to_string(how % 3) + ";" + std::to_string(how % 16) + ";" + std::to_string(what / 17) +
                         ";" + std::to_string(how % 3) + ";" + std::to_string(how % 17) + ";" +
                         std::to_string(how % 2) + "{ @~?@A/Bz;~~~~~~~~~~~~~~~~~/~/~/~;\x1b\\\x1b( @!\"#x\x1b- @");
        break;
    case 14: { // pages of other lengths, and more or fewer lines on the screen
        static constexpr int kLines[] = {24, 25, 36, 48, 72, 144};
        terminal.Receive("\x1b[" + std::to_string(kLines[how % 6]) + (how % 4 == 0 ? "*|" : "t") + "\x1b[" +
                         std::to_string(how) + "H" + (how % 5 == 0 ? "\x1b[?61l" : "\x1b[?61h"));
        break;
    }
    case 15: // reports given back, whole and spoilt
        terminal.Receive("\x1b[2;" + std::to_string(how % 4) + "$u\x1bP2$p" + std::to_string(how) + ";" +
                         std::to_string(how % 3) + ";" + std::to_string(how % 110) + ";50;" +
                         (how % 3 == 0 ? "" : "100") + "/0;2;;;\x1b\\\x1bP1$t" + std::to_string(how % 60) +
                         ";1;1;@;@;@;0;2;N; @ AAA\x1b\\");
        break;
    default:
        Look(terminal);
        (void)terminal.KeyBytes({Key(how % 72), uint8_t(how >> 4), "x"});
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 4)
        return 0;
    const auto types = AllPersonalities();
    Sink sink;
    Terminal terminal(OptionsFor(data[1], data[2], data[3]), *types[data[0] % types.size()], sink);
    std::string_view rest(reinterpret_cast<const char*>(data) + 4, size - 4);
    while (!rest.empty()) {
        const size_t mark = rest.find('\xff');
        terminal.Receive(rest.substr(0, mark));
        rest.remove_prefix(mark == rest.npos ? rest.size() : mark);
        if (rest.size() < 3)
            break;
        Act(terminal, uint8_t(rest[1]), uint8_t(rest[2]));
        rest.remove_prefix(3);
    }
    Look(terminal);
    return 0;
}
