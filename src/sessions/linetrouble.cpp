#include "linetrouble.h"

#include <emulator/control/ctlemulator.h>
#include <ports/application.h>
#include <ports/questions.h>
#include <ports/sessionwindow.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <sessions/tools.h>

#include "lineerrorhelp.h"
#include "report.h"

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Connection reset, not connected and shut down on the network devices, and the end of an SSH line: the
// Disconnect that follows speaks for them.
constexpr std::array<quint32, 10> ErrorsOfDisconnect = {0x32746, 0x32749, 0x3274A, 0x52746, 0x52749,
                                                        0x5274A, 0x72746, 0x72749, 0x7274A, 0x50010};
constexpr quint32 NumberMask = 0x00FFFFFF;
constexpr quint32 FirstGeneralError = 0x100000; // below it stand the classes of the devices
constexpr quint32 HostUnknown = LineErrorWord(Device::Ssh, LineErrorNumber::HostUnknown);
constexpr quint32 HostChanged = LineErrorWord(Device::Ssh, LineErrorNumber::HostChanged);

bool OnNetworkDevice(const clsSession& session)
{
    const int device = session.Settings().Integer(Setting("Device"));
    return device == int(Device::Telnet) || device == int(Device::Ssh) || device == int(Device::SslTelnet);
}

} // namespace

LineTrouble::LineTrouble(ApplicationPort& application, SessionWindow& window)
    : application_(application), window_(window), kept_(application.Keeper())
{
    ctlEmulator& emulator = window.Emulator();
    connect(&emulator, &ctlEmulator::CommError, this,
            [this](quint32* word, const QString& description, bool fatal) { CommError(*word, description, fatal); });
    connect(&emulator, &ctlEmulator::Disconnect, this, &LineTrouble::Disconnected);
    connect(&emulator, &ctlEmulator::ConnectionStatus, this, [this](qint16 status) { StatusChanged(status); });
    connect(&emulator, &ctlEmulator::SecretsWanted, this, [this](const LineQuestion& question, bool* taken) {
        *taken = true;
        AskForSecrets(question);
    });
    connect(&emulator, &ctlEmulator::QuestionWithdrawn, this, [this] {
        kept_.Withdraw();
        if (const LinePanel shown = window_.Panels().Shown();
            shown == LinePanel::Confirm || shown == LinePanel::Secrets)
            HidePanel();
    });
}

void LineTrouble::Stop() { disconnect(&window_.Emulator(), nullptr, this, nullptr); }

// --- what the line reports

void LineTrouble::CommError(quint32& word, const QString& description, bool fatal)
{
    const bool panelUp = window_.Panels().Shown() == LinePanel::Reconnect;
    if ((word & 0xFFFF) == LineErrorNumber::NotConnected && lastError_ != 0 && panelUp) {
        word = 0; // the panel tells the story already
        return;
    }
    lastError_ = word;
    const bool canResume = word & LineErrorCanResume;
    word &= NumberMask;
    const auto session = LiveSession(application_, window_);
    if (!session)
        return;
    const quint32 number = std::exchange(word, 0); // dealt with below
    if ((session->AutoClose() || OnNetworkDevice(*session)) &&
        std::ranges::find(ErrorsOfDisconnect, number) != ErrorsOfDisconnect.end())
        return;
    if (number == HostUnknown || number == HostChanged) {
        ConfirmHostKey(description);
        return;
    }
    if (number == 0 || !(fatal || session->ShowErrs()))
        return;
    if (number < FirstGeneralError || canResume)
        ShowReconnect(description);
    else
        Say(description, number);
}

// The control words its question for a box with Yes and No; the panel's buttons have names of their own.
void LineTrouble::ConfirmHostKey(QString text)
{
    const auto replaceFirst = [&text](const QString& from, const QString& to) {
        if (const qsizetype at = text.indexOf(from); at >= 0)
            text.replace(at, from.size(), to);
    };
    replaceFirst(u" Yes "_s, tr("Update"));
    replaceFirst(u" No "_s, tr("Continue"));
    window_.Panels().ShowConfirm(text);
    if (IsActive()) // also behind another program's window: who comes back answers this first
        window_.Panels().TakeFocus();
    application_.Ask().Beep();
}

