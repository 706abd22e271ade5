#include <menubar/icons.h>

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>
#include <QStringList>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Strokes on a grid of 24 by 24: M move, L line, Q curve by one control point, Z close.
struct Stroke
{
    QLatin1StringView name;
    QLatin1StringView path;
};

constexpr Stroke kStrokes[] = {
    {"new"_L1, "M 4 5 L 20 5 L 20 19 L 4 19 Z M 7 9 L 10 11.5 L 7 14 M 15 12 L 15 17 M 12.5 14.5 L 17.5 14.5"_L1},
    {"open"_L1, "M 3 19 L 3 5 L 9 5 L 11 7.5 L 19 7.5 L 19 10 M 3 19 L 6.5 10 L 22 10 L 18.5 19 Z"_L1},
    {"save"_L1,
     "M 4 4 L 17 4 L 20 7 L 20 20 L 4 20 Z M 8 4 L 8 9 L 15 9 L 15 4 M 7.5 20 L 7.5 13.5 L 16.5 13.5 L 16.5 20"_L1},
    {"copy"_L1, "M 8.5 8.5 L 20 8.5 L 20 20 L 8.5 20 Z M 15.5 8.5 L 15.5 4 L 4 4 L 4 15.5 L 8.5 15.5"_L1},
    {"paste"_L1,
     "M 8 5 L 5 5 L 5 20 L 19 20 L 19 5 L 16 5 M 8 3.5 L 16 3.5 L 16 7 L 8 7 Z M 8.5 11.5 L 15.5 11.5 M 8.5 15.5 L 13 15.5"_L1},
    {"settings"_L1,
     "M 4 7 L 13 7 M 17 7 L 20 7 M 15 4.8 L 15 9.2 M 4 12 L 7 12 M 11 12 L 20 12 M 9 9.8 L 9 14.2 M 4 17 L 13 17 M 17 17 L 20 17 M 15 14.8 L 15 19.2"_L1},
    {"screen"_L1, "M 3 5 L 21 5 L 21 17 L 3 17 Z M 8.5 20.5 L 15.5 20.5 M 12 17 L 12 20.5"_L1},
    {"reset"_L1,
     "M 5 5 L 5 10 L 10 10 M 5.3 9.7 Q 8 4.5 13 4.7 Q 19.6 5.4 19.7 12 Q 19.4 19 12.5 19.5 Q 7.5 19.4 5.2 15.5"_L1},
    {"connect"_L1,
     "M 3 12 L 7 12 M 17 12 L 21 12 M 7 8 L 7 16 L 10 16 Q 12.5 15.5 12.5 12 Q 12.5 8.5 10 8 Z M 17 8 L 17 16 L 15.5 16 M 17 8 L 15.5 8 M 12.5 10.2 L 14.5 10.2 M 12.5 13.8 L 14.5 13.8"_L1},
    {"help"_L1,
     "M 8.5 9 Q 8.6 5.5 12 5.4 Q 15.5 5.5 15.5 8.8 Q 15.4 11 12.7 12.3 Q 12 12.8 12 14.5 M 12 18 L 12 18.4"_L1},
    {"clone"_L1, "M 3 4 L 15 4 L 15 13 L 3 13 Z M 9 17 L 9 20 L 21 20 L 21 9 L 19 9 M 6 7 L 8 8.7 L 6 10.4"_L1},
    {"session"_L1, "M 3 5 L 21 5 L 21 19 L 3 19 Z M 6.5 9 L 10 12 L 6.5 15 M 12 15 L 17 15"_L1},
    {"keyboard"_L1,
     "M 2 7 L 22 7 L 22 17 L 2 17 Z M 6 10.5 L 6 10.6 M 10 10.5 L 10 10.6 M 14 10.5 L 14 10.6 M 18 10.5 L 18 10.6 M 7 14 L 17 14"_L1},
    {"lock"_L1, "M 5 11 L 19 11 L 19 20 L 5 20 Z M 8 11 L 8 8 Q 8.2 4 12 4 Q 15.8 4 16 8 L 16 11"_L1},
    {"close"_L1, "M 7 7 L 17 17 M 17 7 L 7 17"_L1},
    {"print"_L1,
     "M 7 9 L 7 4 L 17 4 L 17 9 M 7 16 L 4 16 L 4 9 L 20 9 L 20 16 L 17 16 M 7 13.5 L 17 13.5 L 17 20 L 7 20 Z"_L1},
    {"dial"_L1,
     "M 5 4 L 9 4 L 10.5 8.5 L 8 10 Q 10 14 14 16 L 15.5 13.5 L 20 15 L 20 19 Q 18 21 14.5 19.5 Q 6.5 16 4 8 Q 3.5 5 5 4 Z"_L1},
    {"upload"_L1, "M 12 16 L 12 4 M 7 9 L 12 4 L 17 9 M 4 16 L 4 20 L 20 20 L 20 16"_L1},
    {"download"_L1, "M 12 4 L 12 16 M 7 11 L 12 16 L 17 11 M 4 16 L 4 20 L 20 20 L 20 16"_L1},
    {"capture"_L1,
     "M 5 3.5 L 14.5 3.5 L 19 8 L 19 20.5 L 5 20.5 Z M 8.5 10 L 15.5 10 M 8.5 13.5 L 15.5 13.5 M 8.5 17 L 12.5 17"_L1},
    {"table"_L1, "M 3.5 5 L 20.5 5 L 20.5 19 L 3.5 19 Z M 3.5 9.5 L 20.5 9.5 M 3.5 14 L 20.5 14 M 9.5 5 L 9.5 19"_L1},
    {"query"_L1,
     "M 10.5 4.5 Q 16.5 4.8 16.5 10.5 Q 16.2 16.4 10.5 16.5 Q 4.8 16.2 4.5 10.5 Q 4.8 4.8 10.5 4.5 Z M 15 15 L 20 20"_L1},
    {"wide"_L1, "M 2 6 L 22 6 L 22 18 L 2 18 Z M 8 9 L 5 12 L 8 15 M 16 9 L 19 12 L 16 15 M 5 12 L 19 12"_L1},
};

