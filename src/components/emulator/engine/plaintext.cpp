#include "plaintext.h"

#include "charsets.h"
#include "parser.h"

#include <utility>

namespace kestrune::emu {

class PlainText::Sink : public ParserSink
{
public:
    Sink(HostCharset charset, bool eightBitControls, Form form) : charset_(charset), form_(form)
    {
        parser.SetRules({.utf8 = charset == HostCharset::Utf8, .c1 = eightBitControls && CharsetAllowsC1(charset)});
    }

    void Ascii(std::span<const uint8_t> run) override { text.append(run.begin(), run.end()); }
    void HighBytes(std::span<const uint8_t> run) override
    {
        if (form_ == Form::HostBytes)
            text.append(run.begin(), run.end());
        else
            for (const uint8_t byte : run)
                AppendUtf8(text, HostPoint(charset_, byte));
    }
    void Points(std::span<const char32_t> run) override
    {
        for (const char32_t point : run)
            AppendUtf8(text, point);
    }
    void Execute(uint8_t control) override
    {
        if (control == '\t' || control == '\n' || control == '\f' || control == '\r')
            text += char(control);
    }
    void Aborted(uint8_t) override {}
    void Escape(std::string_view, char) override {}
    void Control(const ControlSequence&) override {}
    void String(StringKind, std::string_view) override {}
    void Vt52Address(int, int) override {}
    void ToPrinter(std::span<const uint8_t>) override {}
    void PrinterEnds() override {}

    Parser parser{*this};
    std::string text;

private:
    HostCharset charset_;
    Form form_;
};

PlainText::PlainText(HostCharset charset, bool eightBitControls, Form form)
    : sink_(std::make_unique<Sink>(charset, eightBitControls, form))
{}

PlainText::~PlainText() = default;

std::string PlainText::Feed(std::string_view bytes)
{
    sink_->parser.Feed(bytes);
    return std::exchange(sink_->text, {});
}

} // namespace kestrune::emu
