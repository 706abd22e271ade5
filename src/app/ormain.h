#pragma once

// The entry of the process: decides from the command line and the way the process was started what this run is,
// makes the one application object, and opens what was named. Also the ways of opening things that the menu
// commands share. Everything it meets comes in through ports, so that a test can start the program.

#include <app/commandline.h>
#include <automation/kestrune.h>
#include <menus/menuhost.h>
#include <ports/pieces.h>
#include <ports/questions.h>

#include <array>
#include <functional>
#include <memory>

namespace kestrune {

class Ormain : public MenuHost
{
public:
    struct Ports // all of it outlives the object
    {
        SettingsLayer& layer; // with its path set-up done
        Questions& ask;
        ConnectWizardPort& wizard;
        WelcomePort& welcome;
        SettingsDialogPort& settingsDialog;
        MigrationPort& migration;
        SingleInstancePort& running;
        SplashPort& splash;
        std::function<void()> pinProcessor; // keeps the process to one processor
        std::function<int()> colourDepth;   // of the display in bits per pixel; 0: not known
        std::function<void()> askForClass;  // asks that other programs can reach the class; may raise
        // Makes the application object; it is given this object as the commands' host.
        std::function<std::unique_ptr<Kestrune>(Ormain&, const StartMode&)> makeApplication;
    };

    enum class Outcome
    {
        Runs, // the process lives on, as long as its main window or a client keeps it
        Ends
    };

    Ormain(Ports ports, CommandLine commandLine, bool startedByPlatform);
    ~Ormain() override;

    Outcome Main();
    Kestrune* Application() const { return application_.get(); }
    void MakeApplication(); // for a start by the platform: when a client asks for the class
    void Release() { application_.reset(); }

    const std::array<int, 9>& ToolbarImageIds() const { return toolbarImages_; }

    // --- ways of opening things
    std::shared_ptr<clsSession> FileNew() override;
    int Open(bool skipScript) override;
    int FileOpenRecent(int index, bool skipScript) override;
    bool ShowSettingsDialog(clsSession* session, const QString& page, const QString& extra) override;
    void AddRecent(const QString& name);
    void RemoveRecent(const QString& name);
    bool DDEExecScript(const QString& command, const QString& sessionIndex, int& errNumber, QString& errText) override;
    bool IAmActive() const;

    // --- the rest of what commands need
    void Exit() override;
    bool RenameSession(clsSession& session) override;
    void ShowAbout() override;
    void ShowNotice(const QString& line) override;
    bool BarVisible(Bar bar) const override;
    void SetBarVisible(Bar bar, bool on) override;
    bool LargeIcons() const override;
    bool MenuAccessKeys() const override;
    QStringList RecentFiles() const override;
    bool IsRecordingMacro() const override;

    // What ends the frame after the usual questions; set by whoever made the frame.
    void SetExit(std::function<void()> exit) { exit_ = std::move(exit); }

private:
    static Kestrune& App();
    bool RunSettings();
    bool RunMigration();
    void OpenAtStart(const QString& file, bool runScript);
    void Welcome();
    bool OpenSessionFile(const QString& file);
    int CannotOpen(const QString& file);

    Ports ports_;
    CommandLine commandLine_;
    bool standAlone_;
    std::unique_ptr<Kestrune> application_;
    std::array<int, 9> toolbarImages_{};
    QString lastSettingsPage_; // an empty page request opens it again
    std::function<void()> exit_;
};

// The statements in brackets of a command, one a line. Text outside brackets is dropped; a bracket between double
// quotes does not close; one that is never closed runs to the end.
QString BracketedScript(const QString& command);
bool IsAsynchronous(const QString& command); // its last character that is no blank is "&"

// Pictures of the toolbar in their order, by the colour depth of the display.
std::array<int, 9> ToolbarImages(int bitsPerPixel);

} // namespace kestrune
