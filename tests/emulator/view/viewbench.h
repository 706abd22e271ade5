#pragma once

// A terminal view on a bench, shown and with the focus.

#include <emulator/view/terminalview.h>
#include <fakes/emulatorbench.h>

#include <QImage>
#include <QPaintEvent>
#include <QPixmap>
#include <QTest>

#include <gtest/gtest.h>

namespace kestrune {

struct ViewBench : EmulatorBench
{
    explicit ViewBench(int cols = 40, int rows = 10, int termType = Vt220) : EmulatorBench(termType, cols, rows)
    {
        control.Settings().SetValue(Setting("FontName"), QStringLiteral("DejaVu Sans Mono"));
        view.setPalette(QPalette(DarkDesktop)); // on which sessions have their default palette
        view.resize(view.SizeForGrid(cols, rows));
        view.show();
        view.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
        Connect();
        Host().TakeSent();
    }

    static constexpr QColor DarkDesktop{0x30, 0x34, 0x3C};

    QPoint Middle(int col, int row) const { return view.CellRect(col, row).center(); }
    QPoint LeftEdge(int col, int row) const // between two characters
    {
        const QRect cell = view.CellRect(col, row);
        return {cell.left(), cell.center().y()};
    }
    QImage Picture() { return view.grab().toImage(); }
    QColor ColorAt(int col, int row) { return Picture().pixelColor(Middle(col, row)); }

    TerminalView view{control};
};

} // namespace kestrune
