#include "ctlemulator.h"

#include "datastream.h"
#include "extensionfilter.h"
#include "functionkeys.h"
#include "heldselection.h"
#include "hostcapture.h"
#include "hosttext.h"
#include "latintext.h"
#include "pastequeue.h"
#include "phonecall.h"
#include "replybudget.h"
#include "resumption.h"
#include "screentext.h"
#include "sessionoptions.h"
#include "slaveprinter.h"
#include "standingquestion.h"

#include <dispatch/failure.h>
#include <emulator/personalities/personalities.h>

#include <QPointer>

#include <algorithm>
#include <limits>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kBreakMilliseconds = 300; // longer than any character at 300 bits a second
constexpr quint64 kFloodBytes = 4096;   // between two turns: more than anybody reads
constexpr auto kCursorPause = std::chrono::milliseconds(50);
constexpr auto kTitlePause = std::chrono::milliseconds(50); // a title that changes faster cannot be read
const QString kSource = u"ctlEmulator"_s;

qint32 Clipped(quint64 count) { return qint32(std::min<quint64>(count, std::numeric_limits<qint32>::max())); }

// VT220 is the type whose sequences most hosts send.
constexpr int kFallbackType = 8;
constexpr int kFirstCustomType = 75; // from here on an installation names what they are like

} // namespace

// What engine and line tell, in one place, away from the public face.
class ctlEmulator::Listener : public emu::TerminalListener, public LineListener
{
public:
    explicit Listener(ctlEmulator& control) : c_(control) {}

    // --- the engine
    void Reply(std::string_view bytes) override
    {
        if (c_.replaying_)
            return;
        ctlEmulator& to = c_.source_ ? *c_.source_ : c_;
        if (to.line_ && budget_.Take(bytes.size(), size_t(to.line_->Unsent()), c_.ports_.clock.Now()))
            to.SendBytes(bytes);
    }
    void Bell() override { c_.bell_ = true; }
    void TitleChanged(std::string_view utf8) override
    {
        c_.hostTitle_ = QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
    }
    void ScreenSizeChanged(emu::Size) override { sizeChanged = true; }
    void PrinterStateChanged(int state) override { c_.hostPrints_ = state != 0; }
    void PrinterData(std::string_view bytes) override { c_.HostPrints(bytes); }
    void ClipboardOffered(std::string_view utf8) override
    {
        c_.offered_ = QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
    }
    void HistoryAdded(int rows) override
    {
        if (c_.scrollback_ > 0)
            c_.scrollback_ += rows; // what is looked at stays where it is
    }

    // --- the line
    void LineReceived(std::string_view bytes) override { c_.Received(bytes); }
    void LineStateChanged(LineState state, const QString& text) override { c_.SetStatus(state, text); }
    void LineDeviceStatus(const QString& text) override
    {
        c_.toldTimer_.reset();
        c_.deviceStatus_ = text;
        emit c_.DeviceStatus(text);
    }
    void LineError(quint32 word, const QString& description, bool fatal) override
    {
        c_.LineFailed(word, description, fatal);
    }
    void LineClosed() override { c_.LineEnded(); }
    void LineProgramEnded(int exitCode, int signalNumber) override
    {
        c_.endText_ = signalNumber != 0 ? tr("Process ended by signal %1").arg(signalNumber)
                                        : tr("Process ended with exit code %1").arg(exitCode);
    }
    void LineRemoteEcho(bool remote) override { c_.hostEchoes_ = remote; }
    void LineResumed(bool sameSession) override { c_.Resumed(sameSession); }
    void LineAsks(const LineQuestion& question) override { c_.LineAsked(question); }
    void LineDialStatus(enum DialStatus status, const QString&) override { c_.CallChanged(status); }
    void LineDrained() override { c_.PumpPaste(); }

    bool sizeChanged = false;

private:
    ctlEmulator& c_;
    ReplyBudget budget_;
};

