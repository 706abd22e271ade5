#include "emulatorevents.h"

#include <emulator/control/ctlemulator.h>
#include <ports/line.h>
#include <ports/recorder.h>
#include <ports/scriptengine.h>
#include <sessions/tools.h>
#include <settings/layer.h>
#include <settings/strfunc.h>
#include <support/errors.h>

#include "report.h"

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int StatusTextLength = 25;
constexpr int AnyBandButton = 3; // the mouse button whose band the emulator names itself

struct TermTypeRow
{
    int type;
    QStringView name;
};
constexpr std::array TermTypeNames = {
    TermTypeRow{0, u"TTY"},
    TermTypeRow{1, u"ADDS VP-A2"},
    TermTypeRow{2, u"ADDS VP-60"},
    TermTypeRow{3, u"Procomm VP60"},
    TermTypeRow{4, u"Viewpoint A2 Enh"},
    TermTypeRow{5, u"Wyse 50"},
    TermTypeRow{6, u"Wyse 60"},
    TermTypeRow{7, u"VT52"},
    TermTypeRow{8, u"VT220"},
    TermTypeRow{9, u"ANSI"},
    TermTypeRow{10, u"PC Mon"},
    TermTypeRow{11, u"Tek 4014"},
    TermTypeRow{12, u"VT100"},
    TermTypeRow{13, u"VT320"},
    TermTypeRow{14, u"VT420"},
    TermTypeRow{15, u"SCO Console"},
    TermTypeRow{16, u"Linux Console"},
    TermTypeRow{17, u"Tek 4100"},
    TermTypeRow{18, u"MDIS P30"},
    TermTypeRow{19, u"MDIS P8"},
    TermTypeRow{76, u"Verssys C330"},
    TermTypeRow{77, u"VT220 Lanpar"},
};

QString CommaText(std::initializer_list<int> numbers)
{
    QStringList parts;
    for (const int number : numbers)
        parts.append(QString::number(number));
    return parts.join(u',');
}

} // namespace

EmulatorEvents::EmulatorEvents(ApplicationPort& application, SessionWindow& window)
    : application_(application), window_(window)
{
    ctlEmulator& emulator = window.Emulator();
    SetCaption(Tool::TermType, TermTypeName(emulator.Settings().Integer(Setting("TermType"))));
    ConnectStatus(emulator);
    ConnectSession(emulator);
    ConnectRecorder(emulator);
    ConnectUser(emulator);
}

void EmulatorEvents::Stop() { disconnect(&window_.Emulator(), nullptr, this, nullptr); }

void EmulatorEvents::Tell(int tool, ToolProperty property, const QVariant& value)
{
    told_[{tool, property}] = value;
    window_.Tools().SetToolProperty(tool, property, value);
}

void EmulatorEvents::TellAgain()
{
    for (const auto& [what, value] : told_)
        window_.Tools().SetToolProperty(what.first, what.second, value);
}

// --- status line

void EmulatorEvents::ConnectStatus(ctlEmulator& emulator)
{
    connect(&emulator, &ctlEmulator::ConnectionStatus, this,
            [this](qint16 status, QString* text) { StatusChanged(status, *text); });
    connect(&emulator, &ctlEmulator::DeviceStatus, this,
            [this](const QString& text) { SetCaption(Tool::DeviceStatus, text); });
    connect(&emulator, &ctlEmulator::TermTypeChange, this,
            [this](int type) { SetCaption(Tool::TermType, TermTypeName(type)); });
    connect(&emulator, &ctlEmulator::PrinterChange, this, [this](int state) {
        SetCaption(Tool::PrinterStatus, state < 0 ? tr("Off") : state == 0 ? tr("Idle") : tr("On"));
        Tell(Tool::PrinterOn, ToolProperty::Checked, state == 1);
    });
    connect(&emulator, &ctlEmulator::CaptureChange, this,
            [this](int state) { SetCaption(Tool::CaptureStatus, state != 0 ? tr("Capture On") : tr("Capture Off")); });
    connect(&emulator, &ctlEmulator::ScreenSizeChange, this, [this](int cols, int rows, int pages, bool extended) {
        SetCaption(Tool::ScreenSize, CommaText({cols, rows, pages}));
        Tell(Tool::ScreenMode, ToolProperty::Checked, extended);
    });
    connect(&emulator, &ctlEmulator::CursorMove, this, [this](int column, int row, int page) {
        SetCaption(Tool::CursorPlace, CommaText({column, row, page}));
    });
    connect(&emulator, &ctlEmulator::KeyboardLock, this, [this](bool locked) {
        Tell(Tool::KeyboardLock, ToolProperty::Checked, locked);
        Tell(Tool::KeyboardLock, ToolProperty::ToolTipText, locked ? tr("Keyboard locked") : tr("Keyboard unlocked"));
    });
}

