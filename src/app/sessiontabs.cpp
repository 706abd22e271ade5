#include "sessiontabs.h"

#include <automation/kestrune.h>
#include <menubar/icons.h>
#include <menubar/sessionbar.h>
#include <menubar/tamenubar.h>
#include <sessions/mdichild.h>
#include <sessions/session.h>
#include <sessions/sessionmark.h>
#include <sessions/sessions.h>

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

SessionBar::Mark MarkOf(SessionMark::State state)
{
    switch (state) {
    case SessionMark::State::Connected:
        return SessionBar::Mark::Connected;
    case SessionMark::State::Lost:
        return SessionBar::Mark::Lost;
    case SessionMark::State::Activity:
        return SessionBar::Mark::Activity;
    case SessionMark::State::Bell:
        return SessionBar::Mark::Bell;
    case SessionMark::State::Offline:
        break;
    }
    return SessionBar::Mark::None;
}

} // namespace

SessionTabs::SessionTabs(Kestrune& application, QMainWindow& window)
    : QObject(&window), application_(application), window_(window), row_(new QToolBar(tr("Session list"))),
      bar_(new SessionBar), list_(new QToolButton)
{
    row_->setObjectName(u"SessionBar"_s);
    row_->setMovable(false);
    row_->setContextMenuPolicy(Qt::PreventContextMenu);
    row_->setStyleSheet(u"QToolBar { border: none; padding: 0; margin: 0; spacing: 0; }"_s);
    bar_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    list_->setAutoRaise(true);
    list_->setFocusPolicy(Qt::NoFocus);
    list_->setArrowType(Qt::DownArrow);
    list_->setToolTip(tr("All sessions"));
    list_->setAccessibleName(tr("All sessions"));
    row_->addWidget(bar_);
    QAction* listAction = row_->addWidget(list_);
    listAction->setVisible(false);
    row_->hide();
    window.addToolBarBreak();
    window.addToolBar(row_);
    connect(list_, &QToolButton::clicked, this, &SessionTabs::ShowList);
    connect(
        bar_, &SessionBar::OverflowChanged, this, [this, listAction] { listAction->setVisible(bar_->Overflows()); },
        Qt::QueuedConnection); // from inside a layout
    ConnectTabs();
}

// Widgets below a style sheet keep the colours of the time when it was set.
void SessionTabs::TakeNewColors() { row_->setStyleSheet(row_->styleSheet()); }

void SessionTabs::ConnectTabs()
{
    const auto find = [this](quintptr window) { return application_.Menu().SessionOfWindow(window); };
    connect(bar_, &SessionBar::TabChosen, this, [find](quintptr window) {
        if (const auto session = find(window))
            session->Activate();
    });
    connect(bar_, &SessionBar::SessionTabClose, this, &SessionTabs::CloseWanted);
    connect(bar_, &SessionBar::ToolRightClick, this, &SessionTabs::MenuWanted);
    connect(bar_, &SessionBar::Dragged, this, [this, find](quintptr window, quintptr before) {
        const auto session = find(window), next = find(before);
        if (session == nullptr)
            return;
        application_.Sessions().MoveBefore(session->Id(), next != nullptr ? next->Id() : QString());
        emit Changed();
    });
    connect(bar_, &SessionBar::RenameWanted, this, [this, find](quintptr window) {
        if (const auto session = find(window))
            Rename(*session);
    });
    connect(bar_, &SessionBar::Renamed, this, [this, find](quintptr window, const QString& caption) {
        if (const auto session = find(window)) {
            session->frmSession()->ChangeCaption(caption);
            emit Changed();
        }
    });
    connect(bar_, &SessionBar::RenameEnded, this, &SessionTabs::KeyboardFree);
}

void SessionTabs::Fill(const frmMdiChild* active, const MenuBand* band)
{
    const bool pictures = band == nullptr || band->style == BandStyle::IconAndCaption;
    QList<SessionBar::Tab> tabs;
    for (const auto& session : application_.Sessions().All())
        if (const auto* window = dynamic_cast<frmMdiChild*>(session->frmSession());
            window != nullptr && !window->isHidden())
            tabs.append({window->Handle(), window->Title(), session->FileName(),
                         pictures ? window->windowIcon() : QIcon(), MarkOf(window->Mark().Now())});
    bar_->SetTabs(tabs, active != nullptr ? active->Handle() : 0);
    Dock(band);
    const bool seen = !tabs.isEmpty() && application_.Boolean(GlobalId::SessionBarVisible);
    if (seen && row_->isHidden()) // the window may remember it with the height of no tabs
        row_->setMinimumHeight(bar_->sizeHint().height());
    row_->setVisible(seen);
}

void SessionTabs::Dock(const MenuBand* band)
{
    const bool below = band != nullptr && band->dock == BandDock::Bottom;
    const Qt::ToolBarArea area = below ? Qt::BottomToolBarArea : Qt::TopToolBarArea;
    if (window_.toolBarArea(row_) == area)
        return;
    window_.addToolBarBreak(area);
    window_.addToolBar(area, row_);
    bar_->setShape(below ? QTabBar::RoundedSouth : QTabBar::RoundedNorth);
}

bool SessionTabs::Rename(const clsSession& session)
{
    const SessionWindow* window = session.frmSession();
    return window != nullptr && row_->isVisible() && bar_->Rename(window->Handle(), window->Title());
}

void SessionTabs::ShowList()
{
    auto* menu = new QMenu(list_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (int i = 0; i < bar_->count(); ++i) {
        QAction* action = menu->addAction(bar_->tabIcon(i), bar_->tabText(i));
        QFont font = action->font();
        font.setBold(i == bar_->currentIndex());
        action->setFont(font);
        connect(action, &QAction::triggered, bar_,
                [this, handle = bar_->HandleAt(i)] { emit bar_->TabChosen(handle); });
    }
    menu->popup(list_->mapToGlobal(QPoint(0, list_->height())));
}

} // namespace kestrune
