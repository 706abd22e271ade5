// How a session gets its file, writes it, and ends.

#include <sessions/session.h>

#include <dispatch/failure.h>
#include <emulator/control/ctlemulator.h>
#include <ports/application.h>
#include <ports/questions.h>
#include <ports/sessionwindow.h>
#include <sessions/files.h>
#include <sessions/savewords.h>
#include <sessions/sessionfile.h>
#include <sessions/sessions.h>
#include <settings/layer.h>
#include <support/errors.h>
#include <support/msgbox.h>

#include "hourglass.h"

namespace kestrune {

// --- load

void clsSession::SetFileName(const QString& name)
{
    LoadSession(name.isEmpty() ? QString() : GetFilePath(application_.Layer(), name, SessionExtensions.toString()));
}

void clsSession::SetSessionFilename(const QString& name)
{
    if (fileName_.compare(name, Qt::CaseInsensitive) == 0)
        return;
    fileName_ = name;
    SetSessionTitle();
}

void clsSession::LoadSession(const QString& fileName)
{
    const std::shared_ptr<clsSession> self = shared_from_this();
    Window(); // raises when the session has ended
    std::optional<Failure> missing;
    {
        const Hourglass hourglass(application_.Ask());
        fileName_ = fileName;
        saveDir_ = application_.Layer().folders.HomeDir;
        caption_.clear();
        icon_.clear();
        customMouseTable_.clear();
        autoClose_ = showErrs_ = capsLock_ = false;
        copyPasteShortcut_ = 0;
        if (fileName.isEmpty())
            TakeDefaults();
        else
            missing = ReadFile();
        ApplySessionMenu();
        SetChanged(false);
        Window().SetMenuDirty();
        SetSessionTitle();
        SetSessionIcon();
    }
    if (missing) // a mouse table that is not there does not keep the session from opening
        MsgBox(application_.Ask(), missing->Text(), MsgFlag::Exclamation);
}

void clsSession::TakeDefaults()
{
    Settings().ResetToDefaults();
    Settings().SetValue(Setting("FontName"), DefaultFontName());
}

std::optional<Failure> clsSession::ReadFile()
{
    SettingsLayer& layer = application_.Layer();
    std::optional<Failure> missing;
    try {
        layer.keyFiles.Read(fileName_, SessionSection.toString(),
                            [&](const KeyFile& file) { missing = ReadSessionKeys(file, *this); });
        Settings().Load(fileName_);
    } catch (...) {
        fileName_.clear(); // a save must not put what was not read in the place of what stands there
        throw;
    }
    if (const QString folder = layer.spec.GetDirPart(fileName_); !folder.isEmpty())
        saveDir_ = layer.folders.SessionDir = folder;
    return missing;
}

// --- save

bool clsSession::Changed() const
{
    if (!changed_ && frmSession_)
        changed_ = Settings().Changed();
    return changed_;
}

void clsSession::SetChanged(bool on)
{
    changed_ = on;
    if (!on)
        Settings().SetChanged(false);
}

void clsSession::Save(const QString& fileName) { SaveSession(fileName, Dialog::IfNoName); }

bool clsSession::SaveAs() { return SaveSession({}, Dialog::Always); }

std::optional<QString> clsSession::AskForFileName() const
{
    return application_.Ask().SaveFile(
        SaveAsDialog(SavedThing::Session, application_.Layer().folders.SessionDir, fileName_));
}

bool clsSession::SaveSession(const QString& name, Dialog dialog)
{
    const std::shared_ptr<clsSession> self = shared_from_this();
    Window(); // raises when the session has ended
    const QString oldName = fileName_;
    const QString given = name.trimmed();
    QString target;
    if (!given.isEmpty()) // a name that does not exist yet gives nothing, and so the dialog: deliberate
        target = GetFilePath(application_.Layer(), given, SessionExtensions.toString());
    else if (dialog == Dialog::IfNoName)
        target = fileName_;
    if (target.isEmpty())
        target = AskForFileName().value_or(QString());
    if (target.isEmpty() || terminated_) // the dialog may have outlived the session
        return false;

    fileName_ = target;
    const Hourglass hourglass(application_.Ask());
    try {
        WriteFile();
    } catch (...) {
        fileName_ = oldName; // the next Save goes where the session's file still is
        throw;
    }
    SetChanged(false);
    SetSessionTitle();
    application_.AddRecent(fileName_);
    if (!oldName.isEmpty() && oldName.compare(fileName_, Qt::CaseInsensitive) != 0)
        application_.RemoveRecent(oldName);
    return true;
}

// The emulator's keys and the session's in one replacement of the file.
void clsSession::WriteFile()
{
    try {
        application_.Layer().keyFiles.Change(fileName_, SessionSection.toString(), [this](KeyFile& file) {
            Emulator().Settings(true).Save(fileName_);
            WriteSessionKeys(file, *this, application_.Layer().spec, application_.Layer().folders.ProgramDir);
        });
    } catch (const Failure& failure) {
        throw SaveFailure(failure);
    }
}

// --- end

void clsSession::Delete() { Terminate(TerminatePrompt::None); }

void clsSession::Terminate(int prompt)
{
    const std::shared_ptr<clsSession> self = shared_from_this();
    if (!terminated_ && QueryTerminate(prompt))
        TerminateSession(false);
}

// The connection is asked about, and may be hung up, before the save question can still cancel the close: that
// order is deliberate.
bool clsSession::QueryTerminate(int prompt)
{
    const std::shared_ptr<clsSession> self = shared_from_this();
    if (terminated_)
        return true;
    const QString title = Window().Title();
    if ((prompt & TerminatePrompt::LiveConnection) && Emulator().Connected() && !application_.NoCloseWarning() &&
        !ConfirmDisconnect(title))
        return false;
    if (terminated_) // ended behind the question
        return true;
    return !(prompt & TerminatePrompt::UnsavedChanges) || !Changed() || ConfirmSave(title);
}

bool clsSession::ConfirmDisconnect(const QString& title)
{
    const auto device = static_cast<Device>(Settings().Integer(Setting("Device")));
    if (device == Device::SerialPort)
        return true;
    const bool modem = device == Device::Modem;
    const bool several = !modem && application_.Sessions().Count() > 1 && application_.CloseSweep();
    const QString text = modem ? tr("Do you want to disconnect dial-up\r\nconnection for \"%1\" ?").arg(title)
                               : tr("Do you want to disconnect session\r\n\"%1\" from %2 ?")
                                     .arg(title, Settings().Text(Setting("HostName")));
    const int buttons = several ? MsgFlag::YesNoYesToAll : MsgFlag::YesNo;
    const int result = MsgBox(application_.Ask(), text, buttons | MsgFlag::Question | MsgFlag::CheckBox);
    if (result & MsgResult::Checked)
        application_.SetNoCloseWarning(true);
    const int answer = result & MsgBoxNoCheck;
    if (answer == MsgResult::YesToAll)
        application_.ClearPendingPrompt(); // those closed after this one are not asked
    else if (answer != MsgResult::Yes)
        return false;
    if (modem && !terminated_)
        Silently([this] { Emulator().HangUp(0); });
    return true;
}

bool clsSession::ConfirmSave(const QString& title)
{
    const int answer = MsgBox(application_.Ask(), tr("Do you want to save your changes to \r\n\"%1\" ?").arg(title),
                              MsgFlag::YesNoCancel | MsgFlag::Question);
    if (terminated_ || answer == MsgResult::No)
        return true;
    if (answer != MsgResult::Yes)
        return false;
    if (fileName_.isEmpty())
        return SaveAs();
    try {
        Save();
        return true;
    } catch (const Failure& failure) {
        if (const QString words = SaveFailureWords(failure, SavedThing::Session, application_.Layer().spec, fileName_);
            !words.isEmpty())
            MsgBox(application_.Ask(), words, MsgFlag::Exclamation);
    }
    return SaveAs();
}

void clsSession::TerminateSession(bool fromUnload)
{
    const std::shared_ptr<clsSession> self = shared_from_this();
    if (terminated_)
        return;
    terminated_ = true;
    SessionWindow& window = *frmSession_;
    // Each step on its own: a half-dead control must not stop the exit.
    Silently([&] { window.SetClosing(); });
    if (!fromUnload)
        Silently([&] { window.SetVisible(false); });
    if (application_.FuncBarVisible())
        Silently([&] { application_.SetFuncBarBank(window.Emulator().FuncBarBank()); });
    Silently([&] { window.Emulator().Shutdown(); });
    if (!fromUnload)
        Silently([&] { window.Unload(); });
    frmSession_ = nullptr;
    Silently([&] { application_.Sessions().Remove(id_); });
    application_.SessionHasEnded();
}

} // namespace kestrune
