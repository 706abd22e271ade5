#include <sessions/childlogic.h>

#include <dispatch/failure.h>
#include <emulator/control/ctlemulator.h>
#include <ports/application.h>
#include <ports/commands.h>
#include <ports/menutools.h>
#include <ports/questions.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <sessions/tools.h>
#include <settings/layer.h>
#include <support/errors.h>
#include <support/msgbox.h>
#include <support/ordlst.h>

#include "emulatorevents.h"
#include "linetrouble.h"
#include "report.h"

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr Clock::Duration FocusDelay{250};
constexpr Clock::Duration QuickActivation{500}; // two within this: the deactivation between them is not painted
constexpr int TabKey = 9, ControlKey = 17, ControlDown = 2;
constexpr int ControlTabFunction = 2009; // the key code under which Ctrl+Tab can have a function of its own
constexpr QStringView NoPrinter = u"No Printer";

// The command text of a session's close tool goes to the dispatcher, so that the user's menu decides what it does.
void RunCloseTool(ApplicationPort& application, const QString& id)
{
    const auto session = application.Sessions().Find(id);
    if (!session || session->Terminated())
        return;
    const QVariant action = session->frmSession()->Tools().GetToolProperty(Tool::CloseSession, ToolProperty::Action);
    application.Commands().MenuToolAction(action.toString(), false, session.get(), Cause::User);
}

void RunTransfer(ApplicationPort& application, const QString& id, const TransferRequest& request)
{
    const auto session = application.Sessions().Find(id);
    if (!session || session->Terminated())
        return;
    ctlEmulator& emulator = session->Emulator();
    if (request.mode == 0)
        emulator.SetTextFileEncoding(request.textEncoding);
    constexpr int WaitForEnd = 1;
    if (request.upload)
        emulator.Upload(request.fileName, request.protocol, request.mode, request.overwrite, WaitForEnd);
    else
        emulator.Download(request.fileName, request.protocol, request.mode, request.overwrite, WaitForEnd);
    application.Recorder().TransferStarted(*session, request);
}

} // namespace

ChildLogic::ChildLogic(ApplicationPort& application, SessionWindow& window)
    : application_(application), window_(window), events_(std::make_unique<EmulatorEvents>(application, window)),
      trouble_(std::make_unique<LineTrouble>(application, window))
{}

ChildLogic::~ChildLogic() = default;

std::shared_ptr<clsSession> ChildLogic::Session() const { return LiveSession(application_, window_); }

// --- activation

void ChildLogic::FrameActivated()
{
    activateTimer_ = application_.Time().After(FocusDelay, [this] { FocusAfterActivation(); });
}

void ChildLogic::FocusAfterActivation()
{
    if (window_.FocusIsOnWindow() && application_.IsForeground())
        window_.TakeFocus(); // which is a panel's button while one is up
}

bool ChildLogic::FrameDeactivated() { return std::exchange(swallowDeactivation_, false); }

void ChildLogic::MdiActivated()
{
    const Clock::Duration now = application_.Time().Now();
    swallowDeactivation_ = lastActivation_ && now - *lastActivation_ < QuickActivation;
    lastActivation_ = now;
}

void ChildLogic::Activated()
{
    const auto session = Session();
    if (!session)
        return;
    RefreshMenu();
    if (!application_.Sessions().Walking())
        application_.Order().SetTop(session->Number());
    if (window_.Panels().Shown() != LinePanel::None)
        window_.Panels().TakeFocus();
    const bool recording = application_.Recorder().IsRecording();
    window_.Emulator().SetRecordingText(recording);
    window_.Emulator().SetRecordingKeys(recording);
    if (!ignoreEvents_)
        application_.Recorder().SessionActivated(*session);
}

