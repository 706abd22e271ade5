#pragma once

// The toolbars of a main window: one for each toolbar band of the menu that is shown, docked on one of four sides
// or floating. Where the user has put a bar holds for all menus of the window and can be kept as bytes.

#include <menubar/tamenubar.h>

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSet>

#include <vector>

class QMainWindow;
class QToolBar;

namespace kestrune {

class ToolList;

class ToolBars : public QObject
{
    Q_OBJECT

public:
    explicit ToolBars(QMainWindow& window); // owned by it

    void Show(taMenuBar& model);
    void Refresh(const QSet<int>& keys);
    void Move(const QString& band, BandDock to); // unknown band: nothing
    void WriteDocks(taMenuBar& model) const;     // where the bars really are, into its bands

    QByteArray Places() const;
    void RestorePlaces(const QByteArray& places); // from Places(), of an earlier run; unreadable: nothing

signals:
    void Moved(); // by the user
    void MenuWanted(const QString& band, const QPoint& at);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Bar
    {
        QString key;
        QToolBar* widget;
        ToolList* tools;
    };

    Bar* Find(const QString& key);
    QToolBar* SessionRow() const; // of the tabs, which somebody else keeps; null: there is none
    Bar& Make(const MenuBand& band);
    void Apply(Bar& bar, const MenuBand& band);
    void Dock(QToolBar& bar, BandDock to);
    BandDock DockOf(const QToolBar& bar) const;
    void Restore(const QByteArray& places);
    void SetTabsInmost(Qt::ToolBarArea side);
    void BringBack(QToolBar& bar) const;
    void CheckPlaces();

    QMainWindow& window_;
    QPointer<taMenuBar> model_;
    std::vector<Bar> bars_;
    QByteArray restored_; // waits for the first bars
    QByteArray last_;
    bool checking_ = false;
};

} // namespace kestrune
