#pragma once

// The emulator control, without a window: one terminal, its settings and the line to its host. Sessions and
// scripts drive it through the members below; a view draws Screen() and hands keys, mouse and size in.
//
// Columns and rows count from 0. Row 0 is the top of the screen, row -1 the newest line of the history. A
// boolean of the automation surface is a bool here. All calls and events are on the user-interface thread. Most
// events come from the event loop; those with an out argument, and those that a call causes, from inside it.
// A handler may call anything here except the destructor: the control is taken apart from the event loop.
//
// What is not built yet raises Failure NotImplemented and says which feature it is.

#include <emulator/control/emulatorsettings.h>
#include <emulator/control/lightscheme.h>
#include <emulator/control/screenpicture.h>
#include <emulator/control/selectionarea.h>
#include <emulator/engine/terminal.h>
#include <ports/cause.h>
#include <ports/clipboard.h>
#include <ports/clock.h>
#include <ports/line.h>
#include <ports/outputfiles.h>
#include <ports/printing.h>
#include <ports/questions.h>
#include <ports/textfiles.h>
#include <ports/waiter.h>

#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>
#include <vector>

namespace kestrune {

class DataStream;
class ExtensionFilter;
class HeldSelection;
class HostCapture;
class HostText;
class Media;
class PasteQueue;
class PhoneCall;
class Resumption;
class SlavePrinter;
class StandingQuestion;

struct EmulatorPorts // all must outlive the control
{
    LineFactory& lines;
    Clock& clock;
    KeyFiles& files;
    Questions& ask;
    Clipboard& clipboard;
    TextFiles& texts;
    Waiter& waiter;
    OutputFiles& outputs;
    Printing& printing;
    Media& media;
};

enum class ResetMode : int
{
    Default = 0, // the same as Terminal
    Terminal = 1,
    Line = 2, // closes the line and opens it again
    Resume = 10,
    HostKeyCancel = -2,
    HostKeyContinue = -3,
    HostKeyUpdate = -4,
};

enum class ScrollCommand : int
{
    LineUp = 0,
    LineDown = 1,
    PageUp = 2,
    PageDown = 3,
    Top = 6,
    Bottom = 7
};

struct MousePattern
{
    int button = 0;
    QString pattern;
    QString rClick;
    QString rDblClk;
};

class ctlEmulator : public QObject
{
    Q_OBJECT

public:
    static constexpr int ToEdge = -32768; // SetSelection: to the edge; GetText: not given
    static constexpr int Present = -1;    // the present position, colour or page

    explicit ctlEmulator(const EmulatorPorts& ports, QObject* parent = nullptr);
    ~ctlEmulator() override;

    // forSave is the optional argument that the design has on the way here; nothing hangs on it.
    EmulatorSettings& Settings(bool forSave = false);
    const EmulatorSettings& Settings() const;

    // --- connection
    bool OnLine() const; // a line is open or being opened
    // true opens the line that Settings describes; the outcome comes by events. false closes it.
    void SetOnLine(bool on);
    bool Connected() const; // over a modem: a call stands
    LineState State() const { return lineState_; }
    bool HasChildren() const; // a program besides the shell itself runs at the far end
    int DialStatus() const;   // enum DialStatus (ports/line.h)
    qint32 BytesIn() const;   // since the line was last opened; stays at the largest number
    qint32 BytesOut() const;
    void Break();
    void Abort(); // ends a paste that is still going out, and a call that waits for the host
    // Over a modem, which is opened when it is not. -1: the modem dials, or will when it is ready; with wait, once the
    // call stands (with a live window; the control may be gone after it). 0: it cannot, or the call was not made; see
    // DialStatus. Raises Failure when the session is not over a modem.
    int Dial(const QString& phoneNumber, int wait = 0);
    // Ends the call, or the try to make one; on other devices closes the line. With wait, returns when it has ended.
    // 0: there was nothing to end, or the modem would not.
    int HangUp(int wait = 0);
    // ResetMode. The three about a host key answer the question that CommError has put; nothing happens without one.
    void Reset(int mode = 0);
    // Answers SecretsWanted; nothing happens when that question no longer stands.
    void AnswerSecrets(LineAnswer::Choice choice, std::vector<Secret> values);
    void Shutdown();               // the last call that a control receives: closes the line, no event after it
    int Busy() const { return 0; } // positive while the control must not be closed

