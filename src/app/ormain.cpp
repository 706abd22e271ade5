#include <app/ormain.h>

#include <emulator/control/ctlemulator.h>
#include <ports/recorder.h>
#include <ports/sessionwindow.h>
#include <sessions/files.h>
#include <sessions/layout.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <support/errors.h>
#include <support/msgbox.h>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kPromptLikeUser = 3;

struct BarSetting
{
    Bar bar;
    GlobalId id;
};

constexpr BarSetting kBarSettings[] = {{Bar::ToolBar, GlobalId::ToolbarVisible},
                                       {Bar::StatusLine, GlobalId::StatusLineVisible},
                                       {Bar::SessionBar, GlobalId::SessionBarVisible},
                                       {Bar::FuncBar, GlobalId::FuncBarVisible}};

GlobalId SettingOf(Bar bar) { return kBarSettings[static_cast<int>(bar)].id; }

// The waiting pointer while the application object is made.
class StartHourglass
{
public:
    explicit StartHourglass(Questions& ask) : ask_(ask) { ask_.Hourglass(true); }
    ~StartHourglass() { ask_.Hourglass(false); }
    StartHourglass(const StartHourglass&) = delete;
    StartHourglass& operator=(const StartHourglass&) = delete;

private:
    Questions& ask_;
};

} // namespace

std::array<int, 9> ToolbarImages(int bitsPerPixel)
{
    constexpr int unknownDepth = 8;
    constexpr int leastDepth = 4;
    const int depth = bitsPerPixel > 0 ? std::max(bitsPerPixel, leastDepth) : unknownDepth;
    const int base = depth < 32 ? 8110 : 8210;
    std::array<int, 9> ids{};
    for (int i = 0; i < 8; ++i)
        ids[static_cast<std::size_t>(i)] = base + i;
    ids[8] = base + 1; // the second picture stands for the ninth as well
    return ids;
}

bool IsAsynchronous(const QString& command) { return command.trimmed().endsWith(u'&'); }

QString BracketedScript(const QString& command)
{
    QString script;
    for (qsizetype at = command.indexOf(u'['); at >= 0; at = command.indexOf(u'[', at)) {
        const qsizetype begin = ++at;
        for (bool quoted = false; at < command.size() && (quoted || command[at] != u']'); ++at)
            if (command[at] == u'"')
                quoted = !quoted;
        script += QStringView(command).mid(begin, at - begin);
        script += "\r\n"_L1;
    }
    return script;
}

Ormain::Ormain(Ports ports, CommandLine commandLine, bool startedByPlatform)
    : ports_(std::move(ports)), commandLine_(std::move(commandLine)), standAlone_(!startedByPlatform)
{}

Ormain::~Ormain() = default;

// Also while it is being made: its own constructor loads the menu.
Kestrune& Ormain::App() { return *Kestrune::Application(); }

// The order is a promise to the rest: migration ends before a setting is read, the search for a running first
// instance comes before anything that registers or shows, and the application object is there before a file opens.
Ormain::Outcome Ormain::Main()
{
    ports_.pinProcessor();
    if (RunSettings() || RunMigration())
        return Outcome::Ends;
    toolbarImages_ = ToolbarImages(ports_.colourDepth());
    if (ports_.migration.CheckUpgrade())
        return Outcome::Ends;
    if (!standAlone_)
        return Outcome::Runs; // the application object is made when a client asks for the class

    const QString named = commandLine_.FirstArgument();
    const QString file = named.isEmpty() ? QString() : GetFilePath(ports_.layer, named, u"orcf"_s);
    if (ports_.running.CheckSingleInstance(file))
        return Outcome::Ends;
    ports_.splash.ShowSplash(0.0);
    {
        const StartHourglass hourglass(ports_.ask);
        MakeApplication();
        Silently([this] { ports_.askForClass(); });
        ports_.splash.HideSplash(0.5);
    }
    if (!file.isEmpty())
        OpenAtStart(file, true);
    Welcome();
    return Outcome::Runs;
}

void Ormain::MakeApplication()
{
    application_ = ports_.makeApplication(*this, {standAlone_, false, commandLine_.Text()});
}

bool Ormain::RunSettings()
{
    if (!commandLine_.Is(u"/settings"_s))
        return false;
    application_ = ports_.makeApplication(*this, {true, true, commandLine_.Text()});
    ShowSettingsDialog(nullptr, {}, {});
    application_.reset();
    return true;
}