ctlEmulator::ctlEmulator(const EmulatorPorts& ports, QObject* parent)
    : QObject(parent), ports_(ports), settings_(ports.files), listener_(std::make_unique<Listener>(*this)),
      paste_(std::make_unique<PasteQueue>(ports.clock, [this] { PumpPaste(); })),
      hostText_(std::make_unique<HostText>()), stream_(std::make_unique<DataStream>(ports.clock)),
      extension_(std::make_unique<ExtensionFilter>()),
      printer_(std::make_unique<SlavePrinter>(ports.printing, ports.clock, TellOutcome())),
      selection_(std::make_unique<HeldSelection>()), question_(std::make_unique<StandingQuestion>()),
      resumption_(std::make_unique<Resumption>()), call_(std::make_unique<PhoneCall>())
{
    size_.cols = settings_.Integer(Setting("NormCols"));
    size_.rows = settings_.Integer(Setting("NormRows"));
    terminal_ = NewScreen();
    connect(&settings_, &EmulatorSettings::SettingChanged, this, &ctlEmulator::OnSettingChanged);
    connect(&settings_, &EmulatorSettings::PaletteChanged, this, &ctlEmulator::LookChanged);
    connect(&settings_, &EmulatorSettings::ColorsChanged, this, &ctlEmulator::LookChanged);
    ScheduleEvents();
}

ctlEmulator::~ctlEmulator() { stream_->Cancel(); } // whoever waits in a call would wait for ever

std::unique_ptr<emu::Terminal> ctlEmulator::NewScreen()
{
    return std::make_unique<emu::Terminal>(TerminalOptionsOf(settings_, {size_.cols, size_.rows}),
                                           PersonalityFromSettings(), *listener_);
}

EmulatorSettings& ctlEmulator::Settings(bool) { return settings_; }
const EmulatorSettings& ctlEmulator::Settings() const { return settings_; }

// --- settings, live

// nullptr: there is no such type.
const emu::Personality* ctlEmulator::PersonalityNumbered(int number)
{
    if (number < kFirstCustomType)
        return emu::FindPersonality(number);
    QString row;
    bool found = false;
    emit ReadProfile(u"Custom"_s, u"TT%1"_s.arg(number), &row, &found);
    const QStringList fields = row.split(u',');
    if (fields.size() < 2 || fields[0].toInt() <= 0)
        return emu::FindPersonality(number); // some of these numbers are built in, too
    return emu::FindPersonality(fields[1].trimmed().toStdString());
}

const emu::Personality& ctlEmulator::PersonalityFromSettings()
{
    const auto* type = PersonalityNumbered(settings_.Integer(Setting("TermType")));
    return type ? *type : *emu::FindPersonality(kFallbackType);
}

void ctlEmulator::OnSettingChanged(SettingId id)
{
    static constexpr std::array engine{Setting("HistoryRows"),   Setting("Charset"),        Setting("NoAutoWrap"),
                                       Setting("AnsiAppCursor"), Setting("AnsiAppKeypad"),  Setting("BkspSendsDel"),
                                       Setting("AnswerBack"),    Setting("CursorType"),     Setting("LockFKeys"),
                                       Setting("Pages"),         Setting("MessageRows"),    Setting("ScrMode"),
                                       Setting("ExtCols"),       Setting("ExtRows"),        Setting("CharacterMapping"),
                                       Setting("Ansi8Bit"),      Setting("DisableAppMode"), Setting("ReflowOnResize")};
    static constexpr std::array look{Setting("FontName"),
                                     Setting("FontSize"),
                                     Setting("BoldFont"),
                                     Setting("LegibleFont"),
                                     Setting("ScaleFont"),
                                     Setting("BackgroundPictureFile"),
                                     Setting("BackgroundPictureMode"),
                                     Setting("BackgroundTransparency")};
    const auto isOneOf = [id](const auto& ids) { return std::find(ids.begin(), ids.end(), id) != ids.end(); };

    if (id == Setting("TermType")) {
        const int type = settings_.Integer(id);
        terminal_->SelectPersonality(PersonalityFromSettings());
        if (!PersonalityNumbered(type))
            Notice(tr("The terminal type %1 has not been implemented at this time. %2 stands in for it.")
                       .arg(type)
                       .arg(LatinText(PersonalityFromSettings().name)));
        emit TermTypeChange(type);
    }
    if (id == Setting("Charset")) {
        const QString name = settings_.Text(id);
        if (!name.isEmpty() && !CharsetNamed(name))
            Notice(tr("There is no character set \"%1\".").arg(name));
    }
    if (id == Setting("CharacterMapping") && !MappingOf(settings_))
        Notice(tr("The character mapping \"%1\" is not a list such as A4=20AC 80=2022.").arg(settings_.Text(id)));
    if (id == Setting("TermType") || isOneOf(engine)) {
        terminal_->SetOptions(TerminalOptionsOf(settings_, terminal_->NormalSize()));
        hostText_->SetCharset(CharsetOf(settings_));
        AfterChange();
    }
    if (isOneOf(look))
        emit LookChanged();
    if (id == Setting("SlavePrinterName") || id == Setting("PrinterName"))
        ScheduleEvents();
}

