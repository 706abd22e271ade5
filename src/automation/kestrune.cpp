#include <automation/kestrune.h>

#include <emulator/control/ctlemulator.h>
#include <sessions/layout.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <settings/layer.h>
#include <support/errors.h>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

Kestrune* theApplication = nullptr; // the one application object of the process

constexpr int kRecentCapacity = 25;
constexpr int kWindowNormal = 0, kWindowMinimised = 1, kWindowMaximised = 2;

bool IsWindowState(int state) { return state >= kWindowNormal && state <= kWindowMaximised; }

const QString kDefaultCaption = QStringLiteral("Kestrune 7");

void ApplyBarSetting(Kestrune& application, Bar bar, GlobalId id)
{
    if (FrameWindow* frame = application.MainWindow())
        frame->ApplyBar(bar, application.Boolean(id));
}

void ApplyFuncBars(Kestrune& application)
{
    for (const auto& session : application.Sessions().All())
        session->ApplyFuncBar();
}

// What a changed setting does at once, beside being stored.
struct Effect
{
    GlobalId id;
    void (*apply)(Kestrune&);
};

constexpr Effect kEffects[] = {
    {GlobalId::RecentListSize, [](Kestrune& a) { a.RecentList().SetListSize(a.Number(GlobalId::RecentListSize)); }},
    {GlobalId::TrackKeyboardState,
     [](Kestrune& a) {
         for (const auto& session : a.Sessions().All())
             session->Emulator().SetTrackKeyboardState(a.TrackKeyboardState());
     }},
    {GlobalId::TitleFormat,
     [](Kestrune& a) {
         for (const auto& session : a.Sessions().All())
             session->SetSessionTitle();
     }},
    {GlobalId::LargeIcons,
     [](Kestrune& a) {
         if (FrameWindow* frame = a.MainWindow())
             frame->ApplyLargeIcons(a.Boolean(GlobalId::LargeIcons));
     }},
    {GlobalId::ToolbarVisible, [](Kestrune& a) { ApplyBarSetting(a, Bar::ToolBar, GlobalId::ToolbarVisible); }},
    {GlobalId::StatusLineVisible,
     [](Kestrune& a) { ApplyBarSetting(a, Bar::StatusLine, GlobalId::StatusLineVisible); }},
    {GlobalId::SessionBarVisible,
     [](Kestrune& a) { ApplyBarSetting(a, Bar::SessionBar, GlobalId::SessionBarVisible); }},
    {GlobalId::FuncBarVisible, ApplyFuncBars}, // a bar of each terminal, not of the frame
    {GlobalId::FuncBarPos, ApplyFuncBars},
    {GlobalId::FuncBarStyle, ApplyFuncBars},
    {GlobalId::MenuAccessKeys, [](Kestrune& a) { a.Menu().ReloadMenus(); }},
    {GlobalId::CustomTitle,
     [](Kestrune& a) {
         if (FrameWindow* frame = a.MainWindow())
             frame->SetCaption(a.Caption());
     }},
    {GlobalId::CustomIcon,
     [](Kestrune& a) {
         if (FrameWindow* frame = a.MainWindow())
             frame->ChangeIcon(a.Text(GlobalId::CustomIcon));
     }},
};

} // namespace

Kestrune* Kestrune::Application() { return theApplication; }

Kestrune::Kestrune(const Parts& parts, StartMode mode)
    : parts_(parts), mode_(std::move(mode)), iniPath_(InstallationIniFile(parts.layer.folders)),
      stored_(parts.layer.spec, parts.layer.folders, parts.layer.store, parts.layer.profile, iniPath_)
{
    if (theApplication != nullptr)
        return; // secondary: a client reaches the first one through the registration
    primary_ = true;
    recent_.SetMaxListSize(kRecentCapacity);
    recent_.SetListSize(4);
    sessions_ = std::make_unique<clsSessions>(*this);
    commands_ = parts_.makeCommands(*this);
    theApplication = this;
    if (mode_.settingsRun) {
        Load();
        return;
    }
    frame_ = parts_.makeFrame(*this);
    frame_->SetCaption(kDefaultCaption);
    Load();
    cookie_ = parts_.running.RegisterObject();
    if (mode_.standAlone) {
        parts_.placeFrame(stored_, *frame_);
        frame_->SetVisible(true);
    } else {
        frame_->SetState(kWindowMinimised); // an icon until the client moves it
        frame_->SetVisible(true);
    }
}

Kestrune::~Kestrune()
{
    if (!primary_)
        return;
    Silently([this] {
        if (engine_ != nullptr)
            engine_->End();
    });
    engine_.reset();
    sessions_.reset();
    order_.Reset();
    frame_.reset();
    commands_.reset();
    theApplication = nullptr;
}

