#include <app/mdiparntform.h>

#include <app/emptypage.h>
#include <app/menusbykey.h>
#include <app/programicon.h>
#include <automation/kestrune.h>
#include <emulator/control/ctlemulator.h>
#include <menubar/menubarview.h>
#include <sessions/mdichild.h>
#include <sessions/session.h>
#include <sessions/sessionarea.h>
#include <sessions/sessionmark.h>
#include <sessions/sessions.h>
#include <sessions/tools.h>

#include "sessiontabs.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QMdiArea>
#include <QMessageBox>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QScreen>
#include <QSessionManager>

#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds kNoticeTime{10};

struct BarBand
{
    Bar bar;
    const char16_t* band;
    GlobalId setting;
};
constexpr BarBand kBarBands[] = {{Bar::ToolBar, u"Toolbar", GlobalId::ToolbarVisible},
                                 {Bar::StatusLine, u"StatusBar", GlobalId::StatusLineVisible},
                                 {Bar::SessionBar, u"SessionBar", GlobalId::SessionBarVisible}};

ScreenArea AreaOf(const QRect& rect) { return {rect.left(), rect.top(), rect.width(), rect.height()}; }

// Side by side in one direction, each with an even share of the room.
void Tile(const QList<frmMdiChild*>& windows, QSize room, bool stacked)
{
    const auto count = static_cast<int>(windows.size());
    for (int i = 0; i < count; ++i) {
        if (stacked)
            windows[i]->setGeometry(0, room.height() * i / count, room.width(), room.height() / count);
        else
            windows[i]->setGeometry(room.width() * i / count, 0, room.width() / count, room.height());
    }
}

} // namespace

frmMdiParent::frmMdiParent(Kestrune& application, Parts parts)
    : application_(application), parts_(std::move(parts)),
      logic_(std::make_unique<MdiParent>(application, *this, parts_.shutDown)),
      bars_(new MenuBarView(*this, {.locks = parts_.keyboardLocks})), emptyPage_(new EmptyPage), area_(new SessionArea),
      tabs_(new SessionTabs(application, *this))
{
    setContextMenuPolicy(Qt::NoContextMenu);
    area_->setFrameShape(QFrame::NoFrame);
    area_->setBackground(palette().brush(QPalette::Mid));
    area_->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    // The toolkit's own way is to restore the window that is left: its host would be told of another size at every
    // switch. Here a maximised window stays so while another is in front; see KeepMaximised.
    area_->setOption(QMdiArea::DontMaximizeSubWindowOnActivation);
    // The page lies over the area: a session window must find its area laid out when it is first shown.
    auto* inside = new QWidget;
    auto* cell = new QGridLayout(inside);
    cell->setContentsMargins(0, 0, 0, 0);
    cell->addWidget(area_, 0, 0);
    cell->addWidget(emptyPage_, 0, 0);
    setCentralWidget(inside);
    BuildSessionBar();
    BuildBars();

    connect(area_, &QMdiArea::subWindowActivated, this, &frmMdiParent::ActiveWindowChanged);
    connect(emptyPage_, &EmptyPage::CommandWanted, this, &frmMdiParent::RunCommand);
    connect(emptyPage_, &EmptyPage::RecentWanted, this, [this](int index) { RunCommand(ToolId::RecentFirst + index); });
    connect(qApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) { logic_->ApplicationActivated(state == Qt::ApplicationActive); });
    connect(qApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager& desktop) {
        if (!logic_->DesktopSessionEnds())
            desktop.cancel();
    });
    OpenMenusByKey(*this);
    ConnectMenu(menu_, nullptr);
    bars_->Show(&menu_);
}

frmMdiParent::~frmMdiParent()
{
    bars_->Show(nullptr); // the menus drawn belong to windows that go first
    disconnect(area_, nullptr, this, nullptr);
    disconnect(qApp, nullptr, this, nullptr);
}

// --- bars

void frmMdiParent::BuildBars()
{
    connect(bars_, &MenuBarView::BarsMoved, this, &frmMdiParent::BarsMoved);
    connect(bars_, &MenuBarView::BandVisibleWanted, this, &frmMdiParent::BandVisibleWanted);
    connect(bars_, &MenuBarView::LargeIconsWanted, this,
            [this](bool on) { application_.SetBoolean(GlobalId::LargeIcons, on); });
}

void frmMdiParent::RestoreBars(const QString& places)
{
    bars_->RestoreBarPlaces(QByteArray::fromBase64(places.toLatin1()));
}

