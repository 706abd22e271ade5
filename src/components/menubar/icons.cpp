#include <menubar/icons.h>

#include <menubar/mixedcolor.h>

#include "drawnicon.h"
#include "pictures.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace kestrune {

namespace {

constexpr double Grid = 24, StrokeWidth = 1.6, DotLength = 0.05;
constexpr double DisabledShare = 0.35;                              // of the ink that is left
constexpr double BadgeStart = 13, BadgeSide = 10.5, BadgeRim = 1.5; // on the grid
constexpr QRgb AccentOnLight = 0xff1769c2, AccentOnDark = 0xff6cb4ff;

// Strokes of one place, in device pixels. Ends of lines come to stand where a line of this width covers whole pixels:
// otherwise small pictures are a blur.
class Pen
{
public:
    Pen(const QRectF& place, double width) : place_(place), width_(std::max(1.0, std::round(width))) {}

    void Draw(QPainter& painter, QLatin1StringView strokes, const QColor& color) const
    {
        QPainterPath path = ReadStrokes(strokes);
        QPointF before;
        for (int i = 0; i < path.elementCount(); ++i) {
            const QPainterPath::Element element = path.elementAt(i);
            const bool control = element.type == QPainterPath::CurveToElement ||
                                 (element.type == QPainterPath::CurveToDataElement && i + 1 < path.elementCount() &&
                                  path.elementAt(i + 1).type == QPainterPath::CurveToDataElement);
            const double x = place_.left() + element.x * place_.width() / Grid;
            const double y = place_.top() + element.y * place_.height() / Grid;
            const bool dot = element.isLineTo() && IsDot(before, element);
            before = element;
            path.setElementPositionAt(i, (control ? x : Snapped(x)) + (dot ? DotLength : 0), control ? y : Snapped(y));
        }
        painter.strokePath(path, QPen(color, width_, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }

private:
    // A line of no length would not be drawn; a dot must stay longer than that.
    static bool IsDot(QPointF start, QPointF end) { return (end - start).manhattanLength() < DotLength; }
    double Snapped(double at) const
    {
        const bool odd = std::lround(width_) % 2 != 0;
        return odd ? std::floor(at) + 0.5 : std::round(at);
    }

    QRectF place_;
    double width_;
};

class LineIconEngine : public DrawnIcon
{
public:
    LineIconEngine(const Picture& picture, const Picture* badge) : picture_(picture), badge_(badge) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const QPalette palette = QGuiApplication::palette();
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        const QColor full = palette.color(QPalette::Active, role), ground = palette.color(QPalette::Button);
        const QColor ink = mode == QIcon::Disabled ? Mixed(ground, full, DisabledShare) : full;
        const bool dark = ground.lightness() < 128;
        const QColor accent = mode == QIcon::Disabled || mode == QIcon::Selected
                                  ? ink
                                  : QColor::fromRgb(dark ? AccentOnDark : AccentOnLight);
        const double scale = painter->device()->devicePixelRatioF();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(1 / scale, 1 / scale);
        DrawAt(*painter, QSizeF(rect.size()) * scale, ink, accent);
        painter->restore();
    }
    QIconEngine* clone() const override { return new LineIconEngine(picture_, badge_); }

private:
    void DrawAt(QPainter& painter, QSizeF size, const QColor& ink, const QColor& accent) const
    {
        const double unit = size.width() / Grid;
        const QRectF whole(QPointF(), size);
        const Pen pen(whole, StrokeWidth * unit);
        painter.save();
        if (badge_ != nullptr) { // the picture makes room for it
            QPainterPath room;
            room.addRect(whole);
            QPainterPath corner;
            const double start = (BadgeStart - BadgeRim) * unit;
            corner.addRect(QRectF(QPointF(start, start), whole.bottomRight()));
            painter.setClipPath(room.subtracted(corner));
        }
        pen.Draw(painter, picture_.ink, ink);
        pen.Draw(painter, picture_.accent, badge_ != nullptr ? ink : accent);
        painter.restore();
        if (badge_ != nullptr)
            Pen(QRectF(BadgeStart * unit, BadgeStart * unit, BadgeSide * unit, BadgeSide * unit), StrokeWidth * unit)
                .Draw(painter, badge_->accent, accent);
    }

    const Picture& picture_; // of a table that lives as long as the program
    const Picture* badge_;   // null: none
};

QIcon NumberedIcon(int number)
{
    for (const NumberedPicture& row : NumberedPictures())
        if (row.number == number)
            return QIcon(
                new LineIconEngine(*FindPicture(row.name), row.badge.isEmpty() ? nullptr : FindPicture(row.badge)));
    return {};
}

} // namespace

QIcon LineIcon(const QString& name)
{
    for (const Picture& picture : Pictures())
        if (name == picture.name)
            return QIcon(new LineIconEngine(picture, nullptr));
    return {};
}

QIcon ToolIcon(const MenuTool& tool, ToolState state)
{
    const bool checked = state == ToolState::Checked && !tool.checkedImage.isEmpty();
    const QString& image = checked ? tool.checkedImage : tool.normalImage;
    if (tool.imageSource == ImageSource::File)
        return QIcon(image);
    if (tool.imageSource == ImageSource::Resource)
        return NumberedIcon(image.toInt());
    return {};
}

} // namespace kestrune
