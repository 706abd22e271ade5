#include <emulator/engine/terminal.h>

#include "input.h"
#include "machine.h"

#include <algorithm>

namespace kestrune::emu {

class Terminal::Impl
{
public:
    Impl(const TerminalOptions& options, const Personality& personality, TerminalListener& listener)
        : machine(options, personality, listener)
    {}
    Machine machine;
};

Terminal::Terminal(const TerminalOptions& options, const Personality& personality, TerminalListener& listener)
    : impl_(std::make_unique<Impl>(options, personality, listener))
{}

Terminal::~Terminal() = default;

void Terminal::Receive(std::string_view bytes) { impl_->machine.Receive(bytes); }
bool Terminal::Resize(Size size, std::span<Position> followed) { return impl_->machine.Resize(size, followed); }
void Terminal::ShowExtended(bool on) { impl_->machine.ShowExtended(on); }
void Terminal::SetPage(int page) { impl_->machine.SetPage(page); }
void Terminal::SetHistoryRows(int rows) { impl_->machine.Display().Scrollback().SetLimit(rows); }
void Terminal::SetCharset(HostCharset charset) { impl_->machine.SetCharset(charset); }
void Terminal::SetOptions(const TerminalOptions& options) { impl_->machine.SetOptions(options); }
void Terminal::SelectPersonality(const Personality& personality) { impl_->machine.SelectPersonality(personality); }
void Terminal::Reset() { impl_->machine.HardReset(); }
void Terminal::ClearHistory() { impl_->machine.Display().EraseHistory(); }

void Terminal::PutText(Position at, std::string_view utf8, const Style& style)
{
    impl_->machine.PutText(at, utf8, style);
}
void Terminal::EraseArea(Position from, Position to, const Style& style) { impl_->machine.EraseArea(from, to, style); }
void Terminal::SetLineSize(int row, LineSize size) { impl_->machine.SetLineSize(row, size); }
void Terminal::OnPage(int page, const std::function<void()>& act) { impl_->machine.Display().OnPage(page, act); }
uint16_t Terminal::LinkTo(std::string_view target) { return impl_->machine.Display().LinkFor(target, {}); }
void Terminal::MoveCursor(Position to) { impl_->machine.MoveCursor(to); }
void Terminal::PrintNotice(std::string_view utf8) { impl_->machine.PrintNotice(utf8); }

Size Terminal::ScreenSize() const
{
    const Screen& screen = impl_->machine.Display();
    return {screen.ScreenExtent().cols, screen.WindowRows()};
}
Size Terminal::NormalSize() const { return impl_->machine.NormalSize(); }
int Terminal::StatusRows() const { return impl_->machine.Display().StatusRows(); }
int Terminal::PageCount() const { return impl_->machine.Display().PageCount(); }
int Terminal::Page() const { return impl_->machine.Display().ActivePage(); }

Position Terminal::Cursor() const
{
    const Screen& screen = impl_->machine.Display();
    const CursorState& cursor = screen.ScreenCursor();
    return {cursor.col, std::clamp(cursor.row - screen.WindowTop(), 0, screen.WindowRows() - 1)};
}

int Terminal::HistoryCount() const
{
    return impl_->machine.Display().Scrollback().Count() + impl_->machine.Display().WindowTop();
}
uint64_t Terminal::HistoryPushed() const
{
    return impl_->machine.Display().Scrollback().Pushed() + uint64_t(impl_->machine.Display().WindowTop());
}

RowView Terminal::Row(int row) const
{
    const Size size = ScreenSize();
    if (row < -HistoryCount() || row >= size.rows + StatusRows())
        return {};
    const emu::Row& line = impl_->machine.Display().RowAt(row);
    const auto shown = size_t(std::min(line.used, size.cols));
    return {{line.cells, shown}, line.generation, line.wraps, line.size};
}

const Style& Terminal::StyleOf(StyleId id) const { return impl_->machine.Display().StyleOf(id); }
std::u32string_view Terminal::ClusterOf(uint32_t text) const { return impl_->machine.Display().ClusterOf(text); }
std::string_view Terminal::LinkOf(uint16_t link) const { return impl_->machine.Display().Links().At(link); }
uint64_t Terminal::Generation() const { return impl_->machine.Display().Clock(); }
ModesView Terminal::Modes() const { return impl_->machine.View(); }
uint32_t Terminal::PaletteOverride(int index) const { return impl_->machine.PaletteOverride(index); }
const SoftGlyph* Terminal::SoftGlyphOf(char32_t point) const
{
    return impl_->machine.Soft().GlyphOf(point, impl_->machine.Switches().Has(Mode::Columns132));
}
uint64_t Terminal::SoftGlyphChanges() const { return impl_->machine.Soft().Changes(); }
const Personality& Terminal::CurrentPersonality() const { return impl_->machine.Type(); }

std::string Terminal::TextOf(int row, int fromCol, int cols) const
{
    const std::span<const Cell> cells = Row(row).cells;
    const int from = std::max(0, fromCol);
    const int to = std::min(ScreenSize().cols, cols > 0 ? from + std::min(cols, ScreenSize().cols) : from);
    std::string out;
    for (auto col = size_t(from); col < size_t(std::max(from, to)); ++col) {
        if (col >= cells.size() || cells[col].text == 0) {
            if (col >= cells.size() || !(cells[col].flags & Cell::WideTail))
                out += ' ';
        } else if (cells[col].text & Cell::ClusterBit) {
            for (const char32_t point : ClusterOf(cells[col].text))
                AppendUtf8(out, point);
        } else {
            AppendUtf8(out, cells[col].text);
        }
    }
    return out;
}

std::string Terminal::KeyBytes(const KeyPress& key) const { return KeyToBytes(impl_->machine, key); }
std::string Terminal::MouseBytes(const MouseAction& action) const { return MouseToBytes(impl_->machine, action); }
std::string Terminal::FocusBytes(bool gained) const { return FocusToBytes(impl_->machine, gained); }
std::string Terminal::PasteBytes(std::string_view utf8) const { return PasteToBytes(impl_->machine, utf8); }
std::string Terminal::EncodeText(std::string_view utf8) const { return TextToBytes(impl_->machine, utf8); }

} // namespace kestrune::emu