    // --- screen
    int Rows() const;
    int Cols() const;
    int Row() const; // of the cursor
    int col() const;
    void SetRow(int row);
    void SetCol(int column);
    int Page() const;                    // of memory, where the cursor is, from 0; below the setting Pages
    void SetPage(int page);              // shows it, too; raises Failure when there is no such page
    int Color() const { return color_; } // attribute value 0 to 63 that SetText and Clear use
    void SetColor(int attribute);
    qint16 Colors(int index) const { return settings_.Colors(index); }
    void SetColors(int index, qint16 color) { settings_.SetColors(index, color); }
    // 0: as large as the window, 1: ExtCols by ExtRows, whatever the window. The setting of this name is where a
    // session starts; the host changes it by DECCOLM.
    int ScrMode() const;
    void SetScrMode(int mode);
    void Emulate(const QString& text); // as if the host had sent it
    // Puts text on the screen, not to the host. Stops at the end of the row.
    void SetText(const QString& text, int column = Present, int row = Present, int color = Present);
    void Clear(int left = -1, int top = -1, int right = -1, int bottom = -1, int color = Present);
    void Locate(int column, int row, int page = Present);
    // Text of one row from column on. Not given: the cursor's row, column 0, to the right edge. noProtect leaves
    // protected cells blank.
    QString GetText(int column = ToEdge, int row = ToEdge, int cols = ToEdge, bool noProtect = false) const;
    // A rectangle of the screen, text and looks, as an object that SetBlock puts back where it was; below 0 or beyond
    // the edge: to the edge. SetBlock raises Failure 13 for anything else.
    Variant GetBlock(int left, int top, int right, int bottom, int page = Present) const;
    void SetBlock(const Variant& block, int page = Present);

    // --- to the host
    void WriteText(const QString& text); // raises Failure 68 when there is no line
    // A file's text, or the clipboard's, in the form that the settings say (pasteform.h). For a user's cause it is
    // asked about first when it has several lines or control characters. Raises Failure when the file cannot be read;
    // with no line it is refused with a sign.
    void Paste(const QString& fileName = {}, Cause cause = Cause::User);
    void PastePrimary();
    void PasteDropped(const QString& text) { PasteText(text, Cause::User); } // what the user dropped on the view
    bool CanPaste() const;

    // --- from the host, for programs
    // What becomes of the host's text besides going to the screen. 0: a waiting call sees what comes while it waits.
    // 1: it is also kept for the calls to come (the newest DataStream::MaxKept characters), and DataReady tells of it;
    // while a call waits, typing is refused. 2: as 1, and the screen does not get it. Other numbers are as 1.
    int InputMode() const;
    void SetInputMode(int mode);
    // Both wait with a live window, for timeout seconds at most (0: not at all, below 0: without end). Abort, the end
    // of the line and the end of the session end a wait as if time were up. Control characters count as text. Raise
    // Failure when another call is waiting on this control, which may itself be gone after them.
    // mode 0: length characters. 1: up to the end of the line (CR, LF or both), which is taken and not returned, but
    // not more than length. When time is up: what there is.
    QString ReadText(int mode = 0, int length = 80, int timeout = 30);
    // 1 to 10: the target that came first, which is taken with all before it; 0: time was up, and nothing is taken.
    // compare 0: exactly, 1: without regard to case. Empty targets are not looked for.
    int WaitFor(int compare, int timeout, const QStringList& targets);
    // From now on what the host sends between the two is not shown: the event Extension has it. An empty lead-in
    // ends that; an empty terminator is a carriage return.
    void SetExtension(QString& leadIn, QString& terminator);

