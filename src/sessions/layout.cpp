#include <sessions/layout.h>

#include <dispatch/failure.h>
#include <ports/application.h>
#include <ports/questions.h>
#include <ports/scriptengine.h>
#include <ports/sessionwindow.h>
#include <sessions/files.h>
#include <sessions/savewords.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <sessions/tools.h>
#include <settings/layer.h>
#include <support/errors.h>
#include <support/msgbox.h>

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>

#include "hourglass.h"

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int LayoutLoaded = 2;
constexpr int NotALayout = 0;
constexpr QStringView MainModule = u"Main";
constexpr int MostScriptLines = 10000; // a count from a file is not believed beyond this

QString LayoutTr(const char* text) { return QCoreApplication::translate("kestrune::Layout", text); }

QString FileSection(int number) { return u"File"_s + QString::number(number); }

// One section of a layout file, through the profile and so through an open group of the file.
class LayoutPart
{
public:
    LayoutPart(Profile& profile, const QString& file, const QString& section)
        : profile_(profile), file_(file), section_(section)
    {}

    bool IsThere() const { return !profile_.ProfileGetKeys(section_, file_).isEmpty(); }
    QString Text(QStringView key) const { return profile_.ProfileGetString(section_, key.toString(), {}, file_); }
    int Number(QStringView key) const { return profile_.ProfileGetInt(section_, key.toString(), 0, file_); }
    bool Flag(QStringView key) const { return profile_.ProfileGetBool(section_, key.toString(), false, file_); }
    WindowPlace Place() const
    {
        return {Number(u"Left"), Number(u"Top"), Number(u"Width"), Number(u"Height"), Number(u"WindowState")};
    }

    void SetText(QStringView key, const QString& value)
    {
        profile_.ProfileSetString(section_, key.toString(), value, {}, file_);
    }
    void SetNumber(QStringView key, int value) { profile_.ProfileSetInt(section_, key.toString(), value, 0, file_); }
    void SetFlag(QStringView key, bool value)
    {
        profile_.ProfileSetBool(section_, key.toString(), value, false, file_);
    }
    void SetPlace(const WindowPlace& place)
    {
        SetNumber(u"WindowState", place.state);
        SetNumber(u"Top", place.top);
        SetNumber(u"Left", place.left);
        SetNumber(u"Height", place.height);
        SetNumber(u"Width", place.width);
    }

private:
    Profile& profile_;
    QString file_;
    QString section_;
};

// A value is one line, a script may have many: the first stands in "Script", where it has always been, the others in
// "Script2" and on.
QString ScriptKey(int line) { return line == 1 ? u"Script"_s : u"Script"_s + QString::number(line); }

QString Script(const LayoutPart& main)
{
    QStringList lines{main.Text(ScriptKey(1))};
    const int count = std::min(main.Number(u"ScriptLines"), MostScriptLines);
    for (int line = 2; line <= count; ++line)
        lines.append(main.Text(ScriptKey(line)));
    return lines.join(u"\r\n"_s);
}

void SetScript(LayoutPart& main, const QString& text)
{
    static const QRegularExpression lineEnd(u"\r\n|\r|\n"_s);
    const QStringList lines = text.isEmpty() ? QStringList() : text.split(lineEnd);
    for (int line = 1; line <= lines.size(); ++line)
        main.SetText(ScriptKey(line), lines.at(line - 1));
    if (lines.size() > 1)
        main.SetNumber(u"ScriptLines", int(lines.size()));
}

// The restored place first, then the state. A layout without sizes leaves the window's own.
template <typename Window>
void Put(Window& window, const WindowPlace& place)
{
    if (place.width > 0 && place.height > 0)
        window.Move(place.left, place.top, place.width, place.height);
    if (place.state >= WindowNormal && place.state <= WindowMaximised)
        window.SetState(place.state);
}

// A name without a folder lies beside the layout; other relative ones start from there too.
QString SessionPath(const SettingsLayer& layer, const QString& stored, const QString& layoutFile)
{
    const QString folder = layer.spec.GetDirPart(layoutFile);
    return stored.isEmpty() ? folder : layer.spec.ExpandPath(stored, folder, layer.folders.DocumentsDir);
}

std::shared_ptr<clsSession> AddFromLayout(ApplicationPort& application, const QString& path)
{
    std::shared_ptr<clsSession> session;
    if (IsConfigFile(application.Layer(), path))
        session = application.Sessions().Add(path, WindowNormal, 0, AddHidden::OnlyNotShown);
    return session;
}

// On-line first, then placed and shown: that order is required.
std::shared_ptr<clsSession> OpenPart(ApplicationPort& application, const LayoutPart& part, const QString& layoutFile)
{
    const QString path = SessionPath(application.Layer(), part.Text(u"FileName"), layoutFile);
    std::shared_ptr<clsSession> session;
    QString reason;
    try {
        session = AddFromLayout(application, path);
    } catch (const Failure& failure) {
        reason = u"\r\n"_s + failure.Text();
    }
    if (!session) {
        MsgBox(application.Ask(), LayoutTr("Unable to open ") + path + reason, MsgFlag::Exclamation);
        return nullptr;
    }
    if (!session->Terminated()) {
        const IgnoringEvents ignoring(*session->frmSession());
        Put(*session->frmSession(), part.Place());
    }
    application.Frame()->RunEventsOnce();
    if (!session->Terminated()) {
        session->frmSession()->RunResize();
        session->Show();
        session->Activate();
    }
    return session;
}

} // namespace

