#pragma once

// What stands behind the ports of pieces that are not there yet. Each tells the user so in one line and gives the
// answer "cancelled", or the nearest thing that serves the user.

#include <ports/line.h>
#include <ports/pieces.h>
#include <ports/scriptengine.h>

#include <functional>

namespace kestrune {

class Questions;

using Tell = std::function<void(const QString& line)>; // in the status line

// A new session is a local shell where there is one; without, it is cancelled.
class MissingWizard : public ConnectWizardPort
{
public:
    MissingWizard(const LineFactory& lines, Questions& ask, Tell tell)
        : lines_(lines), ask_(ask), tell_(std::move(tell))
    {}
    WizardResult Run(clsSession& session) override;

private:
    const LineFactory& lines_;
    Questions& ask_;
    Tell tell_;
};

// The page of the empty main window offers the same choices.
class MissingWelcome : public WelcomePort
{
public:
    explicit MissingWelcome(Tell tell) : tell_(std::move(tell)) {}
    WelcomeChoice ShowWelcome(QString& file) override;

private:
    Tell tell_;
};

class MissingSettingsDialog : public SettingsDialogPort
{
public:
    explicit MissingSettingsDialog(Questions& ask) : ask_(ask) {}
    bool ShowSettingsDialog(clsSession* session, const QString& page, const QString& extra) override;

private:
    Questions& ask_;
};

// Each command says that its piece is not there yet. Documents and help are opened.
class MissingCommandPieces : public CommandPieces
{
public:
    MissingCommandPieces(Questions& ask, std::function<void(const QString&)> openDocument,
                         std::function<void(HelpPage)> showHelp)
        : ask_(ask), openDocument_(std::move(openDocument)), showHelp_(std::move(showHelp))
    {}
    void ShowUpload(clsSession& session) override;
    void ShowDownload(clsSession& session) override;
    void ShowCaptureStart(clsSession& session) override;
    void ShowCaptureStop(clsSession& session) override;
    DialResult ShowDial(clsSession& session, QString& number) override;
    bool ShowMenuDesigner(clsSession* session) override;
    void StartMacroRecorder() override;
    void OpenScriptEditor(const QString& kind, const QString& name) override;
    void RunMacro(const QString& name, clsSession* session) override;
    bool HasHostTool(int) const override { return false; }
    void InvokeMVService(int id, const QString& sessionId) override;
    void ShowHelp(HelpPage page) override { showHelp_(page); }
    void OpenDocument(const QString& path) override { openDocument_(path); }

private:
    Questions& ask_;
    std::function<void(const QString&)> openDocument_;
    std::function<void(HelpPage)> showHelp_;
};

class MissingMigration : public MigrationPort
{
public:
    bool CheckUpgrade() override { return false; } // nothing is taken over, so nothing stops the run
    bool MigrateSettings(int mask) override;       // a mask of 0 imports nothing, and that works
};

// Every start is a first one.
class MissingSingleInstance : public SingleInstancePort
{
public:
    bool CheckSingleInstance(const QString& file) override;
    int RegisterObject() override { return 0; }
    void RevokeObject(int) override {}
};

class MissingScriptEngine : public ScriptEnginePort
{
public:
    explicit MissingScriptEngine(Tell tell) : tell_(std::move(tell)) {}
    bool IsRunning() const override { return false; }
    void RunFile(const QString& path, const QString& entry, const QString& title) override;
    void RunModule(const QString& text, const QString& procedure, const QString& module) override;
    void RunText(const QString& text, int sessionNumber, bool asynchronous) override;
    QString ModuleText(const QString&) const override { return {}; }
    void End() override {}

private:
    Tell tell_;
};

} // namespace kestrune
