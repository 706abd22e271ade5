#pragma once

// An application object in memory over a folder of its own: real files, real settings room, a user who answers
// from a list, hosts that say what the test wants.

#include <platform/hive.h>
#include <platform/nativefiles.h>
#include <ports/application.h>
#include <ports/commands.h>
#include <ports/scriptengine.h>
#include <ports/sessionmenus.h>
#include <sessions/sessions.h>
#include <settings/layer.h>
#include <support/ordlst.h>

#include "fakeclock.h"
#include "fakemainwindow.h"
#include "fakemedia.h"
#include "fakequestions.h"
#include "fakesystem.h"
#include "fakewaiter.h"
#include "memorykeeper.h"
#include "memoryoutput.h"
#include "memoryprinting.h"

#include <QDir>
#include <QTemporaryDir>

namespace kestrune {

class FakeCommands : public CommandPort
{
public:
    void MenuToolAction(const QString& action, bool, clsSession* session, Cause) override
    {
        actions.push_back(action);
        if (onAction)
            onAction(action, session);
    }
    void UpdateTool(MenuTools&, int, clsSession*) override {}
    void UpdateState(clsSession*) override {}

    QStringList actions;
    std::function<void(const QString&, clsSession*)> onAction;
};

class FakeSessionMenus : public SessionMenus
{
public:
    int LoadSessionMenu(clsSession&, MenuTools&) override { return 1; }
    void InitSessionMenu(clsSession&, MenuTools&) override {}
    QString MacroList() const override { return {}; }
    void RefreshMacroMenu(MenuTools&, const QString&) override {}
};

class FakeScriptEngine : public ScriptEnginePort
{
public:
    bool IsRunning() const override { return running; }
    void RunFile(const QString& path, const QString&, const QString&) override { files.push_back(path); }
    void RunModule(const QString& text, const QString&, const QString& module) override
    {
        modules[module] = text;
        runs.push_back(text);
    }
    void RunText(const QString& text, int session, bool) override
    {
        if (failing)
            throw Failure(ErrorNumber::InvalidCall, QStringLiteral("The script is wrong"));
        texts.push_back(QString::number(session) + u':' + text);
    }
    QString ModuleText(const QString& module) const override { return modules.value(module); }
    void End() override {}

    bool running = false;
    bool failing = false;
    QStringList files, runs, texts;
    QHash<QString, QString> modules;
};

class FakeRecorder : public RecorderPort
{
public:
    bool IsRecording() const override { return recording; }
    void SessionWindowMoved(clsSession&, const WindowPlace& place, int state) override
    {
        log.push_back(QStringLiteral("moved %1,%2,%3,%4 %5")
                          .arg(place.left)
                          .arg(place.top)
                          .arg(place.width)
                          .arg(place.height)
                          .arg(state));
    }
    void SessionActivated(clsSession& session) override { log.push_back(QStringLiteral("activated ") + session.Id()); }
    void RecordText(clsSession&, const QString& text) override { log.push_back(QStringLiteral("text ") + text); }
    void RecordKey(clsSession&, const QString& text, int) override { log.push_back(QStringLiteral("key ") + text); }
    void CommandRan(const CommandRecord& record) override
    {
        commands.push_back(QStringLiteral("%1 %2 %3 %4")
                               .arg(record.id)
                               .arg(record.session != nullptr ? record.session->Id() : QStringLiteral("-"),
                                    QFileInfo(record.text).fileName())
                               .arg(record.value));
    }
    QStringList TakeLog() { return std::exchange(log, {}); }

    bool recording = false;
    QStringList log;
    QStringList commands;
};

// Where a shell stands in a test: settings in a folder of its own, and in place of people, hosts, clock, clipboard and
// recorder what the test says.
struct FakeSurroundings
{
    explicit FakeSurroundings(SaveCalls calls = {})
        : system(SystemIn(folder.path())), files(std::move(calls)),
          user(files, folder.filePath(QStringLiteral("user.hive"))),
          machine(files, folder.filePath(QStringLiteral("machine.hive"))),
          layer(PathStyle::Native(), files, system, user, machine)
    {}

    EmulatorPorts Ports()
    {
        return {lines, clock, layer.keyFiles, ask, clipboard, texts, waiter, outputs, printing, media};
    }

