#include <menubar/sessionbar.h>

#include <menubar/icons.h>

#include "renamebox.h"
#include "tabmark.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QToolButton>

namespace kestrune {

namespace {

constexpr int WheelStep = 120;                      // one notch, in eighths of a degree
constexpr int WidestTab = 260, WidestCaption = 190; // pixels; a picture and the close mark stand beside it

} // namespace

SessionBar::SessionBar(QWidget* parent) : QTabBar(parent)
{
    setDocumentMode(true);
    setDrawBase(false);
    setExpanding(false);
    setMovable(true);
    setElideMode(Qt::ElideNone); // by ShownCaption, once: the toolkit would measure every tab at every switch
    setUsesScrollButtons(true);
    setFocusPolicy(Qt::NoFocus); // the keyboard stays with the session
    setIconSize(QSize(16, 16));
    setAccessibleName(tr("Sessions"));
    connect(this, &QTabBar::currentChanged, this, [this](int index) {
        if (!filling_ && HandleAt(index) != 0)
            emit TabChosen(HandleAt(index));
    });
    connect(this, &QTabBar::tabMoved, this, [this](int, int to) {
        if (!filling_)
            emit Dragged(HandleAt(to), HandleAt(to + 1));
    });
}

// --- tabs

void SessionBar::SetTabs(const QList<Tab>& tabs, quintptr active)
{
    const QScopedValueRollback guard(filling_, true);
    QSet<quintptr> wanted;
    for (const Tab& tab : tabs)
        wanted.insert(tab.handle);
    for (int i = count() - 1; i >= 0; --i)
        if (!wanted.contains(HandleAt(i))) {
            shown_.remove(HandleAt(i));
            removeTab(i);
        }
    for (int i = 0; i < tabs.size(); ++i) {
        int at = IndexOf(tabs[i].handle);
        if (at < 0) {
            at = insertTab(i, QString());
            setTabData(at, static_cast<qulonglong>(tabs[i].handle));
            AddCloseMark(at);
        } else if (at != i) {
            moveTab(at, i);
        }
        SetTab(i, tabs[i]);
    }
    if (const int at = IndexOf(active); at >= 0) {
        setCurrentIndex(at);
        BringIntoView(at);
    }
}

QString SessionBar::ShownCaption(const QString& caption) const
{
    return fontMetrics().elidedText(caption, Qt::ElideMiddle, WidestCaption);
}

// Each of these lays all tabs out again: set only when it differs.
void SessionBar::SetTab(int index, const Tab& tab)
{
    const bool isNew = !shown_.contains(tab.handle);
    Tab& shown = shown_[tab.handle];
    if (isNew || shown.caption != tab.caption) // in a caption an ampersand would be an access key
        setTabText(index, ShownCaption(tab.caption).replace(QLatin1Char('&'), QLatin1String("&&")));
    if (isNew || shown.picture.cacheKey() != tab.picture.cacheKey() || shown.mark != tab.mark)
        setTabIcon(index, MarkedPicture(tab.picture, tab.mark));
    if (isNew || shown.toolTip != tab.toolTip || shown.mark != tab.mark || shown.caption != tab.caption) {
        QStringList lines{tab.caption, tab.toolTip, MarkText(tab.mark)};
        lines.removeAll(QString());
        setTabToolTip(
            index,
            QStringLiteral("<p style='white-space:pre'>%1</p>").arg(lines.join(QLatin1Char('\n')).toHtmlEscaped()));
        setAccessibleTabName(index, QStringList{tab.caption, MarkText(tab.mark)}.join(QLatin1Char(' ')).trimmed());
    }
    shown = tab;
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
    mark->setAccessibleName(tr("Close session"));
    connect(mark, &QToolButton::clicked, this, [this, mark] {
        for (int i = 0; i < count(); ++i)
            if (tabButton(i, QTabBar::RightSide) == mark) {
                emit SessionTabClose(HandleAt(i));
                return; // the tab may have gone
            }
    });
    setTabButton(index, QTabBar::RightSide, mark);
}

quintptr SessionBar::HandleAt(int index) const { return static_cast<quintptr>(tabData(index).toULongLong()); }

int SessionBar::IndexOf(quintptr handle) const
{
    for (int i = 0; i < count(); ++i)
        if (HandleAt(i) == handle)
            return i;
    return -1;
}

QRect SessionBar::TabPlace(quintptr handle) const { return tabRect(IndexOf(handle)); }

QToolButton* SessionBar::ScrollButton(const char* name) const
{
    return findChild<QToolButton*>(QLatin1String(name), Qt::FindDirectChildrenOnly);
}

bool SessionBar::Overflows() const
{
    const QToolButton* left = ScrollButton("ScrollLeftButton");
    return left != nullptr && !left->isHidden();
}

void SessionBar::tabLayoutChange()
{
    QTabBar::tabLayoutChange();
    if (std::exchange(overflows_, Overflows()) != Overflows())
        emit OverflowChanged();
}

// The base class does not where the tabs have been scrolled by hand.
void SessionBar::BringIntoView(int index)
{
    for (int steps = count(); steps > 0 && !rect().contains(tabRect(index).center()); --steps) {
        QToolButton* button = ScrollButton(tabRect(index).left() < 0 ? "ScrollLeftButton" : "ScrollRightButton");
        if (button == nullptr || button->isHidden() || !button->isEnabled())
            return;
        button->click();
    }
}

bool SessionBar::Rename(quintptr handle, const QString& caption)
{
    const QRect tab = TabPlace(handle);
    if (tab.isEmpty())
        return false;
    delete rename_;
    rename_ = new RenameBox(caption, this, tab);
    connect(rename_, &RenameBox::Confirmed, this, [this, handle](const QString& text) { emit Renamed(handle, text); });
    connect(rename_, &RenameBox::Ended, this, &SessionBar::RenameEnded);
    return true;
}

QSize SessionBar::tabSizeHint(int index) const
{
    const QSize size = QTabBar::tabSizeHint(index);
    return {std::min(size.width(), WidestTab), size.height()};
}

// --- mouse

void SessionBar::contextMenuEvent(QContextMenuEvent* event)
{
    const int index = event->reason() == QContextMenuEvent::Keyboard ? currentIndex() : tabAt(event->pos());
    const QPoint at =
        event->reason() == QContextMenuEvent::Keyboard ? mapToGlobal(tabRect(index).bottomLeft()) : event->globalPos();
    if (const quintptr handle = HandleAt(index))
        emit ToolRightClick(handle, at);
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

void SessionBar::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (const quintptr handle = HandleAt(tabAt(event->pos())); handle != 0 && event->button() == Qt::LeftButton)
        emit RenameWanted(handle);
    else
        QTabBar::mouseDoubleClickEvent(event);
}

void SessionBar::wheelEvent(QWheelEvent* event)
{
    event->accept();
    const QPoint turn = event->angleDelta();
    wheel_ += std::abs(turn.x()) > std::abs(turn.y()) ? turn.x() : turn.y();
    for (; std::abs(wheel_) >= WheelStep; wheel_ += wheel_ > 0 ? -WheelStep : WheelStep)
        if (QToolButton* button = ScrollButton(wheel_ > 0 ? "ScrollLeftButton" : "ScrollRightButton");
            button != nullptr && !button->isHidden())
            button->click();
}

} // namespace kestrune