void frmMdiParent::BarsMoved()
{
    if (logic_->IsClosing())
        return;
    application_.SetText(GlobalId::BarPlaces, QString::fromLatin1(bars_->BarPlaces().toBase64()));
    bars_->WriteDocks(menu_);
    for (const frmMdiChild* window : Windows())
        bars_->WriteDocks(window->Menu());
}

// The three that have a setting are shown by it, any other for as long as its menu lives.
void frmMdiParent::BandVisibleWanted(const QString& band, bool on)
{
    for (const BarBand& row : kBarBands)
        if (SameBandKey(band, QString::fromUtf16(row.band))) {
            application_.SetBoolean(row.setting, on);
            return;
        }
    application_.Menu().SetBandProperty(band, {}, BandProperty::Visible, on);
}

void frmMdiParent::BuildSessionBar()
{
    connect(tabs_, &SessionTabs::CloseWanted, this, [this](quintptr window) { logic_->SessionTabClose(window); });
    connect(tabs_, &SessionTabs::MenuWanted, this, [this](quintptr window, const QPoint& at) {
        if (logic_->ToolRightClick(window))
            bars_->Popup(menu_, u"TabCtx"_s, at);
    });
    connect(tabs_, &SessionTabs::Changed, this, [this] {
        RefreshSessionBar();
        logic_->RefreshCaption();
    });
    connect(tabs_, &SessionTabs::KeyboardFree, this, [this] { FocusActiveChild(); });
}

// child: the window whose menu it is; null for the frame's own.
void frmMdiParent::ConnectMenu(taMenuBar& menu, frmMdiChild* child)
{
    const QPointer<frmMdiChild> window(child);
    connect(&menu, &taMenuBar::BandOpen, this, [this, &menu, window](MenuTool& tool) {
        const auto session = window ? application_.Sessions().Find(window->Tag()) : nullptr;
        application_.Menu().BandOpen(menu, tool, session.get());
    });
    connect(&menu, &taMenuBar::BandDocked, bars_, &MenuBarView::MoveBar);
    connect(&menu, &taMenuBar::CommandStateChanged, this,
            [this](int key) { application_.Menu().ToolStateWritten(key); });
    // Commands run from the event loop: they may run events and make the menus anew, and the menu that was clicked is
    // still at work.
    connect(&menu, &taMenuBar::ToolClick, this,
            [this, isOwn = child == nullptr, window](const QString& band, const MenuTool& tool) {
                application_.Time().Post([self = QPointer(this), isOwn, window, band, tool] {
                    if (self && (isOwn || window))
                        self->RunTool(window, band, tool);
                });
            });
}

// child: null for a tool of the frame's own menu.
void frmMdiParent::RunTool(const frmMdiChild* child, const QString& band, const MenuTool& tool)
{
    if (child == nullptr) {
        logic_->ToolClick(band, tool);
    } else if (!logic_->IsClosing()) {
        const auto session = application_.Sessions().Find(child->Tag());
        application_.Menu().ToolClick(child->Menu(), band, tool, session.get());
    }
}

// --- session windows

SessionWindow* frmMdiParent::NewSessionWindow(clsSession&)
{
    auto menu = std::make_unique<taMenuBar>();
    taMenuBar& bands = *menu;
    auto* child = new frmMdiChild(application_, parts_.makeEmulator(), std::move(menu));
    ConnectMenu(bands, child);
    connect(child, &frmMdiChild::PopupWanted, this,
            [this, child](const QString& band) { bars_->Popup(child->Menu(), band, QCursor::pos()); });
    connect(child, &frmMdiChild::Ended, this, [this, child] {
        if (bars_->Shown() == &child->Menu())
            bars_->Show(&menu_);
        area_->removeSubWindow(child);
        ActiveWindowChanged();
    });
    connect(child, &QMdiSubWindow::windowStateChanged, this, [this, child] {
        KeepMaximised(child);
        logic_->RefreshCaption();
        ShowRightPage();
        RefreshSessionBar();
    });
    connect(&child->Mark(), &SessionMark::Changed, this, &frmMdiParent::RefreshSessionBar);
    area_->addSubWindow(child);
    child->hide();
    return child;
}

frmMdiChild* frmMdiParent::ActiveWindow() const
{
    auto* window = dynamic_cast<frmMdiChild*>(area_->currentSubWindow());
    return window != nullptr && window->isVisible() && !window->IsClosing() ? window : nullptr;
}

SessionWindow* frmMdiParent::ActiveChild() const { return ActiveWindow(); }