void ChildLogic::RefreshMenu()
{
    MenuTools& tools = window_.Tools();
    EmulatorSettings& settings = window_.Emulator().Settings();
    if (std::exchange(menuDirty_, false)) {
        window_.Emulator().RefreshMenu();
        events_->TellAgain();
    }
    const auto enable = [&tools](int tool, bool on) { tools.SetToolProperty(tool, ToolProperty::Enabled, on); };
    enable(Tool::Paste, application_.Frame()->ClipboardHasText());
    enable(Tool::PrinterStatus, settings.Text(Setting("SlavePrinterName")) != NoPrinter);
    enable(Tool::PrintScreen, settings.Text(Setting("ScreenPrinterName")) != NoPrinter);

    const bool canClose = tools.GetToolProperty(Tool::CloseSession, ToolProperty::Enabled).toBool() &&
                          tools.GetToolProperty(Tool::CloseSession, ToolProperty::Visible).toBool();
    if (canClose != canClose_) {
        canClose_ = canClose;
        window_.SetCanClose(canClose);
    }
    application_.Frame()->CheckState();
}

// --- keys

bool ChildLogic::KeyDown(int key, int shift)
{
    if (key != TabKey || shift != ControlDown || !window_.Emulator().KeyFunction(ControlTabFunction).isEmpty())
        return false;
    application_.Sessions().SetWalking(true);
    if (!ActivateNextInOrder())
        window_.TakeFocus();
    return true;
}

bool ChildLogic::ActivateNextInOrder()
{
    OrderedList& order = application_.Order();
    for (std::size_t tried = 0; tried < order.Count(); ++tried) {
        const auto session = application_.Sessions().Find(QString::number(order.NextKey()));
        if (!session || session->Terminated())
            continue;
        const SessionWindow& window = *session->frmSession();
        if (window.IsEnabled() && window.IsVisible()) {
            session->Activate();
            return true;
        }
    }
    return false;
}

void ChildLogic::KeyUp(int key)
{
    if (key != ControlKey || !application_.Sessions().Walking())
        return;
    application_.Sessions().SetWalking(false);
    application_.Order().SetTop(window_.Tag().toInt());
}

// --- panels

void ChildLogic::PanelPressed(LineButton button) { trouble_->Pressed(button); }

void ChildLogic::SecretsTyped(std::vector<Secret> values, bool remember)
{
    trouble_->SecretsTyped(std::move(values), remember);
}

// --- place

void ChildLogic::Resized()
{
    if (closing_)
        return;
    application_.Frame()->RefreshCaption();
    const WindowPlace place = window_.Place();
    if (place.state != WindowMinimised)
        application_.SetInitChildWindowState(place.state);
    const auto session = Session();
    if (ignoreEvents_ || !session || place == lastPlace_)
        return;
    const int newState = place.state != lastPlace_.state ? place.state : -1;
    lastPlace_ = place;
    application_.Recorder().SessionWindowMoved(*session, place, newState);
}

// --- end

bool ChildLogic::CloseQuery(UnloadMode mode)
{
    const auto session = Session();
    if (closing_ || !session)
        return true;
    if (mode == UnloadMode::CloseBox) {
        PostClose();
        return false;
    }
    bool mayClose = false;
    if (session->Busy()) {
        application_.Ask().Beep();
    } else {
        const int prompt = mode == UnloadMode::MainWindow ? application_.PendingPrompt()
                           : mode == UnloadMode::TaskManager
                               ? int(TerminatePrompt::None)
                               : TerminatePrompt::UnsavedChanges | TerminatePrompt::LiveConnection;
        ReportFailure(application_, [&] { mayClose = session->QueryTerminate(prompt); });
    }
    if (!mayClose) {
        application_.SetCloseSweep(false);
        application_.ClearQuitting();
    }
    return mayClose;
}

void ChildLogic::Unloaded()
{
    activateTimer_.reset();
    events_->Stop();
    trouble_->Stop();
    application_.Order().Remove(window_.Tag().toInt());
    if (const auto session = Session())
        session->TerminateSession(true);
    if (application_.IsForeground())
        Silently([this] { application_.Frame()->TakeFocus(); });
}

void ChildLogic::PostClose()
{
    application_.Time().Post([&application = application_, id = window_.Tag()] {
        ReportFailure(application, [&] { RunCloseTool(application, id); });
    });
}

void ChildLogic::PostTransfer(const TransferRequest& request)
{
    application_.Time().Post([&application = application_, id = window_.Tag(), request] {
        ReportFailure(application, [&] { RunTransfer(application, id, request); });
    });
}

} // namespace kestrune
