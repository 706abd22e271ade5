#include "pagepainter.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>
#include <array>

namespace kestrune {

namespace {

constexpr double kMarginMillimetres = 12;
constexpr int kLandscape = 2;

struct PaperRow
{
    int number;
    QPageSize::PageSizeId size;
};
constexpr std::array kPapers{PaperRow{1, QPageSize::Letter}, PaperRow{5, QPageSize::Legal}, PaperRow{8, QPageSize::A3},
                             PaperRow{9, QPageSize::A4}, PaperRow{11, QPageSize::A5}};

int WidestColumn(const std::vector<PrintedPage>& pages)
{
    int widest = 1;
    for (const PrintedPage& page : pages)
        for (const PrintedLine& line : page)
            for (const PrintedRun& run : line)
                widest = std::max(widest, run.column + int(run.text.size()));
    return widest;
}

QFont FontOf(const PageLook& look, bool bold, double points)
{
    QFont font(look.fontName);
    font.setStyleHint(QFont::TypeWriter); // the named font may not be here: columns have to stay columns
    font.setFixedPitch(true);
    font.setPointSizeF(points);
    font.setBold(bold || look.bold);
    font.setItalic(look.italic);
    return font;
}

class Sheet
{
public:
    Sheet(QPagedPaintDevice& device, const PrintJob& job) : device_(device), look_(job.look), painter_(&device)
    {
        if (!painter_.isActive())
            return;
        points_ = look_.fontSize > 0 ? look_.fontSize : PageLook().fontSize;
        Measure();
        const double room = device_.width() / (WidestColumn(job.pages) * advance_);
        if (room < 1) {
            points_ *= room;
            Measure();
        }
        linesOnPaper_ = std::max(1, int(device_.height() / lineHeight_));
    }

    bool IsActive() const { return painter_.isActive(); }

    void BeginPage()
    {
        if (started_)
            device_.newPage();
        started_ = true;
        line_ = 0;
    }

    void Put(const PrintedLine& line)
    {
        if (line_ == linesOnPaper_)
            BeginPage();
        const double base = line_ * lineHeight_ + ascent_;
        for (const PrintedRun& run : line) {
            QFont font = FontOf(look_, run.bold, points_);
            font.setUnderline(run.underline);
            painter_.setFont(font);
            painter_.drawText(QPointF(run.column * advance_, base), run.text);
        }
        ++line_;
    }

private:
    void Measure()
    {
        const QFontMetricsF metrics(FontOf(look_, false, points_), &device_);
        advance_ = metrics.horizontalAdvance(u'M');
        lineHeight_ = metrics.height();
        ascent_ = metrics.ascent();
    }

    QPagedPaintDevice& device_;
    const PageLook& look_;
    QPainter painter_;
    double points_ = 0;
    double advance_ = 1;
    double lineHeight_ = 1;
    double ascent_ = 0;
    int linesOnPaper_ = 1;
    int line_ = 0;
    bool started_ = false;
};

} // namespace

void SetUpPaper(QPagedPaintDevice& device, const PageLook& look)
{
    const auto* paper =
        std::find_if(kPapers.begin(), kPapers.end(), [&](const PaperRow& row) { return row.number == look.paperSize; });
    if (paper != kPapers.end())
        device.setPageSize(QPageSize(paper->size));
    device.setPageOrientation(look.orientation == kLandscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    const double margin = kMarginMillimetres;
    device.setPageMargins({margin, margin, margin, margin}, QPageLayout::Millimeter);
}

bool PaintPages(QPagedPaintDevice& device, const PrintJob& job)
{
    Sheet sheet(device, job);
    if (!sheet.IsActive())
        return false;
    for (const PrintedPage& page : job.pages) {
        sheet.BeginPage();
        for (const PrintedLine& line : page)
            sheet.Put(line);
    }
    return true;
}

} // namespace kestrune