bool Ormain::RunMigration()
{
    if (!commandLine_.KeyIs(u"/migrate"_s))
        return false;
    if (!ports_.migration.MigrateSettings(ParseNumber(commandLine_.Value())))
        ports_.ask.MsgBox({u"Settings import failed!"_s, MsgFlag::Ok, u"Kestrune 7 Upgrade"_s, 0});
    return true;
}

void Ormain::OpenAtStart(const QString& file, bool runScript)
{
    Guarded(ports_.ask, u"Main"_s, u"Ormain"_s, [&] {
        switch (FileKind(ports_.layer, file)) {
        case FileType::Session:
            OpenSessionFile(file);
            break;
        case FileType::Layout:
            OpenLayout(App(), file, LayoutScript::Run);
            break;
        case FileType::Script:
            if (runScript)
                application_->ScriptEngine(false)->RunFile(file, u"Main"_s, u"Main"_s);
            break;
        case FileType::Unknown:
            break; // no message
        }
    });
}

void Ormain::Welcome()
{
    constexpr int minimised = 1;
    // The frame may have been closed by what the file did.
    if (application_ == nullptr || !application_->Visible() || application_->WindowState() == minimised ||
        application_->Boolean(GlobalId::NoWelcomePage) || application_->SessionCreated())
        return;
    QString file;
    switch (ports_.welcome.ShowWelcome(file)) {
    case WelcomeChoice::NewSession:
        FileNew();
        break;
    case WelcomeChoice::Browse:
        Open(false);
        break;
    case WelcomeChoice::OpenFile:
        if (SpecParts parts; ports_.layer.spec.ParseFileSpec(file, parts) == SpecResult::File)
            OpenAtStart(file, false); // a script chosen there is not run
        break;
    case WelcomeChoice::Cancelled:
        break;
    }
}

// --- ways of opening things

std::shared_ptr<clsSession> Ormain::FileNew()
{
    auto session =
        App().Sessions().Add({}, App().InitChildWindowState(), 0, AddHidden::NotShown | AddHidden::NotOnLine);
    if (session == nullptr)
        return nullptr;
    WizardResult result = WizardResult::Settings;
    if (!App().Boolean(GlobalId::NoConnectWizard)) {
        result = ports_.wizard.Run(*session);
        if (result == WizardResult::SettingsNeverAgain || result == WizardResult::FinishedNeverAgain) {
            App().SetBoolean(GlobalId::NoConnectWizard, true);
            result = result == WizardResult::SettingsNeverAgain ? WizardResult::Settings : WizardResult::Finished;
        }
    }
    if (session->Terminated()) // the wizard runs the message loop
        return nullptr;
    if (result != WizardResult::Cancelled)
        session->Show();
    if (result == WizardResult::Settings && !ShowSettingsDialog(session.get(), u"D"_s, {}))
        result = WizardResult::Cancelled;
    if (result == WizardResult::Cancelled) {
        session->Terminate(TerminatePrompt::UnsavedChanges);
        return nullptr;
    }
    if (session->Terminated())
        return nullptr;
    session->Emulator().SetOnLine(true);
    return session;
}

bool Ormain::OpenSessionFile(const QString& file)
{
    if (App().Sessions().Add(file, App().InitChildWindowState(), 0, 0) == nullptr)
        return false;
    AddRecent(file);
    return true;
}

int Ormain::CannotOpen(const QString& file)
{
    MsgBox(ports_.ask, u"Unable to open "_s + file, MsgFlag::Exclamation);
    return 0;
}

int Ormain::Open(bool skipScript)
{
    FileDialogRequest request;
    request.title = u"Open"_s;
    request.folder = ports_.layer.folders.SessionDir;
    request.filter = u"Kestrune Files (*.orcf,*.orly,*.cfg,*.lyt)|*.orcf;*.orly;*.cfg;*.lyt|All Files (*.*)|*.*"_s;
    request.defaultExtension = u"orcf"_s;
    request.flags = 0x201008; // long names, the file must exist, the working folder stays
    const QString file = ports_.ask.OpenFile(request).value_or(QString());
    if (file.isEmpty())
        return 0;
    const auto script = skipScript ? LayoutScript::Skip : LayoutScript::Run;
    // Layouts first, other than at start: a file with the marks of both is a layout here.
    if (IsLayoutFile(ports_.layer, file))
        return OpenLayout(App(), file, script);
    bool opened = false;
    if (IsConfigFile(ports_.layer, file)) {
        try {
            opened = OpenSessionFile(file);
        } catch (const Failure& failure) {
            ShowNotice(failure.Text());
        }
    }
    return opened ? 1 : CannotOpen(file);
}