// The program's pictures by their number, mostly that of the command.
struct NumberedPicture
{
    int number;
    QLatin1StringView name;
};

constexpr NumberedPicture kPictures[] = {
    {101, "new"_L1},     {103, "open"_L1},      {105, "save"_L1},   {202, "print"_L1},    {303, "copy"_L1},
    {305, "paste"_L1},   {352, "query"_L1},     {353, "table"_L1},  {380, "session"_L1},  {401, "help"_L1},
    {505, "screen"_L1},  {506, "wide"_L1},      {601, "upload"_L1}, {602, "download"_L1}, {603, "capture"_L1},
    {704, "dial"_L1},    {705, "settings"_L1},  {707, "reset"_L1},  {708, "connect"_L1},  {712, "clone"_L1},
    {804, "capture"_L1}, {1108, "keyboard"_L1}, {1109, "lock"_L1},
};

QPainterPath ReadPath(QLatin1StringView text)
{
    QPainterPath path;
    const QStringList words = QString(text).split(u' ');
    const auto point = [&](qsizetype at) { return QPointF(words[at].toDouble(), words[at + 1].toDouble()); };
    for (qsizetype i = 0; i < words.size();) {
        const QString& step = words[i++];
        if (step == "Z"_L1) {
            path.closeSubpath();
        } else if (step == "Q"_L1) {
            path.quadTo(point(i), point(i + 2));
            i += 4;
        } else {
            step == "M"_L1 ? path.moveTo(point(i)) : path.lineTo(point(i));
            i += 2;
        }
    }
    return path;
}

class LineIconEngine : public QIconEngine
{
public:
    explicit LineIconEngine(const QPainterPath& path) : path_(path) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        QPen pen(QGuiApplication::palette().color(group, role), 1.6);
        pen.setCapStyle(Qt::RoundCap);
        pen.setJoinStyle(Qt::RoundJoin);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 24.0, rect.height() / 24.0);
        painter->strokePath(path_, pen);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return picture;
    }
    QIconEngine* clone() const override { return new LineIconEngine(path_); }

private:
    QPainterPath path_;
};

} // namespace

QIcon LineIcon(const QString& name)
{
    for (const Stroke& stroke : kStrokes)
        if (name == stroke.name)
            return QIcon(new LineIconEngine(ReadPath(stroke.path)));
    return {};
}

QIcon ToolIcon(const MenuTool& tool, ToolState state)
{
    const bool checked = state == ToolState::Checked && !tool.checkedImage.isEmpty();
    const QString& image = checked ? tool.checkedImage : tool.normalImage;
    if (tool.imageSource == ImageSource::File)
        return QIcon(image);
    if (tool.imageSource == ImageSource::Resource)
        for (const NumberedPicture& picture : kPictures)
            if (picture.number == image.toInt())
                return LineIcon(picture.name);
    return {};
}

} // namespace kestrune
