#pragma once

// Draws a taMenuBar in a main window: menu bar, toolbars, status line, popups. A simple stand-in for the full menu
// and toolbar control; the model it draws is the lasting part.

#include <menubar/tamenubar.h>

#include <QObject>
#include <QPoint>
#include <QPointer>

#include <memory>

class QMainWindow;

namespace kestrune {

class MenuBarView : public QObject
{
    Q_OBJECT

public:
    explicit MenuBarView(QMainWindow& window); // owned by the window
    ~MenuBarView() override;

    void Show(taMenuBar* model); // from now on draws this one; null: nothing is shown
    taMenuBar* Shown() const;

    // The popup band of that name, at a place of the screen; unknown or empty: nothing. Returns at once.
    void Popup(taMenuBar& model, const QString& band, const QPoint& at);

private:
    class ToolActions;
    class Drawing;

    QMainWindow& window_;
    QPointer<taMenuBar> model_;
    std::unique_ptr<Drawing> drawing_;
};

} // namespace kestrune
