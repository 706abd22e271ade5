#include <app/missingpieces.h>

#include <emulator/control/ctlemulator.h>
#include <sessions/session.h>
#include <support/log.h>
#include <support/msgbox.h>
#include <support/notices.h>

#include <QCoreApplication>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kLinuxConsole = 16;
constexpr int kHistoryRows = 10000;

void SetUpLocalShell(clsSession& session)
{
    EmulatorSettings& settings = session.Settings();
    settings.SetValue(Setting("Device"), static_cast<qint16>(Device::Extension));
    settings.SetValue(Setting("TermType"), static_cast<qint16>(kLinuxConsole));
    settings.SetValue(Setting("Charset"), u"UTF-8"_s);
    settings.SetValue(Setting("HistoryRows"), kHistoryRows);
    session.SetChanged(false); // nothing yet that the user would want to keep
}

} // namespace

WizardResult MissingWizard::Run(clsSession& session)
{
    if (!lines_.Exists(Device::Extension)) {
        NotImplemented(ask_, u"Connection wizard"_s);
        return WizardResult::Cancelled;
    }
    SetUpLocalShell(session);
    tell_(NotImplementedLine(u"Connection wizard"_s) + u' ' +
          QCoreApplication::translate("MissingWizard", "A local shell was opened."));
    return WizardResult::Finished;
}

WelcomeChoice MissingWelcome::ShowWelcome(QString&)
{
    tell_(NotImplementedLine(u"Welcome dialog"_s));
    return WelcomeChoice::Cancelled;
}

bool MissingSettingsDialog::ShowSettingsDialog(clsSession*, const QString&, const QString&)
{
    NotImplemented(ask_, u"Settings dialog"_s);
    return false;
}

void MissingCommandPieces::ShowUpload(clsSession&) { NotImplemented(ask_, u"File upload"_s); }
void MissingCommandPieces::ShowDownload(clsSession&) { NotImplemented(ask_, u"File download"_s); }

// Until the capture dialogs stand: the text of what comes in, to a file that a dialog asks for.
void MissingCommandPieces::ShowCaptureStart(clsSession& open)
{
    constexpr int received = 1, overwrite = 1, textOnly = 128;
    constexpr int askBeforeOverwriting = 2;
    const auto session = open.shared_from_this(); // the dialog runs the message loop
    FileDialogRequest request;
    request.title = u"File Capture"_s;
    request.folder = session->Settings().Text(Setting("DefaultCaptureDir"));
    request.filter = u"All files (*.*)|*.*"_s;
    request.flags = askBeforeOverwriting;
    const auto file = ask_.SaveFile(request);
    if (!file || session->Terminated())
        return;
    session->Emulator().Capture(*file, received, overwrite | textOnly);
    if (session->Emulator().CaptureSource() == 0)
        MsgBox(ask_, u"The selected file cannot be updated. Please choose a different file."_s, MsgFlag::Exclamation);
}

void MissingCommandPieces::ShowCaptureStop(clsSession& session) { session.Emulator().CaptureEnd(); }

void MissingCommandPieces::StartMacroRecorder() { NotImplemented(ask_, u"Macro recorder"_s); }
void MissingCommandPieces::OpenScriptEditor(const QString&, const QString&)
{
    NotImplemented(ask_, u"Script editor"_s);
}
void MissingCommandPieces::RunMacro(const QString&, clsSession*) { NotImplemented(ask_, u"Macro player"_s); }
void MissingCommandPieces::InvokeMVService(int, const QString&) { NotImplemented(ask_, u"MultiValue host tools"_s); }

DialResult MissingCommandPieces::ShowDial(clsSession&, QString&)
{
    NotImplemented(ask_, u"Dialer"_s);
    return DialResult::Cancelled;
}

bool MissingCommandPieces::ShowMenuDesigner(clsSession*)
{
    NotImplemented(ask_, u"Menu designer"_s);
    return false;
}

bool MissingMigration::MigrateSettings(int mask)
{
    if (mask == 0)
        return true;
    WriteLog(NotImplementedLine(u"Import of earlier settings"_s));
    return false;
}

bool MissingSingleInstance::CheckSingleInstance(const QString&)
{
    WriteLog(NotImplementedLine(u"Search for a running program"_s) + u" This start runs on its own."_s);
    return false;
}

void MissingScriptEngine::RunFile(const QString&, const QString&, const QString&)
{
    tell_(NotImplementedLine(u"Script engine"_s));
}

void MissingScriptEngine::RunModule(const QString&, const QString&, const QString&)
{
    tell_(NotImplementedLine(u"Script engine"_s));
}

void MissingScriptEngine::RunText(const QString&, int, bool) { tell_(NotImplementedLine(u"Script engine"_s)); }

} // namespace kestrune
