#pragma once

// The row of session tabs. A tab is known by its session window's handle.

#include <QTabBar>

namespace kestrune {

class SessionBar : public QTabBar
{
    Q_OBJECT

public:
    struct Tab
    {
        quintptr handle = 0;
        QString caption;
        QString toolTip;
        QIcon picture;
    };

    explicit SessionBar(QWidget* parent = nullptr);
    void SetTabs(const QList<Tab>& tabs, quintptr active); // in order; emits nothing
    quintptr HandleAt(int index) const;                    // 0: none there
    QRect TabPlace(quintptr handle) const;                 // on the bar, in pixels; empty: no such tab

signals:
    void TabChosen(quintptr handle);
    void SessionTabClose(quintptr handle);
    void ToolRightClick(quintptr handle, const QPoint& at); // a place of the screen

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void AddCloseMark(int index);

    bool filling_ = false;
};

} // namespace kestrune