    // What the host of this control sends goes to the screen of another control, whose answers come back to this
    // host; target may end at any time. exitMode 0: until DetachAlternateSink, 1: until the host sends the byte
    // exitCode (0 to 255), which nobody gets. Neither value is changed. The end of this line ends it, too. Raises
    // Failure for another mode or code, for this control itself, and for one that is part of another pair.
    void AttachAlternateSink(ctlEmulator& target, qint16& exitMode, qint16& exitCode);
    void DetachAlternateSink();
    int AttachState() const; // 0: not attached, 1: to another control, 2: another is attached to this one

    // --- capture
    // Writes what comes from now on into a file: what the host sends as it is received (source 1), or what would be
    // printed (2). mode 0: a new file only, 1: overwrites, 2: appends, 3: to the clipboard, when the capture ends; 128
    // added: the text only, in TextFileEncoding (0: the host's own bytes). A capture that runs is ended first. A
    // relative name is taken in DefaultCaptureDir. When the file cannot be written, the status line says why and
    // CaptureSource stays 0. Raises Failure for a source or mode that does not exist.
    void Capture(const QString& fileName, int source, int mode);
    void CaptureEnd();
    QString CaptureFileName() const; // empty: none, or to the clipboard
    int CaptureMode() const;
    int CaptureSource() const; // 0: no capture runs

    // --- printing. The host can print by itself; what it prints and what the calls below copy goes, as jobs, to
    // SlavePrinterName (see PrintJob::printer; "No Printer": nothing is printed). SlavePrintMode 0: text that is laid
    // out on pages here, 1: bytes for the printer as they come. A job ends when nothing has come for PrinterTimeout
    // seconds; with 0, by PrinterOff and PrinterClose alone. Where it went, the status line says.
    int PrinterMode() const { return printerMode_; } // 0 off, 1 copy, 2 transparent
    void SetPrinterMode(int mode);                   // raises Failure for another number
    void PrinterOn(int transparent = 0); // prints what the host sends from now on; transparent: and does not show it
    void PrinterOff();
    void PrinterClose(); // ends the job that is open; the mode stays
    // The selection, or the screen, as a job for ScreenPrinterName. ScreenPrintMode 0: the text alone, others: bold and
    // underlined text as such.
    void PrintScreen();

    // --- selection and clipboard
    void SetSelection(int left = 0, int top = 0, int right = ToEdge, int bottom = ToEdge);
    void SetSelection(const SelectionArea& area);
    void ClearSelection();
    bool GetSelection(int& left, int& top, int& right, int& bottom) const; // false: none, four zeros
    std::optional<SelectionArea> SelectedArea() const;
    // Trailing blanks cut, soft wraps joined, the rows of a block kept apart.
    QString Selection() const;
    // As text, and with colours and attributes as HTML and RTF unless CopyPlainText is set. Four zeros: the selection;
    // nothing selected leaves the clipboard as it is.
    void Copy(int left = 0, int top = 0, int right = 0, int bottom = 0);
    void CopyHistory(int left = 0, int top = 0, int right = 0, int bottom = 0); // four zeros: history and screen
    int CopySelMode() const { return settings_.Integer(Setting("CopySelMode")); }
    void SetCopySelMode(int mode) { settings_.SetValue(Setting("CopySelMode"), mode); }

    // --- history
    bool HistoryVisible() const { return scrollback_ > 0; }
    void SetHistoryVisible(bool on); // true: one page back, false: to the newest
    void ScrollHistory(int command); // ScrollCommand
    void ScrollTo(int rowsBack);     // clamped to what the history has
    int RowsBack() const { return scrollback_; }
    bool LockHistory() const { return lockHistory_; } // typing does not leave the history
    void SetLockHistory(bool on) { lockHistory_ = on; }

    // --- keyboard
    bool LockKeyboard() const; // by a program here or by the host
    void SetLockKeyboard(bool on);
    bool CapsLock() const { return capsLock_; } // swaps the case of typed letters
    void SetCapsLock(bool on) { capsLock_ = on; }
    bool TrackKeyboardState() const { return trackKeyboardState_; }
    void SetTrackKeyboardState(bool on); // the function bar shows the bank of the modifiers that are down
    QString KeyFunction(int code) const { return settings_.FKeys(code); } // empty: none on this key