int OpenLayout(ApplicationPort& application, const QString& file, LayoutScript script)
{
    Profile& profile = application.Layer().profile;
    const LayoutPart main(profile, file, LayoutSection.toString());
    const WindowPlace place = main.Place();
    if (place.state < WindowNormal || place.state > WindowMaximised)
        return NotALayout;
    application.SetLayoutFileName(file);
    Put(*application.Frame(), place);
    application.Frame()->RunEventsOnce();

    std::shared_ptr<clsSession> active;
    const int count = main.Number(u"Files");
    for (int number = 1; number <= count; ++number) {
        const LayoutPart part(profile, file, FileSection(number));
        const auto session = OpenPart(application, part, file);
        if (session && part.Flag(u"Active"))
            active = session;
        if (!part.IsThere()) // the numbering has no gaps, so the count was wrong
            break;
    }
    if (active) {
        application.Frame()->RunEventsOnce();
        if (!active->Terminated())
            active->Activate();
    }
    if (const QString text = Script(main); script == LayoutScript::Run && !text.isEmpty())
        application.ScriptEngine(false)->RunModule(text, MainModule.toString(), MainModule.toString());
    application.AddRecent(file);
    return LayoutLoaded;
}

namespace {

void CheckTarget(const FileSpec& spec, const QString& file)
{
    if (const QString folder = spec.GetDirPart(file); !folder.isEmpty() && !spec.DirExists(folder))
        throw Failure(ErrorNumber::FileNotFound, LayoutTr("Path not found"), u"SaveLayout"_s);
    if (!spec.CanWrite(file))
        throw Failure(ErrorNumber::PathAccess, LayoutTr("Access denied"), u"SaveLayout"_s);
}

void WriteLayout(ApplicationPort& application, const QString& file)
{
    SettingsLayer& layer = application.Layer();
    ProfileGroup group(layer.profile, file);
    for (const QString& section : group.Document().Sections())
        layer.profile.ProfileDeleteSection(section, file);

    MainWindow& frame = *application.Frame();
    LayoutPart main(layer.profile, file, LayoutSection.toString());
    main.SetPlace(frame.Place());
    const SessionWindow* activeChild = frame.ActiveChild();
    const QString folder = layer.spec.GetDirPart(file);
    int count = 0;
    for (const auto& session : application.Sessions().All()) {
        if (session->Terminated() || session->FileName().isEmpty())
            continue;
        LayoutPart part(layer.profile, file, FileSection(++count));
        const bool besideLayout = layer.spec.GetDirPart(session->FileName()) == folder;
        part.SetText(u"FileName", besideLayout ? layer.spec.GetFileNameExt(session->FileName()) : session->FileName());
        const SessionWindow& window = *session->frmSession();
        const WindowPlace place = window.Place();
        part.SetPlace(place);
        if (activeChild && activeChild->Tag() == window.Tag()) {
            part.SetFlag(u"Active", true);
            main.SetNumber(u"ChildState", place.state);
        }
    }
    main.SetNumber(u"Files", count);
    if (const ScriptEnginePort* engine = application.ScriptEngine(true))
        SetScript(main, engine->ModuleText(MainModule.toString()));
    group.Commit();
}

} // namespace

void SaveLayout(ApplicationPort& application)
{
    const QString file = application.LayoutFileName();
    if (file.isEmpty())
        return;
    CheckTarget(application.Layer().spec, file);
    for (const auto& session : application.Sessions().All())
        Silently([&session] { session->Save(); });
    const Hourglass hourglass(application.Ask());
    try {
        WriteLayout(application, file);
    } catch (const Failure& failure) {
        throw SaveFailure(failure);
    }
    application.AddRecent(file);
}

bool SaveLayoutAs(ApplicationPort& application)
{
    const QString oldName = application.LayoutFileName();
    const auto name =
        application.Ask().SaveFile(SaveAsDialog(SavedThing::Layout, application.Layer().folders.SessionDir, oldName));
    if (!name || name->isEmpty())
        return false;
    application.SetLayoutFileName(*name);
    try {
        SaveLayout(application);
    } catch (...) {
        application.SetLayoutFileName(oldName); // the next Save goes where the layout still is
        throw;
    }
    return true;
}

bool SaveLayoutByCommand(ApplicationPort& application)
{
    if (application.LayoutFileName().isEmpty())
        return SaveLayoutAs(application);
    try {
        SaveLayout(application);
        return true;
    } catch (const Failure& failure) {
        const QString words =
            SaveFailureWords(failure, SavedThing::Layout, application.Layer().spec, application.LayoutFileName());
        if (words.isEmpty())
            throw;
        MsgBox(application.Ask(), words, MsgFlag::Exclamation);
    }
    return SaveLayoutAs(application);
}

} // namespace kestrune
