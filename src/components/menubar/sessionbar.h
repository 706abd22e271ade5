#pragma once

// The row of session tabs. A tab is known by its session window's handle. Tabs are moved by dragging, closed by
// their mark or the middle button, renamed in place; the wheel scrolls them and chooses none.

#include <QIcon>
#include <QPointer>
#include <QTabBar>

class QToolButton;

namespace kestrune {

class RenameBox;

class SessionBar : public QTabBar
{
    Q_OBJECT

public:
    enum class Mark // each with a shape of its own, not only a colour
    {
        None,
        Connected,
        Lost,
        Activity, // something came that has not been looked at
        Bell
    };

    struct Tab
    {
        quintptr handle = 0;
        QString caption;
        QString toolTip;
        QIcon picture; // null: none
        Mark mark = Mark::None;
    };

    explicit SessionBar(QWidget* parent = nullptr);
    void SetTabs(const QList<Tab>& tabs, quintptr active); // in order; emits nothing
    quintptr HandleAt(int index) const;                    // 0: none there
    QRect TabPlace(quintptr handle) const;                 // on the bar, in pixels; empty: no such tab
    bool Overflows() const;                                // not all tabs fit

    // An edit box over the tab. False: there is no such tab.
    bool Rename(quintptr handle, const QString& caption);

signals:
    void TabChosen(quintptr handle);
    void SessionTabClose(quintptr handle);
    void ToolRightClick(quintptr handle, const QPoint& at); // a place of the screen
    void Dragged(quintptr handle, quintptr before);         // 0: to the end
    void RenameWanted(quintptr handle);
    void Renamed(quintptr handle, const QString& caption);
    void RenameEnded(); // one way or the other: the keyboard is free
    void OverflowChanged();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void tabLayoutChange() override;
    QSize tabSizeHint(int index) const override;

private:
    int IndexOf(quintptr handle) const; // -1: none
    void AddCloseMark(int index);
    void BringIntoView(int index);
    QString ShownCaption(const QString& caption) const;
    void SetTab(int index, const Tab& tab);
    QToolButton* ScrollButton(const char* name) const;

    QHash<quintptr, Tab> shown_; // by handle, so that only what differs is set
    QPointer<RenameBox> rename_;
    int wheel_ = 0; // what is left of the last step, in eighths of a degree
    bool filling_ = false;
    bool overflows_ = false;
};

} // namespace kestrune