// --- connection

bool ctlEmulator::OnLine() const { return line_ && !closing_; }

void ctlEmulator::SetOnLine(bool on)
{
    if (!on)
        StopResuming();
    if (shutDown_ || on == OnLine()) {
        reopen_ = reopen_ && on;
        return;
    }
    if (!on) {
        closing_ = true;
        reopen_ = false;
        line_->Close();
    } else if (line_) {
        reopen_ = true; // the old line has yet to say that it is closed
    } else {
        OpenLine();
    }
}

void ctlEmulator::OpenLine(std::shared_ptr<LineResume> from)
{
    LineOptions options = LineOptionsOf(settings_, terminal_->CurrentPersonality(), size_);
    options.resume.from = std::move(from);
    bytesIn_ = bytesOut_ = told_.bytesIn = 0;
    closing_ = reopen_ = wasConnected_ = toldOfOffer_ = false;
    endText_.clear();
    paste_->Abort(nullptr);
    // RFC 854: until a host offers to echo, a network virtual terminal does it itself.
    const bool telnet = options.device == Device::Telnet || options.device == Device::SslTelnet;
    hostEchoes_ = !telnet || options.telnet.bypass;
    call_->LineOpens(options.device == Device::Modem);
    if (WhyNoLine(settings_).isEmpty())
        line_ = ports_.lines.Make(options, *listener_);
    if (line_)
        line_->Open();
    else
        RefuseDevice(options.device);
}

void ctlEmulator::RefuseDevice(Device device)
{
    const QString name = ports_.lines.Name(device);
    QString text = WhyNoLine(settings_);
    const quint16 number = text.isEmpty() ? LineErrorNumber::InvalidArgument : LineErrorNumber::ProtocolNotSupported;
    if (text.isEmpty())
        text = device == Device::None || name.isEmpty()
                   ? tr("This session has no connection yet: choose one in its settings.")
                   : tr("The %1 connection has not been implemented at this time.").arg(name);
    // As with every line the outcome comes from the event loop, not from inside the call.
    ports_.clock.Post([self = QPointer(this), device, number, text] {
        if (!self || self->shutDown_ || self->line_)
            return;
        self->LineFailed(LineErrorWord(device, number), text, true);
        if (self)
            self->LineEnded();
    });
}

bool ctlEmulator::HasChildren() const { return line_ && line_->HasChildren(); }
qint32 ctlEmulator::BytesIn() const { return Clipped(bytesIn_); }
qint32 ctlEmulator::BytesOut() const { return Clipped(bytesOut_); }

void ctlEmulator::Break()
{
    if (MayType() && line_)
        line_->Break(kBreakMilliseconds);
}

void ctlEmulator::Abort()
{
    bytesOut_ += paste_->Abort(line_.get());
    stream_->Cancel();
    AbortDialing();
}

void ctlEmulator::SetStatus(LineState state, const QString& text)
{
    if (shutDown_)
        return;
    lineState_ = state;
    if (IsLineUp() && call_->IsMissing())
        DialWanted();
    wasConnected_ = wasConnected_ || state == LineState::Connected;
    // A line that has closed says why by other notices; the reason is what the status shows.
    QString shown = state == LineState::Closed && text.isEmpty() ? endText_ : text;
    emit ConnectionStatus(qint16(state), &shown);
}