    // --- held for the shell and for pieces to come
    QString Title() const { return title_; }
    void SetTitle(const QString& title);
    int CustomMode() const { return customMode_; }
    void SetCustomMode(int mode) { customMode_ = mode; }
    int TextFileEncoding() const { return textFileEncoding_; }
    void SetTextFileEncoding(int encoding) { textFileEncoding_ = encoding; }
    int FuncBarPos() const { return funcBarPos_; } // 0 below the screen, 1 above, 2 left, 3 right
    void SetFuncBarPos(int pos);
    int FuncBarStyle() const { return funcBarStyle_; } // 0 key and label side by side, 1 one over the other, 2 label
    void SetFuncBarStyle(int style);
    int FuncBarBank() const { return funcBarBank_; } // 0 no bar, -1 the keys alone, else as in functionkeys.h
    void SetFuncBarBank(int bank);
    bool RecordingText() const { return recordingText_; } // macro-recording switches: host text, typed keys
    void SetRecordingText(bool on) { recordingText_ = on; }
    bool RecordingKeys() const { return recordingKeys_; }
    void SetRecordingKeys(bool on) { recordingKeys_ = on; }
    quintptr hwnd() const { return hwnd_; } // of the view; 0 while there is none
    void SetHwnd(quintptr handle) { hwnd_ = handle; }
    // What a session without a palette of its own is shown on: the desktop's choice, told by the view.
    Ground DesktopGround() const { return desktopGround_; }
    void SetDesktopGround(Ground ground);
    void RefreshMenu() {} // the control draws no menu of its own
    void MouseTableReset() { mouseTable_.clear(); }
    void MouseTableAdd(int button, const QString& pattern, const QString& rClick, const QString& rDblClk);
    const std::vector<MousePattern>& MouseTable() const { return mouseTable_; }

    // --- pictures and sounds, as ports/media.h has them
    // column and row: of the upper left corner; width and height in cells, 0: the picture's own. preserveAspect: as
    // large as fits there. borderStyle 0: none, others: a line. Raises Failure for a place that the screen does not
    // have.
    void LoadImage(const QString& fileName, int column, int row, int width = 0, int height = 0,
                   bool preserveAspect = false, int borderStyle = 0);
    void UnloadImage(const QString& fileName = {}); // empty: all
    const std::vector<ScreenPicture>& Pictures() const { return pictures_; }
    void PlayMIDI(const QString& notes);
    void PlayWave(const QString& fileName);

    // --- transfers: states are idle, operations are refused
    int XferBytes() const { return 0; }
    int XferFiles() const { return 0; }
    int XferStatus() const { return 0; }
    int Upload(const QString& fileName, int protocol, int mode, int overwrite = 0, int wait = 0);
    int Download(const QString& fileName, int protocol, int mode, int overwrite = 0, int wait = 0);

