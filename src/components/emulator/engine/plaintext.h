#pragma once

// A host's stream without what controls the terminal: for captures and prints of text only. Tabs, carriage returns,
// line feeds and form feeds stay. How the bytes are cut into pieces never matters.

#include <emulator/engine/terminal.h>

#include <memory>
#include <string>
#include <string_view>

namespace kestrune::emu {

class PlainText
{
public:
    enum class Form
    {
        Utf8,
        HostBytes // in the host's own encoding
    };

    PlainText(HostCharset charset, bool eightBitControls, Form form);
    ~PlainText();
    PlainText(const PlainText&) = delete;
    PlainText& operator=(const PlainText&) = delete;

    std::string Feed(std::string_view bytes);

private:
    class Sink;
    std::unique_ptr<Sink> sink_;
};

} // namespace kestrune::emu