void ctlEmulator::LineFailed(quint32 word, const QString& description, bool fatal)
{
    if (shutDown_)
        return;
    if (fatal)
        endText_ = description;
    if (fatal && FailureWaits(word))
        return;
    emit CommError(&word, description, fatal);
}

void ctlEmulator::LineEnded()
{
    resumption_->Keep(closing_ || !line_ ? nullptr : line_->TakeResume());
    line_.reset();
    call_->LineClosed();
    paste_->Abort(nullptr);
    if (shutDown_)
        return;
    if (question_->Withdraw())
        emit QuestionWithdrawn();
    DetachAlternateSink();
    ShowHostBytes(extension_->TakeHeld());
    extension_->Reset();
    stream_->Cancel();
    const bool asked = std::exchange(closing_, false);
    if (std::exchange(reopen_, false)) {
        lineState_ = LineState::Closed;
        OpenLine();
        return;
    }
    if (!asked && GoesOnResuming())
        return;
    StopResuming();
    if (endText_.isEmpty() && wasConnected_)
        endText_ = asked ? tr("Disconnected") : tr("Connection closed by the host");
    // The screen of a session that can be resumed is left as its programs know it.
    if (!endText_.isEmpty() && !resumption_->IsPossible())
        Notice(endText_);
    SetStatus(LineState::Closed, {});
    if (!asked)
        emit Disconnect();
}

void ctlEmulator::Shutdown()
{
    shutDown_ = true;
    blockSignals(true);
    resumption_->Stop();
    resumeTimer_.reset();
    DetachAlternateSink();
    StopCapture({});
    PrinterClose();
    paste_->Abort(nullptr);
    stream_->Cancel();
    call_->Settle();
    if (line_)
        line_->Close(); // destroyed when it says that it is closed, or with this control
}

void ctlEmulator::Reset(int mode)
{
    switch (ResetMode(mode)) {
    case ResetMode::Default:
    case ResetMode::Terminal:
        terminal_->Reset();
        UnloadImage();
        ScrollTo(0);
        AfterChange();
        return;
    case ResetMode::Line:
        if (line_) {
            closing_ = true;
            reopen_ = true;
            line_->Close();
        } else {
            SetOnLine(true);
        }
        return;
    case ResetMode::HostKeyCancel:
        AnswerTrust(LineAnswer::Choice::Cancel);
        return;
    case ResetMode::HostKeyContinue:
        AnswerTrust(LineAnswer::Choice::Continue);
        return;
    case ResetMode::HostKeyUpdate:
        AnswerTrust(LineAnswer::Choice::Update);
        return;
    case ResetMode::Resume:
        Resume();
        return;
    }
    throw Failure(ErrorNumber::InvalidCall, tr("There is no reset %1.").arg(mode), kSource);
}

// --- questions of the line

void ctlEmulator::LineAsked(const LineQuestion& question)
{
    if (shutDown_ || closing_)
        return;
    question_->Stand(question);
    bool taken = false;
    if (ports_.ask.HasUser() && question_->IsTrust()) {
        quint32 word = question_->TrustWord();
        emit CommError(&word, question_->TrustText(), false);
        taken = word == 0;
    } else if (ports_.ask.HasUser()) {
        emit SecretsWanted(question, &taken);
    }
    // Not taken, but perhaps answered by then.
    if (!taken && line_ && (question_->IsTrust() || question_->IsSecrets()))
        line_->Answer(question_->Take(LineAnswer::Choice::Nobody));
}

void ctlEmulator::AnswerTrust(LineAnswer::Choice choice)
{
    if (line_ && question_->IsTrust())
        line_->Answer(question_->Take(choice));
}

void ctlEmulator::AnswerSecrets(LineAnswer::Choice choice, std::vector<Secret> values)
{
    if (line_ && question_->IsSecrets())
        line_->Answer(question_->Take(choice, std::move(values)));
}

// --- bytes

