#pragma once

// One terminal session: its identity, its file, its title and icon, its window's place, and how it ends. All that
// concerns connection, screen, printing and transfers is the emulator's; who needs that asks Emulator() or
// Settings(). Made only by clsSessions. After TerminateSession the object lives on only while somebody holds a
// reference: what guards on Terminated() then does nothing, the rest raises Failure ObjectNotSet.

#include <dispatch/failure.h>
#include <dispatch/substitutename.h>
#include <sessions/sessionsettings.h>

#include <QObject>

#include <memory>
#include <optional>

namespace kestrune {

class ApplicationPort;
class ctlEmulator;
class EmulatorSettings;
class SessionWindow;

// What a session may ask before it ends; bits of the prompt word.
namespace TerminatePrompt {
inline constexpr int None = 0, UnsavedChanges = 1, LiveConnection = 2;
} // namespace TerminatePrompt

class clsSession final : public QObject,
                         public SessionSettings,
                         public IGetSubstituteName,
                         public std::enable_shared_from_this<clsSession>
{
    Q_OBJECT
public:
    static constexpr int NoValue = -2147483647; // "not given" in Move

    // A new session with an invisible window, already in the application's collection.
    static std::shared_ptr<clsSession> Create(ApplicationPort& application);
    ~clsSession() override;

    // --- identity
    QString Id() const { return id_; }     // decimal text, never reused in a run
    int Number() const { return number_; } // the same as a number
    void SetId(const QString& id);         // also the window's Tag
    int Index() const;                     // 0: in the collection, -1: not; it gives no position, deliberately
    bool Terminated() const { return terminated_; }
    void SetTerminated(bool on) { terminated_ = on; }
    bool Busy() const; // false when the window is gone

    // --- parts; raise Failure ObjectNotSet once the session has ended
    SessionWindow* frmSession() const { return frmSession_; } // null once it has ended
    ctlEmulator& Emulator() const;
    EmulatorSettings& Settings() const;
    quintptr hwnd() const; // of the emulator's view, not of the session window

    // --- window; numbers in pixels
    void Show();
    void Hide();
    void Activate();
    void Resize(int width, int height);
    void Move(int left, int top = NoValue, int width = NoValue, int height = NoValue);
    int Left() const;
    int Top() const;
    int Width() const;
    int Height() const;
    void SetLeft(int left);
    void SetTop(int top);
    void SetWidth(int width);
    void SetHeight(int height);
    bool Visible() const { return shown_; }
    void SetVisible(bool on);
    int WindowState() const;        // 0 normal, 1 minimised (also: not visible), 2 maximised
    void SetWindowState(int state); // outside 0 to 2: ignored

    // --- file
    QString FileName() const { return fileName_; } // full path, empty: never saved
    // Looks the name up and loads it; a name that is not found, or none, takes all defaults without a message.
    void SetFileName(const QString& name);
    void SetSessionFilename(const QString& name); // the session claims the file; nothing is loaded
    void Save(const QString& fileName = {});
    bool SaveAs();
    bool Changed() const; // of the session or of the emulator's settings
    void SetChanged(bool on);
    QString SaveDir() const { return saveDir_; }

    // --- end
    void Delete();
    void Terminate(int prompt = TerminatePrompt::UnsavedChanges);
    // Asks what the prompt word says; true: the session may end. The connection may be hung up by then.
    bool QueryTerminate(int prompt);
    void TerminateSession(bool fromUnload);

    // --- members that do more than forward to the emulator
    void Close(int prompt = TerminatePrompt::UnsavedChanges) { Terminate(prompt); }
    void Paste(const QString& fileName = {}); // a file's text; empty: the clipboard's
    QString PasteFromFileName() const { return pasteFromFileName_; }
    void Copy(int left = 0, int top = 0, int right = 0, int bottom = 0);
    void CopyHistory(int left = 0, int top = 0, int right = 0, int bottom = 0);
    void ResetTerm();
    void ResetComm();
    void NormMode();
    void ExtMode();
    void Deselect();
    void Output(const QString& text);
    // target: another session; null does nothing.
    void AttachAlternateSink(clsSession* target, qint16& exitMode, qint16& exitCode);
    void DetachAlternateSink();
    bool GetSelection(int& left, int& top, int& right, int& bottom) const;
    // Reads a file of mouse patterns into the emulator. Raises Failure when it cannot be opened.
    void MouseTableLoad(const QString& fileName);

    QString DialedNumber() const; // these three are held by the application, not per session
    void SetDialedNumber(const QString& number);
    QString DialedName() const;
    void SetDialedName(const QString& name);
    QString PhoneBookName() const;
    void SetPhoneBookName(const QString& name);

    // --- for other rooms of the shell
    int ServerMode() const { return serverMode_; } // 1 while the emulator runs as a server
    QString ServerName() const { return serverName_; }
    void SetServer(int mode, const QString& name); // and rebuilds the title
    int MenuSource() const { return menuSource_; }
    void SetSessionTitle();
    void LoadGlobalSettings();
    void ApplyFuncBar(); // the function bar as the global settings have it
    void ApplySessionMenu();
    void LoadMacroMenu(const QString& macroList);
    QString DefaultFontName() const;

    // --- SessionSettings
    void Apply() override {}
    bool AutoClose() const override { return autoClose_; }
    void SetAutoClose(bool on) override;
    QString Caption() const override { return caption_; }
    void SetCaption(const QString& text) override;
    QString Icon() const override { return icon_; }
    void SetIcon(const QString& path) override;
    bool ShowErrs() const override { return showErrs_; }
    void SetShowErrs(bool on) override;
    int CopyPasteShortcut() const override { return copyPasteShortcut_; }
    void SetCopyPasteShortcut(int mode) override;
    QString MouseTable() const override { return customMouseTable_; }
    void SetMouseTable(const QString& path) override;
    int CapsLock() const override { return capsLock_ ? 1 : 0; }
    void SetCapsLock(int on) override;
    QString MousePatterns() const override;
    void SetMousePatterns(const QString& text) override;
    QString Script() const override;
    void SetScript(const QString& text) override;
    void ReadProperties(const PropertyBag& bag) override;
    void WriteProperties(PropertyBag& bag) const override;

    // --- IGetSubstituteName
    bool Callback(QString& name) const override;

signals:
    void Extension(const QString& command);
    void DataReady();

private:
    enum class Dialog
    {
        IfNoName,
        Always
    };

    explicit clsSession(ApplicationPort& application);
    void LoadSession(const QString& fileName);
    void TakeDefaults();
    std::optional<Failure> ReadFile();                    // a file it names that is missing
    bool SaveSession(const QString& name, Dialog dialog); // false: cancelled
    std::optional<QString> AskForFileName() const;
    void WriteFile();
    bool ConfirmDisconnect(const QString& title);
    bool ConfirmSave(const QString& title);
    void ApplyCopyPasteShortcut();
    void EnablePasteTool();
    void SetSessionIcon();
    int OrdinalAmongSameFile() const;
    SessionWindow& Window() const;
    template <typename T>
    bool Assign(T& field, const T& value); // true when it differed; marks the session changed

    ApplicationPort& application_;
    SessionWindow* frmSession_ = nullptr;
    int number_ = 0;
    QString id_;
    int serverMode_ = 0;
    QString serverName_;
    QString caption_;
    QString title_; // that SetSessionTitle last gave the window
    QString fileName_;
    QString icon_;
    QString saveDir_;
    QString pasteFromFileName_;
    bool autoClose_ = false;
    mutable bool changed_ = false; // asking merges the emulator's flag in, and keeps it
    bool terminated_ = false;
    bool showErrs_ = false;
    bool shown_ = false; // last Show or Hide; decides how WindowState is set
    int menuSource_ = 0;
    QString customMouseTable_;
    bool capsLock_ = false;
    int copyPasteShortcut_ = 0;
};

} // namespace kestrune