void LineTrouble::AskForSecrets(const LineQuestion& question)
{
    kept_.Look(question, [this, question](std::optional<Secret> secret, bool mayKeep) {
        if (secret) {
            std::vector<Secret> values;
            values.push_back(std::move(*secret));
            window_.Emulator().AnswerSecrets(LineAnswer::Choice::Continue, std::move(values));
            return;
        }
        window_.Panels().ShowSecrets(question, mayKeep);
        AttractUser();
    });
}

void LineTrouble::Disconnected()
{
    kept_.Withdraw();
    const auto session = LiveSession(application_, window_);
    if (!session)
        return;
    const bool canResume = lastError_ & LineErrorCanResume;
    if (session->AutoClose() && !canResume) {
        // From the message loop: the end may ask about changes, and that must not happen inside the line's notice.
        application_.Time().Post([&application = application_, id = session->Id()] {
            if (const auto ended = application.Sessions().Find(id))
                ReportFailure(application, [&] { ended->Terminate(TerminatePrompt::UnsavedChanges); });
        });
        return;
    }
    if (!OnNetworkDevice(*session) || window_.IsClosing())
        return;
    if (window_.Panels().Shown() == LinePanel::Reconnect)
        window_.Panels().SetCanResume(canResume); // its text stays
    else
        ShowReconnect(tr("The connection to the host has been terminated."));
}

// A script may have reconnected under the panel.
void LineTrouble::StatusChanged(qint16 status)
{
    if (status != qint16(LineState::Connected))
        return;
    lastError_ = 0;
    kept_.LetIn();
    if (window_.Panels().Shown() == LinePanel::Reconnect)
        HidePanel();
}

void LineTrouble::ShowReconnect(const QString& text)
{
    window_.Panels().SetCanResume(lastError_ & LineErrorCanResume);
    window_.Panels().ShowReconnect(text);
    AttractUser();
}

void LineTrouble::Say(const QString& text, quint32 number)
{
    MsgBoxRequest request;
    request.text = text;
    request.flags = MsgFlag::Exclamation;
    request.info = LineErrorHelp(number);
    request.title = application_.Sessions().Count() > 1 ? u"Kestrune - "_s + window_.Title() : u"Kestrune"_s;
    application_.Time().Post([&ask = application_.Ask(), request] { ask.MsgBox(request); });
}

bool LineTrouble::IsActive() const { return application_.Frame()->ActiveChild() == &window_; }

void LineTrouble::AttractUser()
{
    if (application_.IsForeground() && IsActive())
        window_.Panels().TakeFocus();
    application_.Ask().Beep();
}

// --- what the user does

void LineTrouble::HidePanel()
{
    window_.Panels().Hide();
    if (IsActive())
        window_.TakeFocus();
}

void LineTrouble::AnswerHostKey(int resetMode)
{
    HidePanel();
    ReportFailure(application_, [&] { window_.Emulator().Reset(resetMode); });
}

void LineTrouble::Pressed(LineButton button)
{
    const quint32 error = button == LineButton::Info ? lastError_ : std::exchange(lastError_, 0);
    const auto session = LiveSession(application_, window_);
    switch (button) {
    case LineButton::Reconnect:
        HidePanel();
        if (session)
            ReportFailure(application_, [&] { session->ResetComm(); });
        return;
    case LineButton::ReconnectResume:
        HidePanel();
        if (session)
            ReportFailure(application_, [&] { session->Emulator().Reset(int(ResetMode::Resume)); });
        return;
    case LineButton::CancelReconnect:
        HidePanel();
        return;
    case LineButton::CloseSession:
        window_.PostClose();
        return;
    case LineButton::Info:
        if (const QString help = LineErrorHelp(error & NumberMask); !help.isEmpty())
            window_.Panels().ShowHelp(help);
        return;
    case LineButton::ConfirmCancel:
        AnswerHostKey(int(ResetMode::HostKeyCancel));
        return;
    case LineButton::ConfirmContinue:
        AnswerHostKey(int(ResetMode::HostKeyContinue));
        return;
    case LineButton::ConfirmUpdate:
        AnswerHostKey(int(ResetMode::HostKeyUpdate));
        return;
    case LineButton::CancelSecrets:
        HidePanel();
        window_.Emulator().AnswerSecrets(LineAnswer::Choice::Cancel, {});
        return;
    }
}

void LineTrouble::SecretsTyped(std::vector<Secret> values, bool remember)
{
    HidePanel();
    kept_.Typed(values, remember);
    window_.Emulator().AnswerSecrets(remember ? LineAnswer::Choice::Update : LineAnswer::Choice::Continue,
                                     std::move(values));
}

} // namespace kestrune
