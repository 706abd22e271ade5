#include <gtest/gtest.h>

#include <QApplication>
#include <QPalette>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setPalette(
        QPalette(QColor(0x30, 0x34, 0x3C))); // a dark desktop, whose sessions have the default palette
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
