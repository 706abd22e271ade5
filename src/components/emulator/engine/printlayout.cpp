#include "printlayout.h"

#include "charsets.h"
#include "parser.h"
#include "widths.h"

#include <algorithm>
#include <utility>

namespace kestrune::emu {

class PrintLayout::Sink : public ParserSink
{
public:
    Sink(HostCharset charset, bool eightBitControls) : charset_(charset)
    {
        parser.SetRules({.utf8 = charset == HostCharset::Utf8, .c1 = eightBitControls && CharsetAllowsC1(charset)});
    }

    void Ascii(std::span<const uint8_t> run) override
    {
        for (const uint8_t byte : run)
            Put(byte);
    }
    void HighBytes(std::span<const uint8_t> run) override
    {
        for (const uint8_t byte : run)
            Put(HostPoint(charset_, byte));
    }
    void Points(std::span<const char32_t> run) override
    {
        for (const char32_t point : run)
            Put(point);
    }
    void Execute(uint8_t control) override;
    void Escape(std::string_view intermediates, char final) override
    {
        if (intermediates.empty() && (final == 'E' || final == 'F'))
            bold_ = final == 'E';
        else if (intermediates == "-")
            underline_ = final == '1';
    }
    void Control(const ControlSequence& sequence) override;
    void Aborted(uint8_t) override {}
    void String(StringKind, std::string_view) override {}
    void Vt52Address(int, int) override {}
    void ToPrinter(std::span<const uint8_t>) override {}
    void PrinterEnds() override {}

    std::vector<PrintPage> Take();

    Parser parser{*this};

private:
    PrintLine& Line();
    void Put(char32_t point);
    void NextLine()
    {
        ++line_;
        column_ = 0;
    }

    HostCharset charset_;
    std::vector<PrintPage> pages_{1};
    size_t line_ = 0;
    int column_ = 0;
    int runEnd_ = -1; // column behind the last character, when the next one may join its run
    bool bold_ = false;
    bool underline_ = false;
};

PrintLine& PrintLayout::Sink::Line()
{
    std::vector<PrintLine>& lines = pages_.back().lines;
    if (line_ >= lines.size()) {
        lines.resize(line_ + 1);
        runEnd_ = -1;
    }
    return lines[line_];
}

void PrintLayout::Sink::Put(char32_t point)
{
    const int width = TraitsOf(point) & Trait::WidthMask;
    if (column_ + width > MaxColumns)
        NextLine();
    std::vector<PrintRun>& runs = Line().runs;
    const bool joins =
        !runs.empty() && runEnd_ == column_ && runs.back().bold == bold_ && runs.back().underline == underline_;
    if (!joins)
        runs.push_back({.column = column_, .bold = bold_, .underline = underline_, .utf8 = {}});
    AppendUtf8(runs.back().utf8, point);
    column_ += width;
    runEnd_ = column_;
}

void PrintLayout::Sink::Execute(uint8_t control)
{
    constexpr int tab = 8;
    switch (control) {
    case '\r':
        column_ = 0;
        break;
    case '\b':
        column_ = std::max(0, column_ - 1);
        break;
    case '\t':
        column_ = std::min(MaxColumns, (column_ / tab + 1) * tab);
        break;
    case '\n': // hosts send it with and without a carriage return, and mean the same
    case '\v':
        Line(); // an empty line is a line
        NextLine();
        break;
    case '\f':
        pages_.emplace_back();
        line_ = 0;
        column_ = 0;
        break;
    default:
        return;
    }
    runEnd_ = -1;
}

void PrintLayout::Sink::Control(const ControlSequence& sequence)
{
    if (sequence.final != 'm' || sequence.marker != 0 || sequence.intermediate != 0)
        return;
    for (int i = 0; i < std::max(1, sequence.params.Size()); ++i)
        switch (sequence.params.At(i)) {
        case 0:
            bold_ = underline_ = false;
            break;
        case 1:
            bold_ = true;
            break;
        case 4:
            underline_ = true;
            break;
        case 22:
            bold_ = false;
            break;
        case 24:
            underline_ = false;
            break;
        default:
            break;
        }
}

std::vector<PrintPage> PrintLayout::Sink::Take()
{
    if (pages_.back().lines.empty())
        pages_.pop_back(); // a form feed at the end ejects, it prints no empty page
    line_ = 0;
    column_ = 0;
    runEnd_ = -1;
    return std::exchange(pages_, std::vector<PrintPage>(1));
}

PrintLayout::PrintLayout(HostCharset charset, bool eightBitControls)
    : sink_(std::make_unique<Sink>(charset, eightBitControls))
{}

PrintLayout::~PrintLayout() = default;

void PrintLayout::Feed(std::string_view bytes) { sink_->parser.Feed(bytes); }

std::vector<PrintPage> PrintLayout::Take() { return sink_->Take(); }

} // namespace kestrune::emu