std::shared_ptr<clsSession> Kestrune::ActiveSession() const
{
    const SessionWindow* child = frame_ != nullptr && sessions_ != nullptr ? frame_->ActiveChild() : nullptr;
    return child != nullptr ? sessions_->Find(child->Tag()) : nullptr;
}

void Kestrune::RevokeObject()
{
    if (cookie_ != 0)
        parts_.running.RevokeObject(std::exchange(cookie_, 0));
}

ScriptEnginePort* Kestrune::ScriptEngine(bool noCreate)
{
    if (engine_ == nullptr && !noCreate)
        engine_ = parts_.makeScriptEngine(*this);
    return engine_.get();
}

// --- global settings

int Kestrune::Number(GlobalId id) const { return ParseNumber(Text(id)); }

void Kestrune::SetText(GlobalId id, const QString& value)
{
    QString& held = held_[static_cast<std::size_t>(id)];
    if (held == value)
        return;
    held = value;
    WriteThrough(id);
    Apply(id);
}

void Kestrune::SetNumber(GlobalId id, int value)
{
    if (id == GlobalId::RecentListSize && (value < 0 || value > kRecentCapacity))
        throw Failure(ErrorNumber::BadRecentListSize, u"Invalid RecentListSize setting"_s, u"Kestrune"_s);
    if (id == GlobalId::InitChildWindowState && !IsWindowState(value))
        return; // scripts of earlier releases set it carelessly
    SetText(id, QString::number(value));
}

void Kestrune::WriteThrough(GlobalId id)
{
    // The state of new session windows changes with every window moved; it is stored at the end.
    if (!loading_ && id != GlobalId::InitChildWindowState)
        stored_.SetText(id, Text(id));
}

void Kestrune::Apply(GlobalId id)
{
    for (const Effect& effect : kEffects)
        if (effect.id == id)
            effect.apply(*this);
}

void Kestrune::LoadOne(GlobalId id)
{
    const bool isText = GlobalSettingOf(id).type == GlobalType::Text || GlobalSettingOf(id).type == GlobalType::Path;
    Silently([&] {
        if (isText)
            SetText(id, stored_.Text(id));
        else
            SetNumber(id, stored_.Number(id));
    });
}

void Kestrune::LoadGlobalSettings()
{
    loading_ = true;
    for (const GlobalSetting& setting : GlobalSettingsTable())
        if (setting.phase == GlobalPhase::Settings)
            LoadOne(setting.id);
    if (parts_.setSplash)
        parts_.setSplash(Text(GlobalId::Splash));
    loading_ = false;
}

void Kestrune::SaveGlobalSettings()
{
    for (const GlobalSetting& setting : GlobalSettingsTable())
        if (setting.phase == GlobalPhase::Settings)
            stored_.SetText(setting.id, Text(setting.id));
}

Ref<clsMenu> Kestrune::MenuObject(clsSession* session)
{
    if (std::exchange(menuReloads_, commands_->Reloads()) != commands_->Reloads())
        menuObjects_.clear();
    std::erase_if(menuObjects_, [this](const auto& entry) {
        return !entry.first.isEmpty() && sessions_->Find(entry.first) == nullptr; // its session has ended
    });
    Ref<clsMenu>& object = menuObjects_[session != nullptr ? session->Id() : QString()];
    if (object)
        return object;
    if (session == nullptr) {
        object =
            MakeObject<clsMenu>(frame_->Menu(), [this](taMenuBar&, const QString& band) { frame_->ShowPopup(band); });
    } else if (auto* bars = dynamic_cast<taMenuBar*>(&session->frmSession()->Tools())) {
        const QString id = session->Id();
        object = MakeObject<clsMenu>(*bars, [this, id](taMenuBar&, const QString& band) {
            if (const auto shown = sessions_->Find(id))
                shown->frmSession()->ShowPopup(band);
        });
    }
    return object;
}

void Kestrune::Load()
{
    LoadGlobalSettings();
    if (frame_ == nullptr)
        return;
    commands_->LoadFrameMenu(frame_->Menu());
    loading_ = true;
    for (const GlobalSetting& setting : GlobalSettingsTable())
        if (setting.phase == GlobalPhase::Run)
            LoadOne(setting.id);
    loading_ = false;
    LoadRecentList();
}

void Kestrune::Save()
{
    SaveGlobalSettings();
    SaveAtClose();
    RewriteRecentList();
}

void Kestrune::SaveAtClose() { stored_.SetText(GlobalId::InitChildWindowState, Text(GlobalId::InitChildWindowState)); }

