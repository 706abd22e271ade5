// Printing: the printer that a host drives through the terminal, and prints of the screen.

#include "ctlemulator.h"

#include "hostcapture.h"
#include "screentext.h"
#include "sessionoptions.h"
#include "slaveprinter.h"

#include <dispatch/failure.h>

#include <QFileInfo>
#include <QPointer>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView kNoPrinter = u"No Printer";
constexpr int kRawMode = 1;         // SlavePrintMode; others lay the text out
constexpr int kPlainTextScreen = 0; // ScreenPrintMode; others print bold and underlined text as such

struct PaperSettings
{
    SettingId size;
    SettingId orientation;
};
constexpr PaperSettings kSlavePaper{Setting("PrinterPaperSize"), Setting("PrinterOrientation")};
constexpr PaperSettings kScreenPaper{Setting("ScreenPrintPaperSize"), Setting("ScreenPrintOrientation")};

PageLook LookOf(const EmulatorSettings& settings, const PaperSettings& paper)
{
    PageLook look;
    look.fontName = settings.Text(Setting("PrinterFontName"));
    look.fontSize = settings.Number(Setting("PrinterFontSize"));
    look.bold = settings.Boolean(Setting("PrinterFontBold"));
    look.italic = settings.Boolean(Setting("PrinterFontItalic"));
    look.paperSize = settings.Integer(paper.size);
    look.orientation = settings.Integer(paper.orientation);
    look.colorMode = settings.Integer(Setting("PrinterColorMode"));
    return look;
}

// PrinterName is the name that earlier releases have for the slave printer.
QString SlavePrinterOf(const EmulatorSettings& settings)
{
    const QString name = settings.Text(Setting("SlavePrinterName"));
    return name.isEmpty() ? settings.Text(Setting("PrinterName")) : name;
}

PrintedLine ScreenLine(const emu::Terminal& screen, int row, ColumnSpan columns, bool withLook)
{
    PrintedLine line;
    const emu::RowView view = screen.Row(row);
    const int end = std::min(columns.last, int(view.cells.size()));
    for (int first = columns.first; first < end;) {
        const emu::StyleId id = view.cells[size_t(first)].style;
        int last = first + 1;
        while (last < end && view.cells[size_t(last)].style == id)
            ++last;
        const emu::Style& style = screen.StyleOf(id);
        if ((style.attributes & emu::Attr::Invisible) == 0)
            line.push_back({first - columns.first, withLook && (style.attributes & emu::Attr::Bold) != 0,
                            withLook && style.underline != emu::Underline::None,
                            QString::fromStdString(screen.TextOf(row, first, last - first))});
        first = last;
    }
    return line;
}

} // namespace

// --- the slave printer

int ctlEmulator::PrinterState() const
{
    if (SlavePrinterOf(settings_) == kNoPrinter)
        return -1;
    return printerMode_ != 0 || hostPrints_ ? 1 : 0;
}

void ctlEmulator::SetPrinterMode(int mode)
{
    if (mode < 0 || mode > 2)
        throw Failure(ErrorNumber::InvalidCall, tr("There is no printer mode %1.").arg(mode), u"ctlEmulator"_s);
    if (mode == 0)
        PrinterOff();
    else
        PrinterOn(mode == 2 ? 1 : 0);
}

void ctlEmulator::PrinterOn(int transparent)
{
    if (PrinterState() < 0) {
        TellUser(tr("This session has no printer: choose one in its settings."));
        return;
    }
    printerMode_ = transparent != 0 ? 2 : 1;
    ScheduleEvents();
}

void ctlEmulator::PrinterOff()
{
    printerMode_ = 0;
    if (settings_.Integer(Setting("PrinterTimeout")) <= 0)
        PrinterClose();
    ScheduleEvents();
}

void ctlEmulator::PrinterClose() { printer_->Close(); }

void ctlEmulator::Print(std::string_view bytes)
{
    if (capture_)
        capture_->Put(HostCapture::PrinterData, bytes);
    if (PrinterState() < 0)
        return;
    printer_->Put(bytes, [this] {
        if (!settings_.Text(Setting("SlavePrintAdapterScript")).isEmpty())
            TellUser(tr("The print adapter script has not been implemented at this time."));
        const emu::TerminalOptions options = TerminalOptionsOf(settings_, {});
        return SlavePrinter::Setup{.printer = SlavePrinterOf(settings_),
                                   .title = PrintTitle(),
                                   .look = LookOf(settings_, kSlavePaper),
                                   .raw = settings_.Integer(Setting("SlavePrintMode")) == kRawMode,
                                   .eject = settings_.Integer(Setting("PrintJobEject")) != 0,
                                   .timeout = std::max(0, settings_.Integer(Setting("PrinterTimeout"))),
                                   .charset = options.charset,
                                   .eightBitControls = options.eightBitControls};
    });
}

// The copy that PrinterOn makes has what the host prints in it already.
void ctlEmulator::HostPrints(std::string_view bytes)
{
    if (printerMode_ == 0)
        Print(bytes);
}

QString ctlEmulator::PrintTitle() const
{
    if (!title_.isEmpty())
        return title_;
    const QString host = settings_.Text(Setting("HostName"));
    return host.contains(u'/') ? QFileInfo(host).fileName() : host; // of a local program, its file's name
}

std::function<void(const PrintOutcome&)> ctlEmulator::TellOutcome()
{
    return [self = QPointer(this), &ask = ports_.ask](const PrintOutcome& outcome) {
        if (!outcome.printed) // a paper that does not come has to be known, whether or not the session still lives
            ask.MsgBox({.text = outcome.text, .flags = MsgFlag::Ok + MsgFlag::Exclamation, .title = {}, .owner = 0});
        else if (self && !self->shutDown_)
            self->TellUser(outcome.text);
    };
}

// --- the screen

void ctlEmulator::PrintScreen()
{
    const QString printer = settings_.Text(Setting("ScreenPrinterName"));
    if (printer == kNoPrinter) {
        TellUser(tr("This session has no printer for its screen: choose one in its settings."));
        return;
    }
    const auto [cols, rows] = terminal_->ScreenSize();
    const SelectionArea area = SelectedArea().value_or(Resolve(0, 0, ToEdge, ToEdge));
    const bool withLook = settings_.Integer(Setting("ScreenPrintMode")) != kPlainTextScreen;
    PrintedPage page;
    for (int row = area.top; row <= area.bottom; ++row)
        page.push_back(ScreenLine(*terminal_, row, ColumnsOf(area, row, cols), withLook));
    PrintJob job;
    job.printer = printer;
    job.title = PrintTitle();
    job.look = LookOf(settings_, kScreenPaper);
    job.pages.push_back(std::move(page));
    ports_.printing.Print(std::move(job), TellOutcome());
}

} // namespace kestrune
