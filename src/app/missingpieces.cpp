#include <app/missingpieces.h>

#include <emulator/control/ctlemulator.h>
#include <sessions/session.h>
#include <support/log.h>
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