    // --- for the view
    bool ScrollsSmoothly() const; // as ScrollMode says, or the host (DECSCLM)
    const emu::Terminal& Screen() const { return *terminal_; }
    // The window has this many cells. The line is told once for each call that changes anything.
    void Resize(int cols, int rows, int pixelWidth, int pixelHeight);
    void TypeKey(const emu::KeyPress& key, int code = 0); // code: see EmulatorSettings::FKeys; 0: none
    void TypeText(const QString& text);                   // from an input method
    bool SendMouse(const emu::MouseAction& action);       // false: the host does not want it
    void SendFocus(bool gained);
    struct Columns // first to one past the last
    {
        int first = 0;
        int last = 0;
    };
    Columns SelectedColumns(int row) const; // empty: first == last
    void AnnounceSelection(); // the user has finished selecting: SelectionChange, and the primary selection
    SelectionArea WordAt(int column, int row) const;
    SelectionArea LineAt(int row) const; // with the rows that it is soft-wrapped over

signals:
    // --- the events of the control
    void ExecScript(const QString& script, bool flag, bool* done);
    void Disconnect();
    void CommError(quint32* word, const QString& description, bool fatal); // a handler zeroes what it dealt with
    void ConnectionStatus(qint16 status, QString* text);                   // status: LineState
    // The line waits for AnswerSecrets. A handler sets taken; untaken, the line is told that nobody is there.
    void SecretsWanted(const LineQuestion& question, bool* taken);
    void QuestionWithdrawn(); // the line that asked for trust or secrets has ended
    void DeviceStatus(const QString& text);
    void TermTypeChange(int termType);
    void PrinterChange(int state);
    void CaptureChange(int state);
    void ScreenSizeChange(int cols, int rows, int pages, bool extended);
    void CursorMove(int column, int row, int page); // at most once for each turn of the event loop
    void KeyboardLock(bool locked);
    void ServerStart(const QString& name);
    void ServerExit();
    void SaveSettings();
    void LoadSettings();
    void CloseSession();
    void ContextMenu(int button, int x, int y, const QString& band, bool* handled); // 1 left, 2 right, 3 function
    void Extension(const QString& command);
    void DataReady();
    void SelectionChange(int left, int top, int right, int bottom); // by the user
    void MouseDown(int button, int shift, int x, int y);
    void RecordText(const QString& text);
    void RecordKey(const QString& text, int code);
    void ReadProfile(const QString& section, const QString& key, QString* value, bool* found);

    // --- for the view
    void ScreenChanged(); // something visible may have changed, also the selection or the place in the history
    void KeyWasTyped();   // what comes back is what the user waits for: draw it at once
    void Bell();
    void InputRefused(); // a key while there is no line, or the keyboard is locked
    void HostTitleChange(const QString& title);
    void LookChanged(); // font, palette, attribute colours or the picture behind the text
    void PicturesChanged();
    void GridChanged();    // extended or normal size, or the rows below the screen: the window has to be laid out again
    void FuncBarChanged(); // place, style or bank of the function bar, or whether it follows the keyboard

private:
    class Listener;

    const emu::Personality* PersonalityNumbered(int number);
    const emu::Personality& PersonalityFromSettings();
    void OnSettingChanged(SettingId id);
    void LineAsked(const LineQuestion& question);
    void AnswerTrust(LineAnswer::Choice choice);
    std::unique_ptr<emu::Terminal> NewScreen();
    void OpenLine(std::shared_ptr<LineResume> from = {});
    bool ResumesByItself() const;
    bool FailureWaits(quint32 word) const;
    void Resume();
    void NextResume();
    bool GoesOnResuming();
    void StopResuming();
    void Resumed(bool sameSession);
    void ShowScreen(std::unique_ptr<emu::Terminal> other, bool keep);
    void RefuseDevice(Device device);
    void TellSize();
    void ResizeScreen(emu::Size size);
    void Received(std::string_view bytes);
    void ShowHostBytes(std::string_view bytes);
    void ToSink(std::string_view bytes);
    std::string WithoutExtensions(std::string_view bytes);
    void RefuseSecondWait() const; // raises Failure
    void RunStreamEvents();
    int PrinterState() const;
    void Print(std::string_view bytes);
    void HostPrints(std::string_view bytes);
    QString PrintTitle() const;
    std::function<void(const PrintOutcome&)> TellOutcome();
    void StopCapture(const QString& why); // empty: it was asked for
    void TellUser(const QString& line);   // in the place of the device's status, for a while
    void AfterChange();
    void SendBytes(std::string_view bytes);
    bool MayType(); // false: refused, with a sign
    void Typed(std::string_view bytes, const QString& text, int code);
    void RunFunction(const QString& text, int code);
    void BreakKey(); // what the setting BreakKeyAction says
    void PasteText(const QString& text, Cause cause);
    bool IsLineUp() const { return lineState_ == LineState::Connected; }
    void DialWanted();
    void AbortDialing();
    void CallChanged(enum DialStatus status);
    void PumpPaste();
    void CopyArea(const SelectionArea& area);
    void TakeOfferedClipboard();
    void Ring(); // the bell, as the setting Sound has it
    void SetStatus(LineState state, const QString& text);
    void LineFailed(quint32 word, const QString& description, bool fatal);
    void LineEnded();
    void Notice(const QString& text);
    void ScheduleEvents();
    void RunEvents();
    void TellCursor();
    void TellScreen();
    void TellTitle();
    SelectionArea Resolve(int left, int top, int right, int bottom) const;
    emu::Style StyleFor(int color) const;
    void OnPage(int page, const std::function<void()>& act) const;