void ctlEmulator::Received(std::string_view bytes)
{
    if (shutDown_)
        return;
    bytesIn_ += bytes.size();
    if (resumption_->IsUnderWay())
        resumption_->Received(bytes);
    if (capture_)
        capture_->Put(HostCapture::Received, bytes); // as it came
    std::string changed;
    if (settings_.Boolean(Setting("Strip8th"))) {
        changed = bytes;
        for (char& c : changed)
            c = char(c & 0x7F);
        bytes = changed;
    }
    if (extension_->IsOn())
        bytes = changed = WithoutExtensions(bytes);
    if (sink_)
        ToSink(bytes);
    else
        ShowHostBytes(bytes);
}

void ctlEmulator::AfterChange()
{
    scrollback_ = std::min(scrollback_, terminal_->HistoryCount());
    selection_->Check(*terminal_);
    if (std::exchange(listener_->sizeChanged, false))
        TellSize();
    ScheduleEvents();
    emit ScreenChanged();
}

void ctlEmulator::TellSize()
{
    const auto [cols, rows] = terminal_->ScreenSize();
    if (cols == size_.cols && rows == size_.rows)
        return;
    size_.cols = cols;
    size_.rows = rows;
    if (line_)
        line_->Resize(size_);
}

void ctlEmulator::SendBytes(std::string_view bytes)
{
    if (!IsLineUp() || !line_ || bytes.empty())
        return;
    bytesOut_ += bytes.size();
    line_->Send(bytes);
}

void ctlEmulator::Notice(const QString& text)
{
    terminal_->PrintNotice((u'[' + text + u']').toStdString());
    AfterChange();
}

void ctlEmulator::ScheduleEvents()
{
    if (std::exchange(scheduled_, true))
        return;
    ports_.clock.Post([self = QPointer(this)] {
        if (self && !self->shutDown_)
            self->RunEvents();
    });
}

// Who shows the cursor's place must not slow a flood down: while one is on, the last place is told now and then.
void ctlEmulator::TellCursor()
{
    const bool flood = bytesIn_ - told_.bytesIn > kFloodBytes;
    const Clock::Duration due = told_.cursorAt + kCursorPause;
    if (flood && ports_.clock.Now() < due) {
        cursorTimer_ = ports_.clock.After(due - ports_.clock.Now(), [this] { ScheduleEvents(); });
        return;
    }
    told_.cursor = terminal_->Cursor();
    told_.cursorAt = ports_.clock.Now();
    told_.bytesIn = bytesIn_;
    told_.page = Page();
    emit CursorMove(told_.cursor.col, told_.cursor.row, told_.page);
}

void ctlEmulator::TellTitle()
{
    const Clock::Duration now = ports_.clock.Now();
    if (told_.titleAt && now < *told_.titleAt + kTitlePause) {
        titleTimer_ = ports_.clock.After(*told_.titleAt + kTitlePause - now, [this] { ScheduleEvents(); });
        return;
    }
    told_.titleAt = now;
    emit HostTitleChange(*std::exchange(hostTitle_, std::nullopt));
}

void ctlEmulator::TellScreen()
{
    const emu::Size size = terminal_->ScreenSize();
    const int pages = terminal_->PageCount();
    const emu::ModesView modes = terminal_->Modes();
    const bool extended = modes.extended;
    const bool isOther = size != told_.size || pages != told_.pages || extended != told_.extended;
    const bool isLaidOutAnew = extended != told_.extended || modes.rowsOfHost != told_.rowsOfHost ||
                               terminal_->StatusRows() != told_.statusRows;
    told_.size = size;
    told_.pages = pages;
    told_.extended = extended;
    told_.rowsOfHost = modes.rowsOfHost;
    told_.statusRows = terminal_->StatusRows();
    if (isOther)
        emit ScreenSizeChange(size.cols, size.rows, pages, extended);
    if (isLaidOutAnew || (isOther && (extended || modes.rowsOfHost)))
        emit GridChanged();
}

// A handler may end the session, but the control outlives this call.
void ctlEmulator::RunEvents()
{
    scheduled_ = false;
    TellScreen();
    if (terminal_->Cursor() != told_.cursor || Page() != told_.page)
        TellCursor();
    if (LockKeyboard() != std::exchange(told_.locked, LockKeyboard()))
        emit KeyboardLock(LockKeyboard());
    if (PrinterState() != std::exchange(told_.printer, PrinterState()))
        emit PrinterChange(PrinterState());
    if (hostTitle_)
        TellTitle();
    if (std::exchange(bell_, false))
        Ring();
    if (offered_)
        TakeOfferedClipboard();
    RunStreamEvents();
}

