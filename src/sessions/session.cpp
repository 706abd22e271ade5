#include <sessions/session.h>

#include <dispatch/failure.h>
#include <emulator/control/ctlemulator.h>
#include <emulator/control/emulatorsettings.h>
#include <ports/application.h>
#include <ports/menutools.h>
#include <ports/sessionmenus.h>
#include <ports/sessionwindow.h>
#include <sessions/sessionfile.h>
#include <sessions/sessions.h>
#include <sessions/tools.h>
#include <settings/layer.h>
#include <support/errors.h>
#include <support/ordlst.h>

#include "sessiontitle.h"

#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView FontWanted = u"DejaVu Sans Mono";

struct Shortcuts
{
    QStringView copy;
    QStringView paste;
};
// By CopyPasteShortcut.
constexpr std::array ShortcutModes = {Shortcuts{u"", u""}, Shortcuts{u"Ctrl+Ins", u"Shift+Ins"},
                                      Shortcuts{u"Ctrl+C", u"Ctrl+V"}};

// Empty or one of our own: a shortcut that the user gave stays.
bool IsOwnShortcut(const QString& present, QStringView Shortcuts::*side)
{
    for (const Shortcuts& mode : ShortcutModes)
        if (present.compare(mode.*side, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

[[noreturn]] void NotServed(const QString& member)
{
    throw Failure(ErrorNumber::NotImplemented, clsSession::tr("%1 is not served by a session.").arg(member),
                  u"clsSession"_s);
}

} // namespace

clsSession::clsSession(ApplicationPort& application) : application_(application) {}

clsSession::~clsSession() = default;

std::shared_ptr<clsSession> clsSession::Create(ApplicationPort& application)
{
    MainWindow* frame = application.Frame();
    if (!frame)
        throw Failure(ErrorNumber::ObjectNotSet, tr("A session needs the main window."), u"clsSession"_s);
    std::shared_ptr<clsSession> session(new clsSession(application));
    session->number_ = application.NextSessionNumber();
    session->frmSession_ = frame->NewSessionWindow(*session);
    session->SetId(QString::number(session->number_));
    session->Settings().SetValue(Setting("FontName"), session->DefaultFontName());
    application.Sessions().clsAdd(session);
    session->saveDir_ = application.Layer().folders.HomeDir;
    session->LoadGlobalSettings();
    session->SetSessionTitle();
    application.Order().Add(session->number_);
    session->SetChanged(false);
    application.SessionWasCreated();
    return session;
}

void clsSession::SetId(const QString& id)
{
    id_ = id;
    if (frmSession_)
        frmSession_->SetTag(id);
}

int clsSession::Index() const { return application_.Sessions().Find(id_).get() == this ? 0 : -1; }

bool clsSession::Busy() const { return frmSession_ && frmSession_->Emulator().Busy() > 0; }

SessionWindow& clsSession::Window() const
{
    if (!frmSession_)
        throw Failure(ErrorNumber::ObjectNotSet, tr("The session has ended."), u"clsSession"_s);
    return *frmSession_;
}

ctlEmulator& clsSession::Emulator() const { return Window().Emulator(); }

EmulatorSettings& clsSession::Settings() const { return Emulator().Settings(); }

quintptr clsSession::hwnd() const { return Window().Handle(); }

// --- window

void clsSession::Show()
{
    if (terminated_)
        return;
    SessionWindow& window = Window();
    shown_ = true;
    const IgnoringEvents ignoring(window);
    if (window.State() == WindowMinimised)
        return;
    try {
        window.SetVisible(true);
        application_.Frame()->RefreshCaption();
    } catch (const Failure& failure) {
        if (failure.Number() != ErrorNumber::ModalDialogUp)
            throw;
        window.ShowInactive();
    }
}

void clsSession::Hide()
{
    if (terminated_)
        return;
    shown_ = false;
    Window().SetVisible(false);
    if (!application_.Frame()->ActiveChild())
        application_.Frame()->UpdateNoActiveSession();
}

void clsSession::Activate()
{
    SessionWindow& window = Window();
    const IgnoringEvents ignoring(window);
    window.Activate();
}

void clsSession::Resize(int width, int height) { Move(NoValue, NoValue, width, height); }

void clsSession::Move(int left, int top, int width, int height)
{
    SessionWindow& window = Window();
    const WindowPlace now = window.Place();
    const auto given = [](int value, int current) { return value == NoValue ? current : value; };
    const IgnoringEvents ignoring(window);
    window.Move(given(left, now.left), given(top, now.top), given(width, now.width), given(height, now.height));
}

int clsSession::Left() const { return Window().Place().left; }
int clsSession::Top() const { return Window().Place().top; }
int clsSession::Width() const { return Window().Place().width; }
int clsSession::Height() const { return Window().Place().height; }
void clsSession::SetLeft(int left) { Move(left); }
void clsSession::SetTop(int top) { Move(NoValue, top); }
void clsSession::SetWidth(int width) { Move(NoValue, NoValue, width); }
void clsSession::SetHeight(int height) { Move(NoValue, NoValue, NoValue, height); }

void clsSession::SetVisible(bool on)
{
    if (on)
        Show();
    else
        Hide();
}

int clsSession::WindowState() const
{
    const SessionWindow& window = Window();
    return window.IsVisible() ? window.State() : WindowMinimised;
}

void clsSession::SetWindowState(int state)
{
    if (state < WindowNormal || state > WindowMaximised)
        return;
    SessionWindow& window = Window();
    if (!shown_) {
        window.SetState(state);
    } else if (state != WindowState()) {
        const IgnoringEvents ignoring(window);
        window.SetState(state);
    }
}

// --- own settings

template <typename T>
bool clsSession::Assign(T& field, const T& value)
{
    if (field == value)
        return false;
    field = value;
    changed_ = true;
    return true;
}

void clsSession::SetCaption(const QString& text)
{
    if (Assign(caption_, text))
        SetSessionTitle();
}

void clsSession::SetIcon(const QString& path)
{
    if (Assign(icon_, path))
        SetSessionIcon();
}

void clsSession::SetAutoClose(bool on) { Assign(autoClose_, on); }

void clsSession::SetShowErrs(bool on) { Assign(showErrs_, on); }

void clsSession::SetCopyPasteShortcut(int mode)
{
    if (Assign(copyPasteShortcut_, mode))
        ApplyCopyPasteShortcut();
}

void clsSession::SetMouseTable(const QString& path)
{
    if (Assign(customMouseTable_, path))
        MouseTableLoad(path);
}

void clsSession::SetCapsLock(int on)
{
    if (Assign(capsLock_, on != 0))
        Emulator().SetCapsLock(CapsLock());
}

QString clsSession::MousePatterns() const { NotServed(u"MousePatterns"_s); }
void clsSession::SetMousePatterns(const QString&) { NotServed(u"MousePatterns"_s); }
QString clsSession::Script() const { NotServed(u"Script"_s); }
void clsSession::SetScript(const QString&) { NotServed(u"Script"_s); }

void clsSession::ReadProperties(const PropertyBag& bag)
{
    if (const auto failure = ReadSessionBag(bag, *this))
        throw *failure;
}

void clsSession::WriteProperties(PropertyBag& bag) const { WriteSessionBag(bag, *this); }

// --- title, icon, menu

int clsSession::OrdinalAmongSameFile() const
{
    int others = 0;
    int before = 0;
    bool passed = false;
    for (const auto& session : application_.Sessions().All()) {
        if (session.get() == this) {
            passed = true;
        } else if (session->fileName_.compare(fileName_, Qt::CaseInsensitive) == 0) {
            ++others;
            before += passed ? 0 : 1;
        }
    }
    return others == 0 ? 0 : before + 1;
}

void clsSession::SetSessionTitle()
{
    if (!frmSession_)
        return;
    const QString title = SessionTitle({.caption = caption_,
                                        .fileTitle = application_.Layer().spec.GetFileName(fileName_),
                                        .server = serverMode_ != 0,
                                        .format = application_.TitleFormat(),
                                        .id = id_,
                                        .ordinal = OrdinalAmongSameFile()});
    // The same again leaves a tab that the user has renamed as it is: titles are refreshed whenever any session comes,
    // goes or moves.
    if (title == title_)
        return;
    title_ = title;
    frmSession_->ChangeCaption(title);
    frmSession_->Emulator().SetTitle(title);
    application_.Frame()->RefreshSessionBar();
}

void clsSession::SetServer(int mode, const QString& name)
{
    serverMode_ = mode;
    serverName_ = name;
    SetSessionTitle();
}

void clsSession::SetSessionIcon()
{
    if (frmSession_)
        frmSession_->ChangeIcon(
            application_.Layer().spec.ExpandPath(icon_, application_.Layer().folders.ProgramDir, {}));
}

QString clsSession::DefaultFontName() const
{
    for (const QString& font : application_.Frame()->FontNames())
        if (font.startsWith(FontWanted, Qt::CaseInsensitive))
            return font;
    return u"Kestrune"_s;
}

void clsSession::LoadGlobalSettings()
{
    ctlEmulator& emulator = Emulator();
    Settings().SetValue(Setting("DefaultCaptureDir"), application_.DefaultCaptureDir());
    Settings().SetValue(Setting("DefaultXferDir"), application_.DefaultXferDir());
    emulator.SetTrackKeyboardState(application_.TrackKeyboardState());
    emulator.SetCustomMode(application_.CustomMode());
    ApplyFuncBar();
    if (customMouseTable_.isEmpty())
        Silently([this] { MouseTableLoad(application_.CustomMouseTable()); });
}

void clsSession::ApplyFuncBar()
{
    ctlEmulator& emulator = Emulator();
    if (!application_.FuncBarVisible()) {
        emulator.SetFuncBarBank(0);
        return;
    }
    emulator.SetFuncBarStyle(application_.FuncBarStyle());
    emulator.SetFuncBarPos(application_.FuncBarPos());
    if (emulator.FuncBarBank() != 0)
        return; // the bank that the user chose
    const int bank = application_.FuncBarBank();
    emulator.SetFuncBarBank(bank == 0 ? -1 : bank);
}

void clsSession::ApplySessionMenu()
{
    MenuTools& tools = Window().Tools();
    menuSource_ = application_.Menus().LoadSessionMenu(*this, tools);
    ApplyCopyPasteShortcut();
    application_.Menus().InitSessionMenu(*this, tools);
    LoadMacroMenu(application_.Menus().MacroList());
    Window().SetMenuDirty();
    Window().RefreshMenu();
}

void clsSession::LoadMacroMenu(const QString& macroList)
{
    application_.Menus().RefreshMacroMenu(Window().Tools(), macroList);
}

void clsSession::ApplyCopyPasteShortcut()
{
    if (copyPasteShortcut_ < 0 || copyPasteShortcut_ >= int(ShortcutModes.size()))
        return;
    MenuTools& tools = Window().Tools();
    const auto present = [&tools](int tool) { return tools.GetToolProperty(tool, ToolProperty::Shortcut).toString(); };
    if (!IsOwnShortcut(present(Tool::Copy), &Shortcuts::copy) ||
        !IsOwnShortcut(present(Tool::Paste), &Shortcuts::paste))
        return;
    const Shortcuts& wanted = ShortcutModes[size_t(copyPasteShortcut_)];
    tools.SetToolProperty(Tool::Copy, ToolProperty::Shortcut, wanted.copy.toString());
    tools.SetToolProperty(Tool::Paste, ToolProperty::Shortcut, wanted.paste.toString());
}

// --- members that do more than forward

void clsSession::Paste(const QString& fileName)
{
    if (!fileName.isEmpty())
        pasteFromFileName_ = fileName;
    Emulator().Paste(fileName);
}

void clsSession::Copy(int left, int top, int right, int bottom)
{
    Emulator().Copy(left, top, right, bottom);
    EnablePasteTool();
}

void clsSession::CopyHistory(int left, int top, int right, int bottom)
{
    Emulator().CopyHistory(left, top, right, bottom);
    EnablePasteTool();
}

void clsSession::EnablePasteTool()
{
    Window().Tools().SetToolProperty(Tool::Paste, ToolProperty::Enabled, application_.Frame()->ClipboardHasText());
}

void clsSession::ResetTerm() { Emulator().Reset(1); }
void clsSession::ResetComm() { Emulator().Reset(2); }
void clsSession::NormMode() { Emulator().SetScrMode(0); }
void clsSession::ExtMode() { Emulator().SetScrMode(1); }
void clsSession::Deselect() { Emulator().ClearSelection(); }
void clsSession::Output(const QString& text) { Emulator().WriteText(text); }

void clsSession::AttachAlternateSink(clsSession* target, qint16& exitMode, qint16& exitCode)
{
    if (target)
        Emulator().AttachAlternateSink(target->Emulator(), exitMode, exitCode);
}

void clsSession::DetachAlternateSink() { Emulator().DetachAlternateSink(); }

bool clsSession::GetSelection(int& left, int& top, int& right, int& bottom) const
{
    return Emulator().GetSelection(left, top, right, bottom);
}

QString clsSession::DialedNumber() const { return application_.DialedNumber(); }
void clsSession::SetDialedNumber(const QString& number) { application_.SetDialedNumber(number); }
QString clsSession::DialedName() const { return application_.DialedName(); }
void clsSession::SetDialedName(const QString& name) { application_.SetDialedName(name); }
QString clsSession::PhoneBookName() const { return application_.PhoneBookName(); }
void clsSession::SetPhoneBookName(const QString& name) { application_.SetPhoneBookName(name); }

bool clsSession::Callback(QString& name) const
{
    struct Substitute
    {
        QStringView asked;
        QStringView used;
    };
    static constexpr std::array Substitutes = {Substitute{u"close", u"Terminate"}, Substitute{u"input", u"ReadText"},
                                               Substitute{u"select", u"SetSelection"}};
    for (const Substitute& row : Substitutes) {
        if (name.compare(row.asked, Qt::CaseInsensitive) == 0) {
            name = row.used.toString();
            return true;
        }
    }
    return false;
}

} // namespace kestrune