    // What was last told, so that an event comes only for a change.
    struct Told
    {
        emu::Position cursor{-1, -1};
        int page = 0;
        Clock::Duration cursorAt{0};
        std::optional<Clock::Duration> titleAt;
        quint64 bytesIn = 0; // by then
        emu::Size size{0, 0};
        int pages = 0;
        int statusRows = 0;
        bool extended = false;
        bool rowsOfHost = false;
        bool locked = false;
        int printer = 0;
    };

    EmulatorPorts ports_;
    EmulatorSettings settings_;
    std::unique_ptr<Listener> listener_;
    std::unique_ptr<emu::Terminal> terminal_;
    std::unique_ptr<Line> line_;
    std::unique_ptr<PasteQueue> paste_;
    std::unique_ptr<HostText> hostText_; // for the macro recorder and for programs that read
    std::unique_ptr<DataStream> stream_;
    std::unique_ptr<ExtensionFilter> extension_;
    std::unique_ptr<HostCapture> capture_; // null: none runs
    std::unique_ptr<SlavePrinter> printer_;
    int printerMode_ = 0;
    bool hostPrints_ = false; // by controller mode or auto print
    std::unique_ptr<HeldSelection> selection_;
    std::unique_ptr<StandingQuestion> question_;
    std::unique_ptr<Resumption> resumption_;
    std::unique_ptr<Clock::Timer> resumeTimer_;
    std::unique_ptr<PhoneCall> call_;
    bool replaying_ = false; // the host has had the answers to what the screen now takes again
    LineState lineState_ = LineState::Closed;
    bool closing_ = false; // we asked for the end of the line
    bool reopen_ = false;  // and want it opened again
    bool wasConnected_ = false;
    bool hostEchoes_ = true;
    QString endText_; // why the line ended, in the user's words
    TerminalSize size_;
    quint64 bytesIn_ = 0;
    quint64 bytesOut_ = 0;
    int scrollback_ = 0; // rows that the view is back from the newest
    Told told_;
    std::unique_ptr<Clock::Timer> cursorTimer_;
    std::unique_ptr<Clock::Timer> titleTimer_;
    bool scheduled_ = false;
    bool bell_ = false;
    std::optional<QString> hostTitle_;
    std::optional<QString> offered_; // by the host, for the clipboard
    bool toldOfOffer_ = false;
    std::optional<Clock::Duration> rangAt_;
    QPointer<ctlEmulator> sink_;   // gets our host's data
    QPointer<ctlEmulator> source_; // whose host's data we show
    int sinkExit_ = -1;            // the byte that ends it; below 0: none
    QStringList extensions_;       // told in the next turn
    bool dataReady_ = false;
    std::unique_ptr<Clock::Timer> leadInTimer_;
    QString deviceStatus_;
    std::unique_ptr<Clock::Timer> toldTimer_;
    int color_ = 0;
    Ground desktopGround_ = Ground::Dark;
    bool lockHistory_ = false;
    bool lockKeyboard_ = false;
    bool capsLock_ = false;
    bool trackKeyboardState_ = false;
    bool recordingText_ = false;
    bool recordingKeys_ = false;
    bool shutDown_ = false;
    int customMode_ = 0;
    int textFileEncoding_ = 0;
    int funcBarPos_ = 0;
    int funcBarStyle_ = 0;
    int funcBarBank_ = 0;
    quintptr hwnd_ = 0;
    QString title_;
    std::vector<MousePattern> mouseTable_;
    std::vector<ScreenPicture> pictures_;
};

} // namespace kestrune
