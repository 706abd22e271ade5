#include <app/mdiparnt.h>

#include <app/position.h>
#include <automation/kestrune.h>
#include <ports/recorder.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <support/errors.h>

#include <QScopedValueRollback>

#include <optional>
#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

using std::chrono::milliseconds;

constexpr int kPromptAsUser = 3;
constexpr int kStateMaximised = 2;

constexpr milliseconds kFirstRetry{100};

// How the next try for the focus is spaced; nothing: give up.
std::optional<milliseconds> NextRetry(milliseconds at, bool focusIsOnFrame)
{
    if (at < milliseconds(200))
        return milliseconds(200);
    if (at < milliseconds(300))
        return milliseconds(300);
    return focusIsOnFrame ? std::optional(milliseconds(300)) : std::nullopt;
}

} // namespace

QString FrameTitle(const QString& title, bool maximised, const QString& caption)
{
    return maximised ? title + u" - ["_s + caption + u']' : title;
}

MdiParent::MdiParent(Kestrune& application, FrameWindow& window, std::function<void()> shutDown)
    : application_(application), window_(window), shutDown_(std::move(shutDown))
{}

// --- what happened to the window

void MdiParent::Activated()
{
    Silently([this] {
        reactivateTimer_.reset();
        activatedEmpty_ = window_.ActiveChild() == nullptr;
        if (activatedEmpty_) {
            CheckState();
            return;
        }
        TryFocus(kFirstRetry);
        if (SessionWindow* child = window_.ActiveChild())
            child->RunActivation();
    });
}

// The active session window may refuse the focus, while a dialog is up for instance: tried again, less and less
// often, and in the end only as long as the focus is nowhere useful.
void MdiParent::TryFocus(Clock::Duration ifRefused)
{
    if (closing_ || window_.FocusActiveChild()) {
        reactivateTimer_.reset();
        return;
    }
    reactivateTimer_ = application_.Time().After(ifRefused, [this, ifRefused] {
        if (const auto next = NextRetry(ifRefused, window_.FocusIsOnFrame()))
            TryFocus(*next);
    });
}

void MdiParent::ApplicationActivated(bool active)
{
    if (application_.Recorder().IsRecording())
        application_.Recorder().ApplicationActivated(active);
}

void MdiParent::GotFocus(bool clientHasFocus)
{
    if (clientHasFocus)
        application_.Time().Post([this] { RestoreFocus(); });
    else
        window_.TakeFocus();
}

void MdiParent::RestoreFocus()
{
    SessionWindow* child = closing_ ? nullptr : window_.ActiveChild();
    if (child != nullptr && window_.FocusIsOnFrame())
        child->TakeFocus();
}

void MdiParent::PlaceChanged()
{
    const WindowPlace place = window_.Place();
    if (closing_ || place == lastPlace_)
        return;
    const int state = place.state != lastPlace_.state ? place.state : -1;
    lastPlace_ = place;
    application_.Recorder().MainWindowMoved(place, state);
}

// --- bars

void MdiParent::ToolClick(const QString& band, const MenuTool& tool)
{
    if (!closing_)
        application_.Menu().ToolClick(window_.Menu(), band, tool, nullptr);
}

void MdiParent::SessionTabClose(quintptr window)
{
    const auto session = application_.Menu().SessionOfWindow(window);
    if (closing_ || session == nullptr)
        return;
    MenuTools& tools = session->frmSession()->Tools();
    if (tools.GetToolProperty(ToolId::FileClose, ToolProperty::Enabled).toBool())
        application_.Menu().MenuToolAction(tools.GetToolProperty(ToolId::FileClose, ToolProperty::Action).toString(),
                                           false, session.get(), Cause::User);
}

bool MdiParent::ToolRightClick(quintptr window)
{
    return !closing_ && application_.Menu().PrepareTabMenu(window_.Menu(), window);
}

void MdiParent::CheckState()
{
    const MenuTools& tools = window_.Menu();
    const bool can = tools.GetToolProperty(ToolId::FileExit, ToolProperty::Enabled).toBool() &&
                     tools.GetToolProperty(ToolId::FileExit, ToolProperty::Visible).toBool();
    if (can != std::exchange(canClose_, can))
        window_.SetCloseEnabled(can);
}

// --- closing

void MdiParent::PostLeave(Leave request)
{
    application_.Time().Post([this, request] {
        if (closing_)
            return;
        if (request == Leave::EndFrame) {
            EndFrame(CloseCode::Code);
            return;
        }
        const QString action = window_.Menu().GetToolProperty(ToolId::FileExit, ToolProperty::Action).toString();
        application_.Menu().MenuToolAction(action, false, nullptr, Cause::User);
    });
}

bool MdiParent::CloseBox() { return EndFrame(CloseCode::CloseBox); }

bool MdiParent::DesktopSessionEnds() { return EndFrame(CloseCode::SessionEnds); }

bool MdiParent::EndFrame(CloseCode code)
{
    if (closing_)
        return true;
    if (asking_ || !QueryUnload(code))
        return false;
    const QScopedValueRollback guard(asking_, true);
    application_.SetCloseSweep(true);
    const bool all = window_.QueryUnloadChildren();
    application_.SetCloseSweep(false);
    if (!all) {
        application_.ClearQuitting();
        return false;
    }
    Unload();
    return true;
}

// A script that is running keeps a user's close from going on; a client's Terminate ends the frame all the same,
// and the process lives until the script has ended.
bool MdiParent::ScriptLetsClose() const
{
    const ScriptEnginePort* engine = application_.ScriptEngine(true);
    return application_.PendingPrompt() != kPromptAsUser || engine == nullptr || !engine->IsRunning();
}

bool MdiParent::QueryUnload(CloseCode code)
{
    switch (code) {
    case CloseCode::CloseBox: // goes the way of the exit command, with its questions
        PostLeave(Leave::ByCommand);
        return false;
    case CloseCode::Code:
    case CloseCode::SessionEnds:
        break; // the prompt stays as it is
    case CloseCode::TaskManager:
        application_.SetPendingPrompt(0);
        break;
    case CloseCode::Owner:
        application_.SetPendingPrompt(kPromptAsUser);
        break;
    }
    Silently([this] {
        if (application_.Mode().standAlone)
            application_.SavePosition();
        application_.SaveAtClose();
    });
    application_.Recorder().Close();
    return ScriptLetsClose();
}

void MdiParent::Unload()
{
    closing_ = true;
    application_.SetQuitting(true);
    reactivateTimer_.reset();
    for (const auto& session : application_.Sessions().All())
        Silently([&] { session->TerminateSession(false); });
    window_.SetVisible(false);
    shutDown_();
}

// --- title

void MdiParent::SetTitle(const QString& text)
{
    title_ = text;
    RefreshCaption();
}

void MdiParent::RefreshCaption()
{
    const SessionWindow* child = window_.ActiveChild();
    const bool maximised = child != nullptr && child->State() == kStateMaximised;
    window_.SetTitleText(FrameTitle(title_, maximised, maximised ? child->Title() : QString()));
}

} // namespace kestrune