void EmulatorEvents::StatusChanged(qint16 status, QString& text)
{
    const bool connected = status == qint16(LineState::Connected);
    if (text.isEmpty())
        text = tr("no connection");
    Tell(Tool::AutoDial, ToolProperty::Enabled, connected);
    SetCaption(Tool::ConnectionStatus, text.left(StatusTextLength));
}

QString EmulatorEvents::TermTypeName(int type) const
{
    const auto found = std::find_if(TermTypeNames.begin(), TermTypeNames.end(),
                                    [type](const TermTypeRow& row) { return row.type == type; });
    if (found != TermTypeNames.end())
        return found->name.toString();
    const SettingsLayer& layer = application_.Layer();
    const QString row = layer.profile.ProfileGetString(u"Custom"_s, u"TT"_s + QString::number(type), u",,Unk"_s,
                                                       InstallationIniFile(layer.folders));
    return Field(row, u","_s, 3);
}

// --- session

void EmulatorEvents::ConnectSession(ctlEmulator& emulator)
{
    // Every handler looks its session up anew, and does nothing without one.
    const auto withSession = [this](auto run) {
        return [this, run](const auto&... arguments) {
            if (const auto session = LiveSession(application_, window_))
                ReportFailure(application_, [&] { run(*session, arguments...); });
        };
    };
    connect(&emulator, &ctlEmulator::ServerStart, this,
            withSession([](clsSession& session, const QString& name) { session.SetServer(1, name); }));
    connect(&emulator, &ctlEmulator::ServerExit, this,
            withSession([](clsSession& session) { session.SetServer(0, {}); }));
    connect(&emulator, &ctlEmulator::SaveSettings, this, withSession([](clsSession& session) { session.Save(); }));
    connect(&emulator, &ctlEmulator::LoadSettings, this,
            withSession([](clsSession& session) { session.SetFileName(session.FileName()); }));
    connect(&emulator, &ctlEmulator::CloseSession, this,
            withSession([](clsSession& session) { session.Terminate(TerminatePrompt::None); }));
    connect(&emulator, &ctlEmulator::Extension, this,
            withSession([](clsSession& session, const QString& command) { emit session.Extension(command); }));
    connect(&emulator, &ctlEmulator::DataReady, this,
            withSession([](clsSession& session) { emit session.DataReady(); }));
    connect(&emulator, &ctlEmulator::ExecScript, this, [this](const QString& script, bool flag, bool* done) {
        *done = true;
        // A script that the host starts and that fails stays silent here.
        Silently([&] { application_.ScriptEngine(false)->RunText(script, window_.Tag().toInt(), flag); });
    });
    connect(&emulator, &ctlEmulator::ReadProfile, this,
            [this](const QString& section, const QString& key, QString* value, bool* found) {
                const SettingsLayer& layer = application_.Layer();
                *value = layer.profile.ProfileGetString(section, key, {}, InstallationIniFile(layer.folders));
                *found = true;
            });
}

// --- recorder

void EmulatorEvents::ConnectRecorder(ctlEmulator& emulator)
{
    connect(&emulator, &ctlEmulator::SelectionChange, this, [this] {
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        window_.Emulator().GetSelection(left, top, right, bottom);
        if (const auto session = LiveSession(application_, window_))
            application_.Recorder().SelectionChanged(*session, left, top, right, bottom);
    });
    const auto activeSession = [this] {
        return application_.Frame()->ActiveChild() == &window_ ? LiveSession(application_, window_) : nullptr;
    };
    connect(&emulator, &ctlEmulator::RecordText, this, [this, activeSession](const QString& text) {
        if (const auto session = activeSession())
            application_.Recorder().RecordText(*session, text);
    });
    connect(&emulator, &ctlEmulator::RecordKey, this, [this, activeSession](const QString& text, int code) {
        if (const auto session = activeSession())
            application_.Recorder().RecordKey(*session, text, code);
    });
}

// --- mouse

void EmulatorEvents::ConnectUser(ctlEmulator& emulator)
{
    connect(&emulator, &ctlEmulator::ContextMenu, this,
            [this](int button, int, int, const QString& band, bool* handled) {
                *handled = true;
                const bool named = button == AnyBandButton && !band.isEmpty();
                window_.ShowPopup(named ? band : u"ContextMenu"_s);
            });
    connect(&emulator, &ctlEmulator::MouseDown, this, [this](int button) {
        if (button == 2)
            window_.TakeFocus();
    });
}

} // namespace kestrune