    QTemporaryDir folder;
    FakeSystem system;
    NativeFileSystem files;
    FileHive user;
    FileHive machine;
    SettingsLayer layer;
    FakeClock clock;
    MemoryKeeper keeper{clock};
    FakeQuestions ask;
    FakeClipboard clipboard;
    FakeLineFactory lines;
    MemoryTextFiles texts;
    FakeWaiter waiter{clock};
    MemoryOutputFiles outputs{clock};
    MemoryPrinting printing{clock};
    FakeMedia media;
    FakeRecorder recorder;

private:
    static FakeSystem SystemIn(const QString& path)
    {
        QDir(path).mkpath(QStringLiteral("home"));
        QDir(path).mkpath(QStringLiteral("program"));
        FakeSystem made;
        made.home = path + QStringLiteral("/home");
        made.personal = made.home;
        made.config = path + QStringLiteral("/config");
        made.appData = path + QStringLiteral("/data");
        made.program = path + QStringLiteral("/program/kestrune");
        return made;
    }
};

class FakeApplication : public ApplicationPort, public FakeSurroundings
{
public:
    FakeApplication() : FakeSurroundings(std::exchange(nextCalls, {})), sessions(*this), frame(*this, Ports()) {}

    // A path in the home folder of this application.
    QString Path(const QString& name) const { return layer.folders.HomeDir + name; }

    clsSessions& Sessions() override { return sessions; }
    OrderedList& Order() override { return order; }
    RecorderPort& Recorder() override { return recorder; }
    CommandPort& Commands() override { return commands; }
    Questions& Ask() override { return ask; }
    ScriptEnginePort* ScriptEngine(bool) override { return &engine; }
    SessionMenus& Menus() override { return menus; }
    MainWindow* Frame() override { return &frame; }
    SettingsLayer& Layer() override { return layer; }
    Clock& Time() override { return clock; }
    SecretKeeper* Keeper() override { return &keeper; }

    int TitleFormat() const override { return titleFormat; }
    bool AutoClose() const override { return autoClose; }
    bool NoCloseWarning() const override { return noCloseWarning; }
    void SetNoCloseWarning(bool on) override { noCloseWarning = on; }
    int InitChildWindowState() const override { return initState; }
    void SetInitChildWindowState(int state) override { initState = state; }
    bool TrackKeyboardState() const override { return false; }
    int CustomMode() const override { return 0; }
    bool FuncBarVisible() const override { return funcBarVisible; }
    int FuncBarPos() const override { return 1; }
    int FuncBarStyle() const override { return 2; }
    int FuncBarBank() const override { return funcBarBank; }
    void SetFuncBarBank(int bank) override { funcBarBank = bank; }
    QString CustomMouseTable() const override { return customMouseTable; }
    QString DefaultCaptureDir() const override { return QStringLiteral("/captures"); }
    QString DefaultXferDir() const override { return QStringLiteral("/transfers"); }
    QString PhoneBookName() const override { return {}; }
    void SetPhoneBookName(const QString&) override {}
    QString DialedNumber() const override { return dialedNumber; }
    void SetDialedNumber(const QString& number) override { dialedNumber = number; }
    QString DialedName() const override { return {}; }
    void SetDialedName(const QString&) override {}
    int NextSessionNumber() override { return ++counter; }
    void SessionWasCreated() override { sessionCreated = true; }
    void SessionHasEnded() override { sessionEnded = true; }
    bool IsQuitting() const override { return quitting; }
    void ClearQuitting() override { quitting = false; }
    int PendingPrompt() const override { return pendingPrompt; }
    void ClearPendingPrompt() override { pendingPrompt = 0; }
    bool CloseSweep() const override { return closeSweep; }
    void SetCloseSweep(bool on) override { closeSweep = on; }
    QString LayoutFileName() const override { return layoutFileName; }
    void SetLayoutFileName(const QString& name) override { layoutFileName = name; }
    bool IsForeground() const override { return foreground; }
    void AddRecent(const QString& name) override
    {
        recent.removeAll(name);
        recent.prepend(name);
    }
    void RemoveRecent(const QString& name) override { recent.removeAll(name); }
    void Terminate(int prompt) override { terminations.push_back(prompt); }

    static inline SaveCalls nextCalls; // what saves of the next application stand on: a disk that is full ...
    FakeCommands commands;
    FakeSessionMenus menus;
    FakeScriptEngine engine;
    OrderedList order;
    clsSessions sessions;
    FakeMainWindow frame;

    int titleFormat = 4;
    bool autoClose = false;
    bool noCloseWarning = false;
    int initState = 0;
    bool funcBarVisible = false;
    int funcBarBank = 0;
    QString customMouseTable;
    QString dialedNumber;
    int counter = 0;
    bool sessionCreated = false;
    bool sessionEnded = false;
    bool quitting = false;
    int pendingPrompt = 3;
    bool closeSweep = false;
    QString layoutFileName;
    bool foreground = true;
    QStringList recent;
    std::vector<int> terminations;
};

} // namespace kestrune
