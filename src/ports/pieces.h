#pragma once

// Rooms that the start and the commands call and that have issues of their own. The version that stands in
// for a missing piece tells the user so in one clear line (support/notices.h) and gives the answer "cancelled".

#include <QString>

namespace kestrune {

class clsSession;

enum class WizardResult : int
{
    Cancelled = 0,
    Finished = 1,
    Settings = 2,
    SettingsNeverAgain = 3,
    FinishedNeverAgain = 4
};

class ConnectWizardPort
{
public:
    virtual ~ConnectWizardPort() = default;
    virtual WizardResult Run(clsSession& session) = 0;
};

enum class WelcomeChoice : int
{
    Cancelled = 0,
    NewSession = 1,
    Browse = 2,
    OpenFile = 3
};

class WelcomePort
{
public:
    virtual ~WelcomePort() = default;
    virtual WelcomeChoice ShowWelcome(QString& file) = 0;
};

class SettingsDialogPort
{
public:
    virtual ~SettingsDialogPort() = default;
    // session: null for the application alone; page: one letter, empty for the page shown last
    virtual bool ShowSettingsDialog(clsSession* session, const QString& page, const QString& extra) = 0;
};

enum class DialResult : int
{
    Cancelled = 0,
    Dial = 1,
    HangUp = 2
};

enum class HelpPage
{
    Contents,
    Index
};

// What commands open.
class CommandPieces
{
public:
    virtual ~CommandPieces() = default;
    virtual void ShowUpload(clsSession& session) = 0;
    virtual void ShowDownload(clsSession& session) = 0;
    virtual void ShowCaptureStart(clsSession& session) = 0;
    virtual void ShowCaptureStop(clsSession& session) = 0;
    virtual DialResult ShowDial(clsSession& session, QString& number) = 0; // number: what to dial
    virtual bool ShowMenuDesigner(clsSession* session) = 0;                // true: menu files have changed
    virtual void StartMacroRecorder() = 0;
    virtual void OpenScriptEditor(const QString& kind, const QString& name) = 0;
    virtual void RunMacro(const QString& name, clsSession* session) = 0;
    virtual bool HasHostTool(int id) const = 0;
    virtual void InvokeMVService(int id, const QString& sessionId) = 0;
    virtual void ShowHelp(HelpPage page) = 0;
    virtual void OpenDocument(const QString& path) = 0; // a file that is there
};

class MigrationPort
{
public:
    virtual ~MigrationPort() = default;
    virtual bool CheckUpgrade() = 0; // true: this run must stop
    virtual bool MigrateSettings(int mask) = 0;
};

class SingleInstancePort
{
public:
    virtual ~SingleInstancePort() = default;
    virtual bool CheckSingleInstance(const QString& file) = 0; // true: handed over, end at once
    virtual int RegisterObject() = 0;                          // a cookie; 0: none
    virtual void RevokeObject(int cookie) = 0;
};

class SplashPort
{
public:
    virtual ~SplashPort() = default;
    virtual void ShowSplash(double minimumSeconds) = 0;
    virtual void HideSplash(double fadeSeconds) = 0;
};

} // namespace kestrune
