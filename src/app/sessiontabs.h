#pragma once

// The row of session tabs in the main window, one for each session window that is not hidden, in the order of the
// sessions; and the list of all of them for when the row is too short.

#include <QObject>

class QMainWindow;
class QPoint;
class QToolBar;
class QToolButton;

namespace kestrune {

class clsSession;
class frmMdiChild;
class Kestrune;
class SessionBar;
struct MenuBand;

class SessionTabs : public QObject
{
    Q_OBJECT

public:
    SessionTabs(Kestrune& application, QMainWindow& window); // owned by the window

    // active, band: may be null. The band says how the tabs look and on which side they stand.
    void Fill(const frmMdiChild* active, const MenuBand* band);
    bool Rename(const clsSession& session); // in place; false: it has no tab
    void TakeNewColors();                   // after the desktop's have changed

signals:
    void CloseWanted(quintptr window);
    void MenuWanted(quintptr window, const QPoint& at); // a place of the screen
    void Changed();                                     // the order, or a title
    void KeyboardFree();                                // a name has been typed; the session may have it again

private:
    void ConnectTabs();
    void Dock(const MenuBand* band);
    void ShowList();

    Kestrune& application_;
    QMainWindow& window_;
    QToolBar* row_;
    SessionBar* bar_;
    QToolButton* list_;
};

} // namespace kestrune