int Ormain::FileOpenRecent(int index, bool skipScript)
{
    clsRecentList& recent = App().RecentList();
    if (index < 1 || index > recent.ListCount())
        return 0;
    QString file = recent.ListItem(index);
    const QString shown = file;
    SpecParts parts;
    if (ports_.layer.spec.ParseFileSpec(file, parts) == SpecResult::File) {
        if (IsLayoutFile(ports_.layer, file))
            return OpenLayout(App(), file, skipScript ? LayoutScript::Skip : LayoutScript::Run);
        if (IsConfigFile(ports_.layer, file) &&
            App().Sessions().Add(file, App().InitChildWindowState(), 0, 0) != nullptr) {
            AddRecent(file);
            return 1;
        }
    }
    return CannotOpen(shown); // the entry stays: the file may come back
}

bool Ormain::ShowSettingsDialog(clsSession* session, const QString& page, const QString& extra)
{
    const QString shown = page.isEmpty() ? lastSettingsPage_ : page;
    const bool ok = ports_.settingsDialog.ShowSettingsDialog(session, shown, extra);
    if (ok && extra.size() != 1)
        lastSettingsPage_ = shown;
    return ok;
}

void Ormain::AddRecent(const QString& name) { App().AddRecent(name); }

void Ormain::RemoveRecent(const QString& name) { App().RemoveRecent(name); }

bool Ormain::DDEExecScript(const QString& command, const QString& sessionIndex, int& errNumber, QString& errText)
{
    errNumber = 0;
    errText.clear();
    try {
        App().ScriptEngine(false)->RunText(BracketedScript(command), ParseNumber(sessionIndex),
                                           IsAsynchronous(command));
        return true;
    } catch (const Failure& failure) {
        errNumber = static_cast<int>(failure.Number());
        errText = failure.Text();
        return false;
    }
}

bool Ormain::IAmActive() const { return Kestrune::Application() != nullptr && App().IsForeground(); }

// --- the rest of what commands need

void Ormain::Exit()
{
    App().SetPendingPrompt(kPromptLikeUser);
    if (exit_)
        exit_();
}

bool Ormain::RenameSession(clsSession& session)
{
    return App().MainWindow() != nullptr && App().MainWindow()->RenameTab(session);
}

void Ormain::ShowAbout()
{
    if (App().MainWindow() != nullptr)
        App().MainWindow()->ShowAbout();
}

void Ormain::ShowNotice(const QString& line)
{
    if (Kestrune::Application() != nullptr && App().MainWindow() != nullptr)
        App().MainWindow()->ShowNotice(line);
}

bool Ormain::BarVisible(Bar bar) const { return Kestrune::Application() != nullptr && App().Boolean(SettingOf(bar)); }

void Ormain::SetBarVisible(Bar bar, bool on) { App().SetBoolean(SettingOf(bar), on); }

bool Ormain::LargeIcons() const { return Kestrune::Application() != nullptr && App().Boolean(GlobalId::LargeIcons); }
bool Ormain::MenuAccessKeys() const
{
    return Kestrune::Application() != nullptr && App().Boolean(GlobalId::MenuAccessKeys);
}

QStringList Ormain::RecentFiles() const
{
    const Folders& folders = ports_.layer.folders;
    constexpr auto documents = "my documents\\"_L1;
    QStringList shown;
    clsRecentList& recent = App().RecentList();
    for (int i = 1; i <= recent.ListCount(); ++i) {
        QString path = ports_.layer.spec.ContractPath(recent.ListItem(i), folders.SessionDir, folders.DocumentsDir);
        if (path.startsWith(documents, Qt::CaseInsensitive))
            path = path.mid(documents.size());
        shown.append(path);
    }
    return shown;
}

bool Ormain::IsRecordingMacro() const { return App().Recorder().IsRecording(); }

} // namespace kestrune
