#include "pasteform.h"

#include <algorithm>

namespace kestrune {

namespace {

constexpr char kEnter = '\r'; // the only control that the engine leaves in a paste besides the tab: a line end

std::string OneByte(int code) { return code >= 0 && code <= 0xFF ? std::string(1, char(code)) : std::string(); }

std::string LineEndOf(const EmulatorSettings& settings)
{
    switch (PasteLineEnd(settings.Integer(Setting("PasteEOLMode")))) {
    case PasteLineEnd::CarriageReturnLineFeed:
        return "\r\n";
    case PasteLineEnd::LineFeed:
        return "\n";
    case PasteLineEnd::Character:
        return OneByte(settings.Integer(Setting("PasteEOLChar")));
    case PasteLineEnd::Nothing:
        return {};
    case PasteLineEnd::Enter:
        break;
    }
    return {kEnter};
}

std::string FileEndOf(const EmulatorSettings& settings)
{
    switch (PasteFileEnd(settings.Integer(Setting("PasteEOFMode")))) {
    case PasteFileEnd::ControlD:
        return "\x04";
    case PasteFileEnd::ControlZ:
        return "\x1a";
    case PasteFileEnd::Character:
        return OneByte(settings.Integer(Setting("PasteEOFChar")));
    case PasteFileEnd::None:
        break;
    }
    return {};
}

} // namespace

PasteForm PasteFormOf(const EmulatorSettings& settings, const emu::Terminal& screen, QString text)
{
    const int options = settings.Integer(Setting("PasteOptions"));
    if ((options & PasteOption::NoLastEnd) != 0)
        while (text.endsWith(u'\r') || text.endsWith(u'\n'))
            text.chop(1);
    PasteForm form;
    form.lineEnd = LineEndOf(settings);
    for (const char byte : screen.PasteBytes(text.toStdString())) {
        if (byte == kEnter)
            form.bytes += form.lineEnd;
        else
            form.bytes += byte;
    }
    form.bytes += FileEndOf(settings);
    if ((options & PasteOption::Slowly) != 0)
        form.pause = std::chrono::milliseconds(std::max(0, settings.Integer(Setting("AsciiDelay"))));
    return form;
}

} // namespace kestrune
