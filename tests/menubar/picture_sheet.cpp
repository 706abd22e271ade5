// All pictures of the built-in tools on one sheet, small and large, at a scale, on a light or dark ground.

#include <menubar/icons.h>
#include <menus/toolkeys.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <cstdio>

int main(int argc, char** argv)
{
    using namespace kestrune;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc != 4) {
        std::fputs("picture_sheet FILE SCALE light|dark\n", stderr);
        return 2;
    }
    const double scale = QByteArray(argv[2]).toDouble();
    QApplication::setPalette(QPalette(QByteArray(argv[3]) == "dark" ? QColor(45, 45, 45) : QColor(239, 239, 239)));
    constexpr int columns = 12, width = 84, height = 58;
    const int rows = int(kToolKeys.size() + columns) / columns;
    QImage sheet(QSize(columns * width, rows * height) * scale, QImage::Format_RGB32);
    sheet.setDevicePixelRatio(scale);
    sheet.fill(QApplication::palette().color(QPalette::Window));
    QPainter painter(&sheet);
    QFont font = painter.font();
    font.setPixelSize(9);
    painter.setFont(font);
    painter.setPen(QApplication::palette().color(QPalette::WindowText));
    int place = 0;
    const auto draw = [&](int number) {
        const QPoint at(place % columns * width, place / columns * height);
        ++place;
        MenuTool tool;
        tool.imageSource = ImageSource::Resource;
        tool.normalImage = QString::number(number);
        const QIcon icon = ToolIcon(tool);
        icon.paint(&painter, QRect(at + QPoint(4, 10), QSize(16, 16)));
        icon.paint(&painter, QRect(at + QPoint(26, 6), QSize(24, 24)));
        icon.paint(&painter, QRect(at + QPoint(56, 6), QSize(24, 24)), Qt::AlignCenter, QIcon::Disabled);
        painter.drawText(QRect(at + QPoint(4, 36), QSize(width - 8, 16)), QString::number(number));
    };
    for (const ToolKey& key : kToolKeys)
        draw(key.id);
    draw(1109);
    painter.end();
    return sheet.save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
