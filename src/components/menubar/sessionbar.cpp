#include <menubar/sessionbar.h>

#include <menubar/icons.h>

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QToolButton>

namespace kestrune {

SessionBar::SessionBar(QWidget* parent) : QTabBar(parent)
{
    setDocumentMode(true);
    setDrawBase(false);
    setExpanding(false);
    setElideMode(Qt::ElideMiddle);
    setUsesScrollButtons(true);
    setFocusPolicy(Qt::NoFocus); // the keyboard stays with the session
    setIconSize(QSize(16, 16));
    connect(this, &QTabBar::currentChanged, this, [this](int index) {
        if (!filling_ && HandleAt(index) != 0)
            emit TabChosen(HandleAt(index));
    });
}

void SessionBar::SetTabs(const QList<Tab>& tabs, quintptr active)
{
    const QScopedValueRollback guard(filling_, true);
    while (count() > tabs.size())
        removeTab(count() - 1);
    for (int i = 0; i < tabs.size(); ++i) {
        const Tab& tab = tabs[i];
        // In a caption an ampersand would be an access key.
        const QString text = QString(tab.caption).replace(QLatin1Char('&'), QLatin1String("&&"));
        if (i >= count())
            AddCloseMark(addTab(text));
        else if (tabText(i) != text)
            setTabText(i, text);
        setTabData(i, static_cast<qulonglong>(tab.handle));
        setTabToolTip(i, tab.toolTip);
        setTabIcon(i, tab.picture);
        if (tab.handle == active)
            setCurrentIndex(i);
    }
}

// The mark that the style draws shouts; this one is as quiet as the other pictures.
void SessionBar::AddCloseMark(int index)
{
    auto* mark = new QToolButton(this);
    mark->setIcon(LineIcon(QStringLiteral("close")));
    mark->setIconSize(QSize(12, 12));
    mark->setAutoRaise(true);
    mark->setFocusPolicy(Qt::NoFocus);
    mark->setToolTip(tr("Close session"));
    connect(mark, &QToolButton::clicked, this, [this, mark] {
        for (int i = 0; i < count(); ++i)
            if (tabButton(i, QTabBar::RightSide) == mark)
                emit SessionTabClose(HandleAt(i));
    });
    setTabButton(index, QTabBar::RightSide, mark);
}

quintptr SessionBar::HandleAt(int index) const { return static_cast<quintptr>(tabData(index).toULongLong()); }

QRect SessionBar::TabPlace(quintptr handle) const
{
    for (int i = 0; i < count(); ++i)
        if (HandleAt(i) == handle)
            return tabRect(i);
    return {};
}

void SessionBar::contextMenuEvent(QContextMenuEvent* event)
{
    if (const quintptr handle = HandleAt(tabAt(event->pos())))
        emit ToolRightClick(handle, event->globalPos());
}

void SessionBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton) {
        if (const quintptr handle = HandleAt(tabAt(event->pos())))
            emit SessionTabClose(handle);
        return;
    }
    QTabBar::mousePressEvent(event);
}

} // namespace kestrune