QList<frmMdiChild*> frmMdiParent::Windows() const
{
    QList<frmMdiChild*> windows;
    for (const auto& session : application_.Sessions().All())
        if (auto* window = dynamic_cast<frmMdiChild*>(session->frmSession()))
            windows.append(window);
    return windows;
}

// Maximised is what all windows are together: one that comes to the front takes it over, and when the one in front is
// restored the others are, too.
void frmMdiParent::KeepMaximised(frmMdiChild* changed)
{
    frmMdiChild* front = ActiveWindow();
    if (following_ || front == nullptr || changed != front || front->State() == WindowMinimised)
        return;
    const bool was = std::exchange(maximised_, front->State() == WindowMaximised);
    if (!was || maximised_)
        return;
    const QScopedValueRollback following(following_, true);
    for (frmMdiChild* window : Windows())
        if (window->isVisible() && window->State() == WindowMaximised)
            window->FollowToNormal();
}

void frmMdiParent::ActiveWindowChanged()
{
    if (following_) // the toolkit hides and shows a window to maximise it, and others are in front meanwhile
        return;
    frmMdiChild* window = ActiveWindow();
    if (window != nullptr && maximised_ && window->State() == WindowNormal) {
        const QScopedValueRollback following(following_, true);
        window->FollowToMaximised();
        area_->setActiveSubWindow(window);
    }
    KeepMaximised(window);
    for (frmMdiChild* other : Windows())
        other->Mark().SetWatched(other == window);
    bars_->Show(window != nullptr ? &window->Menu() : &menu_);
    logic_->RefreshCaption();
    ShowRightPage();
    if (window != nullptr)
        FillSessionBar(); // at once: the tab changes in the same paint as the bars
    else
        RefreshSessionBar();
}

void frmMdiParent::UpdateNoActiveSession() { ActiveWindowChanged(); }

void frmMdiParent::ShowRightPage()
{
    bool any = false;
    for (const frmMdiChild* window : Windows())
        any = any || !window->isHidden();
    emptyPage_->setVisible(!any);
}

// Called for every change of a caption or icon; what is shown catches up once, at the end of the turn.
void frmMdiParent::RefreshSessionBar()
{
    if (!barPending_)
        QMetaObject::invokeMethod(this, &frmMdiParent::FillSessionBar, Qt::QueuedConnection);
    barPending_ = true;
}

void frmMdiParent::FillSessionBar()
{
    barPending_ = false;
    if (logic_->IsClosing())
        return;
    frmMdiChild* active = ActiveWindow();
    bars_->Show(active != nullptr ? &active->Menu() : &menu_);
    ShowRightPage();
    tabs_->Fill(active, bars_->Shown()->Band(u"SessionBar"_s));
}

bool frmMdiParent::QueryUnloadChildren()
{
    const QList<QPointer<frmMdiChild>> windows = [this] {
        QList<QPointer<frmMdiChild>> list;
        for (frmMdiChild* window : Windows())
            list.append(window);
        return list;
    }();
    constexpr int mainWindowCloses = 4;
    for (const QPointer<frmMdiChild>& window : windows) // a question runs the message loop: one may go meanwhile
        if (window && !window->IsClosing() && !window->QueryUnload(mainWindowCloses))
            return false;
    return true;
}

void frmMdiParent::Arrange(int style)
{
    QList<frmMdiChild*> windows;
    for (frmMdiChild* window : Windows())
        if (window->isVisible() && window->State() != WindowMinimised)
            windows.append(window);
    if (frmMdiChild* front = ActiveWindow(); front != nullptr && front->State() == WindowMaximised) {
        const IgnoringEvents notRecorded(*front);
        front->SetState(WindowNormal); // and so are the others
    }
    if (style == 0)
        area_->cascadeSubWindows();
    else
        Tile(windows, area_->viewport()->size(), style == 1);
}

// --- commands and bars

void frmMdiParent::RunCommand(int id)
{
    MenuTool tool;
    tool.key = id;
    tool.action = u"[#%1]"_s.arg(id);
    logic_->ToolClick({}, tool);
}

void frmMdiParent::ShowPopup(const QString& band) { bars_->Popup(menu_, band, QCursor::pos()); }

void frmMdiParent::ApplyBar(Bar bar, bool visible)
{
    for (const BarBand& row : kBarBands)
        if (row.bar == bar) {
            const QString band = QString::fromUtf16(row.band);
            application_.Menu().SetBandProperty(band, {}, BandProperty::Visible, visible);
        }
    RefreshSessionBar();
}

