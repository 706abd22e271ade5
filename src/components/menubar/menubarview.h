#pragma once

// Draws a taMenuBar in a main window: the main menu, toolbars that dock on four sides or float, the status line,
// popups, shortcuts. The bars stay when another menu is shown in place of one, and what has the same form in both is
// not made anew: the window is painted once.

#include <menubar/tamenubar.h>
#include <ports/keyboardlocks.h>

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QSet>

#include <chrono>
#include <functional>

class QKeySequence;
class QMainWindow;

namespace kestrune {

class ShortcutKeys;
class StatusLine;
class ToolBars;
class ToolList;

class MenuBarView : public QObject
{
    Q_OBJECT

public:
    struct Surroundings
    {
        ReadKeyboardLocks locks = {};
        std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
    };

    MenuBarView(QMainWindow& window, Surroundings surroundings); // owned by the window
    explicit MenuBarView(QMainWindow& window) : MenuBarView(window, Surroundings()) {}
    ~MenuBarView() override;

    void Show(taMenuBar* model); // from now on draws this one; null: what stands is no longer served
    taMenuBar* Shown() const;

    // The popup band of that name, at a place of the screen; unknown or empty: nothing. Returns at once.
    void Popup(taMenuBar& model, const QString& band, const QPoint& at);

    // In the status line, in place of the panel that springs.
    void ShowNotice(const QString& text, std::chrono::milliseconds time);

    // --- toolbars
    void MoveBar(const QString& band, BandDock to);
    void WriteDocks(taMenuBar& model) const; // where the bars really are, into the bands of any menu of the window
    QByteArray BarPlaces() const;
    void RestoreBarPlaces(const QByteArray& places); // of an earlier run; unreadable: they stand where the menu says

signals:
    void BarsMoved(); // by the user: BarPlaces() has changed
    void BandVisibleWanted(const QString& band, bool on);
    void LargeIconsWanted(bool on);

private:
    void WholeChanged();
    void ToolChanged(int key);
    void CatchUpSoon();
    void CatchUp();
    void Draw();
    void ShowBarsMenu(const QString& band, const QPoint& at);

    QMainWindow& window_;
    QPointer<taMenuBar> model_;
    ToolList* menu_; // these are child objects of the window
    ToolBars* bars_;
    StatusLine* status_;
    ShortcutKeys* shortcuts_;
    QSet<int> changed_; // keys of tools that wait to be brought up to date
    bool whole_ = false;
    bool pending_ = false;
};

} // namespace kestrune