// --- typing

bool ctlEmulator::LockKeyboard() const { return lockKeyboard_ || terminal_->Modes().keyboardLocked; }

void ctlEmulator::SetLockKeyboard(bool on)
{
    lockKeyboard_ = on;
    ScheduleEvents();
}

bool ctlEmulator::MayType()
{
    const bool local = settings_.Integer(Setting("Duplex")) == 2;
    if (!shutDown_ && !LockKeyboard() && !stream_->RefusesTyping() && (IsLineUp() || local))
        return true;
    ports_.ask.Beep();
    emit InputRefused();
    return false;
}

void ctlEmulator::Typed(std::string_view bytes, const QString& text, int code)
{
    if (bytes.empty())
        return;
    const int duplex = settings_.Integer(Setting("Duplex"));
    if (!lockHistory_)
        ScrollTo(0);
    if (duplex != 2)
        SendBytes(bytes);
    emit KeyWasTyped();
    if (recordingKeys_)
        emit RecordKey(text, code);
    if (duplex != 0 || !hostEchoes_ || terminal_->Modes().localEcho) {
        std::string echo(bytes);
        if (echo == "\r")
            echo = "\r\n";
        terminal_->Receive(echo);
        AfterChange();
    }
}

namespace {

QString SwapCase(QString text)
{
    for (QChar& c : text)
        c = c.isUpper() ? c.toLower() : c.toUpper();
    return text;
}

} // namespace

void ctlEmulator::TypeKey(const emu::KeyPress& key, int code)
{
    if (const QString function = code != 0 ? KeyFunction(code) : QString(); !function.isEmpty()) {
        RunFunction(function, code);
        return;
    }
    if (key.key == emu::Key::Break)
        return BreakKey();
    emu::KeyPress press = settings_.Boolean(Setting("MapUpperFKeys")) ? MappedUpperFunctionKey(key) : key;
    if (capsLock_ && press.key == emu::Key::Text)
        press.text = SwapCase(QString::fromStdString(press.text)).toStdString();
    if (!MayType())
        return;
    const std::string bytes = terminal_->KeyBytes(press);
    Typed(bytes, QString::fromLatin1(bytes.data(), qsizetype(bytes.size())), code);
}

// Bracketed text is a script, everything else goes to the host as it stands.
void ctlEmulator::RunFunction(const QString& text, int code)
{
    if (text.startsWith(u'[') && text.endsWith(u']')) {
        bool done = false;
        emit ExecScript(text, false, &done);
        return;
    }
    if (MayType())
        Typed(terminal_->EncodeText(text.toStdString()), text, code);
}

void ctlEmulator::TypeText(const QString& text)
{
    if (!text.isEmpty() && MayType())
        Typed(terminal_->EncodeText(text.toStdString()), text, 0);
}

bool ctlEmulator::SendMouse(const emu::MouseAction& action)
{
    if (!settings_.Boolean(Setting("MouseEnable")) || !IsLineUp())
        return false;
    const std::string bytes = terminal_->MouseBytes(action);
    SendBytes(bytes);
    return !bytes.empty();
}

void ctlEmulator::SendFocus(bool gained) { SendBytes(terminal_->FocusBytes(gained)); }

void ctlEmulator::WriteText(const QString& text)
{
    if (!IsLineUp())
        throw Failure(ErrorNumber::DeviceUnavailable, tr("There is no connection to write to."), kSource);
    SendBytes(terminal_->EncodeText(text.toStdString()));
}

void ctlEmulator::SetDesktopGround(Ground ground)
{
    if (std::exchange(desktopGround_, ground) != ground)
        emit LookChanged();
}

void ctlEmulator::SetTitle(const QString& title) { title_ = title; }

void ctlEmulator::MouseTableAdd(int button, const QString& pattern, const QString& rClick, const QString& rDblClk)
{
    mouseTable_.push_back({button, pattern, rClick, rDblClk});
}

} // namespace kestrune