void frmMdiParent::ApplyLargeIcons(bool on)
{
    application_.Menu().SetBandProperty({}, BandType::ToolBar, BandProperty::LargeIcons, on);
}

void frmMdiParent::ShowNotice(const QString& line) { bars_->ShowNotice(line, kNoticeTime); }

bool frmMdiParent::RenameTab(clsSession& session) { return tabs_->Rename(session); }

void frmMdiParent::ShowAbout()
{
    auto* box = new QMessageBox(QMessageBox::NoIcon, tr("About Kestrune"),
                                tr("<h2>Kestrune 7</h2><p>Release %1</p><p>A terminal for MultiValue and Unix "
                                   "hosts. Free software under the GNU General Public License, version 3 or "
                                   "later.</p>")
                                    .arg(application_.ProductRelease()),
                                QMessageBox::Ok, this);
    box->setIconPixmap(ProgramPicture(64, devicePixelRatioF()));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void frmMdiParent::RecentFilesChanged()
{
    QStringList names;
    for (int i = 1; i <= application_.RecentList().ListCount(); ++i)
        names.append(application_.RecentList().ListItem(i));
    emptyPage_->SetRecentFiles(application_.Menu().RecentFiles(), names);
}

// --- the window itself

void frmMdiParent::TakeFocus() { activateWindow(); }

bool frmMdiParent::ClipboardHasText() const
{
    const QMimeData* content = QGuiApplication::clipboard()->mimeData();
    return content != nullptr && content->hasText();
}

QStringList frmMdiParent::FontNames() const { return QFontDatabase::families(); }

WindowPlace frmMdiParent::Place() const
{
    const int state = State();
    if (state == 0)
        return {x(), y(), width(), height(), state};
    const QRect restored = normalGeometry();
    return {restored.left(), restored.top(), restored.width(), restored.height(), state};
}

void frmMdiParent::Move(int left, int top, int width, int height)
{
    move(left, top);
    resize(width, height);
}

void frmMdiParent::SetState(int state)
{
    constexpr Qt::WindowState states[] = {Qt::WindowNoState, Qt::WindowMinimized, Qt::WindowMaximized};
    if (state >= 0 && state <= 2)
        setWindowState((windowState() & Qt::WindowActive) | states[state]);
}

int frmMdiParent::State() const
{
    if (isMinimized())
        return 1;
    return isMaximized() ? 2 : 0;
}

void frmMdiParent::Activate()
{
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
}

void frmMdiParent::RunEventsOnce() { QCoreApplication::processEvents(); }

bool frmMdiParent::ChangeIcon(const QString& path)
{
    const QPixmap picture = path.isEmpty() ? QPixmap() : QPixmap(path);
    setWindowIcon(picture.isNull() ? ProgramIcon() : QIcon(picture));
    return !picture.isNull();
}

ScreenArea frmMdiParent::PrimaryScreen() const { return AreaOf(QGuiApplication::primaryScreen()->geometry()); }

ScreenArea frmMdiParent::VirtualScreen() const { return AreaOf(QGuiApplication::primaryScreen()->virtualGeometry()); }

bool frmMdiParent::IsForeground() const { return QApplication::activeWindow() != nullptr; }

void frmMdiParent::SetTitleText(const QString& text) { setWindowTitle(text); }

bool frmMdiParent::FocusIsOnFrame() const
{
    const QWidget* focus = QApplication::focusWidget();
    return focus == nullptr || focus == this || focus == area_ || focus == area_->viewport();
}

bool frmMdiParent::FocusActiveChild()
{
    if (QApplication::activeModalWidget() != nullptr || QApplication::activePopupWidget() != nullptr)
        return false;
    if (SessionWindow* child = ActiveChild())
        child->TakeFocus();
    return true;
}

void frmMdiParent::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        logic_->Activated();
    else if (event->type() == QEvent::WindowStateChange)
        logic_->PlaceChanged();
    else if (event->type() == QEvent::PaletteChange)
        tabs_->TakeNewColors();
}

void frmMdiParent::closeEvent(QCloseEvent* event)
{
    event->ignore(); // closing goes the way of the exit command; once it has begun, the window is only hidden
    if (closeEnabled_)
        logic_->CloseBox();
}

void frmMdiParent::moveEvent(QMoveEvent* event)
{
    QMainWindow::moveEvent(event);
    logic_->PlaceChanged();
}

void frmMdiParent::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    logic_->PlaceChanged();
}

} // namespace kestrune
