#pragma once

// The whole shell from its start on, with no toolkit: real settings in a folder of its own, real sessions, and in
// place of people, hosts and missing pieces what the test says. Everything that others would notice goes to `log`.

#include <app/ormain.h>
#include <app/position.h>
#include <sessions/session.h>
#include <sessions/sessions.h>

#include "fakeapplication.h"
#include "fakecommandpieces.h"
#include "fakeframe.h"

#include <QFile>

namespace kestrune {

class ShellBench : public ConnectWizardPort,
                   public WelcomePort,
                   public SettingsDialogPort,
                   public MigrationPort,
                   public SingleInstancePort,
                   public SplashPort,
                   public FakeSurroundings
{
public:
    QString Path(const char* name) const { return folder.filePath(QLatin1String(name)); }
    QString Home(const QString& name) const { return layer.folders.HomeDir + name; }

    QString Write(const QString& name, const QByteArray& content) const
    {
        QFile file(Home(name));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot write %s", qPrintable(file.fileName()));
        file.write(content);
        return file.fileName();
    }
    QString SessionFile(const QString& name) const
    {
        return Write(name, "[Kestrune]\r\nTermType=8\r\nDevice=3\r\nHostName=host\r\n");
    }

    // What the user's hive holds under the settings root.
    QString Stored(const QString& name, const QString& below = {}) const
    {
        const auto value = user.Read(StoreKey::Settings + below, name);
        return value ? value->text : QStringLiteral("-");
    }
    void Store(const QString& name, const QString& text)
    {
        layer.store.StoreSetString(StoreKey::Settings, name, text, {});
    }

    // Starts with this one argument, or none.
    Ormain& Start(const QString& argument = {}, bool byPlatform = false)
    {
        const QStringList arguments = argument.isNull() ? QStringList() : QStringList(argument);
        return StartWith(CommandLine::FromArguments(arguments), byPlatform);
    }
    Ormain& StartWith(const CommandLine& commandLine, bool byPlatform = false)
    {
        main = std::make_unique<Ormain>(
            Ormain::Ports{layer, ask, *this, *this, *this, *this, *this, *this, [this] { Log("pin"); },
                          [] { return 24; }, [this] { Log("ask for class"); },
                          [this](Ormain& host, const StartMode& mode) { return Make(host, mode); }},
            commandLine, byPlatform);
        outcome = main->Main();
        return *main;
    }
    // A running application with no session.
    Kestrune& Run()
    {
        Store(QStringLiteral("NoWelcomePage"), QStringLiteral("1"));
        return *Start().Application();
    }
    FakeFrame& Frame() const { return *frame; }
    Kestrune& Application() const { return *main->Application(); }

    // --- pieces
    WizardResult Run(clsSession& session) override
    {
        Log("wizard");
        if (session.Visible())
            Log("shown too early");
        return wizardResult;
    }
    WelcomeChoice ShowWelcome(QString& file) override
    {
        Log("welcome");
        file = welcomeFile;
        return welcomeChoice;
    }
    bool ShowSettingsDialog(clsSession*, const QString& page, const QString&) override
    {
        Log("settings " + page.toUtf8());
        return settingsOk;
    }
    bool CheckUpgrade() override
    {
        Log("upgrade");
        return mustStop;
    }
    bool MigrateSettings(int mask) override
    {
        Log("migrate " + QByteArray::number(mask));
        return migrates;
    }
    bool CheckSingleInstance(const QString& file) override
    {
        Log("instance " + QString(file).remove(folder.path()).toUtf8());
        return handedOver;
    }
    int RegisterObject() override
    {
        Log("register");
        return 7;
    }
    void RevokeObject(int cookie) override { Log("revoke " + QByteArray::number(cookie)); }
    void ShowSplash(double) override { Log("splash"); }
    void HideSplash(double) override { Log("splash gone"); }

    void Log(const QByteArray& what) { log.append(QString::fromUtf8(what)); }
    bool Logged(const QString& what) const { return log.contains(what); }

protected:
    virtual std::unique_ptr<FrameWindow> MakeFrame(Kestrune& application)
    {
        auto made = std::make_unique<FakeFrame>(application, Ports());
        frame = made.get();
        return made;
    }

private:
    std::unique_ptr<Kestrune> Make(Ormain& host, const StartMode& mode)
    {
        Log(mode.settingsRun ? "application for settings" : "application");
        Kestrune::Parts parts{layer, clock, ask, recorder, *this, {}, {}, {}, {}, {}, {}};
        parts.makeFrame = [this](Kestrune& application) { return MakeFrame(application); };
        parts.makeCommands = [this, &host](Kestrune& application) {
            return std::make_unique<MenuCmd>(application, host, pieces);
        };
        parts.makeScriptEngine = [this](Kestrune&) {
            auto made = std::make_unique<FakeScriptEngine>();
            engine = made.get();
            return made;
        };
        parts.placeFrame = [](const GlobalValues& values, FrameWindow& window) {
            const WindowPlace place = PosFormGet(values, window);
            window.Move(place.left, place.top, place.width, place.height);
            window.SetState(place.state);
        };
        parts.keepPlace = [](GlobalValues& values, const FrameWindow& window) { PosFormSave(values, window); };
        return std::make_unique<Kestrune>(parts, mode);
    }

public:
    FakeFrame* frame = nullptr;         // of the application, while there is one
    FakeScriptEngine* engine = nullptr; // likewise, once somebody asked for it

    FakeCommandPieces pieces;                                         // what commands opened

    WizardResult wizardResult = WizardResult::Cancelled;
    WelcomeChoice welcomeChoice = WelcomeChoice::Cancelled;
    QString welcomeFile;
    bool settingsOk = true, mustStop = false, migrates = true, handedOver = false;
    QStringList log;
    Ormain::Outcome outcome = Ormain::Outcome::Ends;
    std::unique_ptr<Ormain> main;
};

} // namespace kestrune
