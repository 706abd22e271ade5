// Media copy. Nothing is printed here: the listener gets bytes in the host's own encoding and decides.

#include "machine.h"

namespace kestrune::emu {
namespace {

std::string PrintedRow(const Screen& screen, const Row& row, HostCharset charset)
{
    std::string out;
    size_t length = 0; // trailing blanks are not printed
    for (const Cell& cell : row.Used()) {
        if (cell.flags & Cell::WideTail)
            continue;
        if (cell.text & Cell::ClusterBit)
            for (const char32_t point : screen.ClusterOf(cell.text))
                out += EncodeForHost(charset, {}, point);
        else
            out += EncodeForHost(charset, {}, cell.text == 0 ? U' ' : char32_t(cell.text));
        if (out.back() != ' ')
            length = out.size();
    }
    out.resize(length);
    return out + "\r\n";
}

} // namespace

void Machine::MediaCopy(int selector, bool isPrivate)
{
    const int rows = screen_.Extent().rows; // of what the host works on, shown or not
    if (!isPrivate) {
        const bool whole = modes_.Has(Mode::PrintWholeScreen);
        if (selector == 0)
            PrintRows(whole ? 0 : screen_.TopMargin(), whole ? rows - 1 : screen_.BottomMargin(),
                      modes_.Has(Mode::PrintFormFeed));
        else if (selector == 5)
            StartPrinterController();
        return;
    }
    switch (selector) {
    case 1:
        PrintRows(screen_.Cursor().row, screen_.Cursor().row, false);
        break;
    case 4:
    case 5:
        modes_.Set(Mode::AutoPrint, selector == 5);
        screen_.SetWatcher(selector == 5 ? this : nullptr);
        TellPrinterState();
        break;
    case 10: { // what is seen
        const int top = screen_.IsOnStatusLine() ? 0 : screen_.WindowTop();
        PrintRows(top, std::min(rows, top + screen_.WindowRows()) - 1, modes_.Has(Mode::PrintFormFeed));
        break;
    }
    case 11:
        PrintAllPages();
        break;
    default:
        break;
    }
}

void Machine::PrintRows(int from, int to, bool formFeed)
{
    std::string out;
    for (int row = from; row <= to; ++row)
        out += PrintedRow(screen_, screen_.HostRow(row), charset_);
    if (formFeed)
        out += '\f';
    listener_.PrinterData(out);
}

void Machine::PrintAllPages()
{
    std::string out;
    for (int number = 0; number < screen_.PageCount(); ++number) {
        const Page* page = screen_.UsedPage(number);
        for (int row = 0; page != nullptr && row < page->Extent().rows; ++row)
            out += PrintedRow(screen_, page->At(row), charset_);
        if (page != nullptr && modes_.Has(Mode::PrintFormFeed))
            out += '\f';
    }
    listener_.PrinterData(out);
}

void Machine::StartPrinterController()
{
    printing_ = true;
    parser_.StartPrinter();
    TellPrinterState();
}

void Machine::ToPrinter(std::span<const uint8_t> bytes)
{
    listener_.PrinterData({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void Machine::PrinterEnds()
{
    printing_ = false;
    TellPrinterState();
}

void Machine::LineLeft(int row)
{
    if (!screen_.IsOnStatusLine())
        listener_.PrinterData(PrintedRow(screen_, screen_.HostRow(row), charset_));
}

void Machine::TellPrinterState()
{
    const int state = printing_ || modes_.Has(Mode::AutoPrint) ? 1 : 0;
    if (state != printerState_)
        listener_.PrinterStateChanged(state);
    printerState_ = state;
}

} // namespace kestrune::emu
