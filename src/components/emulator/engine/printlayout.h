#pragma once

// What a host prints as text, laid out on pages: form feeds begin a page, a carriage return without a line feed and
// a backspace print over what stands there, SGR 1 and 4 and the common printers' ESC E, ESC F and ESC - are bold and
// underline. Every other control sequence is left out. Columns count from 0.

#include <emulator/engine/terminal.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::emu {

struct PrintRun // text of one look, from column on; a later run may lie over an earlier one
{
    int column = 0;
    bool bold = false;
    bool underline = false;
    std::string utf8;
};
struct PrintLine
{
    std::vector<PrintRun> runs;
};
struct PrintPage
{
    std::vector<PrintLine> lines;
};

class PrintLayout
{
public:
    static constexpr int MaxColumns = 255; // what is longer goes on in the next line

    PrintLayout(HostCharset charset, bool eightBitControls);
    ~PrintLayout();
    PrintLayout(const PrintLayout&) = delete;
    PrintLayout& operator=(const PrintLayout&) = delete;

    void Feed(std::string_view bytes);
    std::vector<PrintPage> Take(); // all pages, without an empty one at the end; the next begins anew

private:
    class Sink;
    std::unique_ptr<Sink> sink_;
};

} // namespace kestrune::emu
