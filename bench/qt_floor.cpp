// A bare window of the toolkit in one colour: what a start costs before a line of ours has run.

#include <QApplication>
#include <QWidget>

int main(int count, char** arguments)
{
    QApplication application(count, arguments);
    QWidget window;
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::darkMagenta);
    window.setPalette(palette);
    window.resize(640, 360);
    window.show();
    return QApplication::exec();
}