void Kestrune::SavePosition()
{
    if (frame_ != nullptr)
        parts_.keepPlace(stored_, *frame_);
}

QString Kestrune::Caption() const
{
    const QString custom = Text(GlobalId::CustomTitle);
    return custom.isEmpty() ? kDefaultCaption : custom;
}

int Kestrune::FuncBarBank() const
{
    return ParseNumber(parts_.layer.store.StoreGetString(StoreKey::Settings, u"FuncBarBank"_s, u"0"_s));
}

void Kestrune::SetFuncBarBank(int bank)
{
    parts_.layer.store.StoreSetString(StoreKey::Settings, u"FuncBarBank"_s, QString::number(bank), u"0"_s);
}

// --- recent files

QString Kestrune::Normalised(const QString& name) const
{
    QString path = name;
    SpecParts parts;
    parts_.layer.spec.ParseFileSpec(path, parts);
    return path;
}

void Kestrune::AddRecent(const QString& name)
{
    recent_.AddItem(Normalised(name));
    RewriteRecentList();
}

void Kestrune::RemoveRecent(const QString& name)
{
    recent_.RemoveItem(Normalised(name));
    RewriteRecentList();
}

void Kestrune::LoadRecentList()
{
    QStringList names;
    for (int i = 1; i <= recent_.ListSize(); ++i) {
        const QString stored = parts_.layer.store.StoreGetString(StoreKey::RecentFiles, u"File_%1"_s.arg(i), {});
        if (!stored.isEmpty())
            names.append(
                parts_.layer.spec.ExpandPath(stored, parts_.layer.folders.HomeDir, parts_.layer.folders.DocumentsDir));
    }
    recent_.Load(names);
    frame_->RecentFilesChanged();
}

void Kestrune::RewriteRecentList()
{
    const Folders& folders = parts_.layer.folders;
    QList<std::pair<QString, QString>> values;
    for (int i = 1; i <= recent_.ListCount(); ++i)
        values.emplace_back(u"File_%1"_s.arg(i),
                            parts_.layer.spec.ContractPath(recent_.ListItem(i), folders.HomeDir, folders.DocumentsDir));
    parts_.layer.store.StoreReplaceKey(StoreKey::RecentFiles, values);
    if (frame_ != nullptr)
        frame_->RecentFilesChanged();
}

// --- window

bool Kestrune::Visible() const { return frame_ != nullptr && !frame_->IsClosing() && frame_->IsVisible(); }

void Kestrune::SetVisible(bool on)
{
    if (frame_ != nullptr && !frame_->IsClosing())
        frame_->SetVisible(on);
}

void Kestrune::Move(int left, int top, int width, int height)
{
    if (frame_ == nullptr)
        return;
    const WindowPlace now = frame_->Place();
    const auto given = [](int value, int current) { return value == NoValue ? current : value; };
    frame_->Move(given(left, now.left), given(top, now.top), given(width, now.width), given(height, now.height));
}

int Kestrune::Left() const { return frame_ != nullptr ? frame_->Place().left : 0; }
int Kestrune::Top() const { return frame_ != nullptr ? frame_->Place().top : 0; }
int Kestrune::Width() const { return frame_ != nullptr ? frame_->Place().width : 0; }
int Kestrune::Height() const { return frame_ != nullptr ? frame_->Place().height : 0; }
int Kestrune::WindowState() const { return frame_ != nullptr ? frame_->State() : kWindowNormal; }

void Kestrune::SetWindowState(int state)
{
    if (frame_ != nullptr && IsWindowState(state) && frame_->State() != state)
        frame_->SetState(state);
}

void Kestrune::Arrange(int style)
{
    if (frame_ != nullptr)
        frame_->Arrange(style);
}

void Kestrune::Activate()
{
    if (frame_ != nullptr)
        Silently([this] { frame_->Activate(); });
}

void Kestrune::Terminate(int prompt)
{
    pendingPrompt_ = prompt;
    quitting_ = true;
    if (frame_ != nullptr)
        frame_->PostLeave(Leave::EndFrame);
}

QString Kestrune::ProductName() const { return u"Kestrune/WIN32"_s; } // fixed: scripts test for it
QString Kestrune::ProductRelease() const { return QStringLiteral(KESTRUNE_RELEASE); }

// --- layouts

int Kestrune::OpenLayout(const QString& file) { return kestrune::OpenLayout(*this, file, LayoutScript::Skip); }

void Kestrune::SaveLayout(const QString& file)
{
    if (!file.isEmpty())
        SetLayoutFileName(file);
    kestrune::SaveLayout(*this);
}

} // namespace kestrune
