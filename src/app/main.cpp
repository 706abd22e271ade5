// The one place that joins concrete parts together.

#include <app/affinity.h>
#include <app/housestyle.h>
#include <app/mdiparntform.h>
#include <app/missingpieces.h>
#include <app/ormain.h>
#include <app/position.h>
#include <app/programicon.h>
#include <app/shutdown.h>
#include <app/splash.h>
#include <comm/commlibrary.h>
#include <connect/dialingdialog.h>
#include <desktop/darkchoice.h>
#include <desktop/darkpalette.h>
#include <emulator/control/ctlemulator.h>
#include <emulator/view/systemclipboard.h>
#include <help/helpkey.h>
#include <help/helpviewer.h>
#include <media/systemmedia.h>
#include <platform/backgroundfiles.h>
#include <platform/endrequests.h>
#include <platform/eventclock.h>
#include <platform/eventwaiter.h>
#include <platform/hive.h>
#include <platform/keyboardlocks.h>
#include <platform/nativefiles.h>
#include <platform/processors.h>
#include <platform/system.h>
#include <platform/textcodec.h>
#include <ports/recorder.h>
#include <ports/textfiles.h>
#include <printing/systemprinting.h>
#include <secrets/desktopsecrets.h>
#include <settings/layer.h>
#include <support/errors.h>
#include <support/log.h>
#include <support/qtquestions.h>
#include <textfile/textfiles.h>

#include <QApplication>
#include <QDesktopServices>
#include <QRandomGenerator>
#include <QScreen>
#include <QUrl>

#include <bit>
#include <cstdio>
#include <functional>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

void KeepToOneProcessor()
{
    const auto mask = ThreadAffinity(AnyProcessor, PermittedProcessors(), QRandomGenerator::global()->generateDouble());
    if (mask)
        PinToProcessor(std::countr_zero(*mask));
}

bool HasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

class NativeTextFiles : public TextFiles
{
public:
    explicit NativeTextFiles(const FileSystem& files) : files_(files) {}
    QString ReadText(const QString& path) override
    {
        files_.Read(path); // raises what the user must be told; the text call gives an empty text for it
        textfile::TextCode code = textfile::TextCode::ByContent;
        return textfile::ReadTextFile(path, code);
    }
    QByteArray Encode(const QString& text, int encoding) override { return EncodeText(text, EncodingOf(encoding)); }
    QByteArray Mark(int encoding) override
    {
        switch (EncodingOf(encoding)) {
        case TextEncoding::Utf16Le:
            return MarkOf(TextEncoding::Utf16LeMark);
        case TextEncoding::Utf8:
            return MarkOf(TextEncoding::Utf8Mark);
        default:
            return {};
        }
    }

private:
    static TextEncoding EncodingOf(int number)
    {
        return number == 2 ? TextEncoding::Utf16Le : number == 3 ? TextEncoding::Utf8 : TextEncoding::Ansi;
    }

    const FileSystem& files_;
};

// Everything that lives as long as the process, in the order in which it stands on each other.
class Program
{
public:
    Program(const CommandLine& commandLine, bool startedByPlatform)
        : currentUser_(CurrentUserHive(files_, system_)), localMachine_(LocalMachineHive(files_, system_)),
          layer_(PathStyle::Native(), files_, system_, *currentUser_, *localMachine_),
          ask_(!startedByPlatform, [this] { return MainWidget(); }), dialing_(ask_, [this] { return MainWidget(); }),
          lines_(
              clock_,
              layer_.profile.ProfileGetString(u"CommLibExt"_s, u"6Device"_s, {}, InstallationIniFile(layer_.folders)),
              system_.ConfigFolder(), layer_.folders.ProgramDir, &dialing_),
          printing_(clock_, layer_.folders.DocumentsDir), splash_(SplashChoice()),
          wizard_(lines_, ask_, [this](const QString& line) { main_.ShowNotice(line); }),
          welcome_([this](const QString& line) { main_.ShowNotice(line); }), settingsDialog_(ask_),
          commandPieces_(
              ask_, [](const QString& path) { QDesktopServices::openUrl(QUrl::fromLocalFile(path)); },
              [this](HelpPage page) {
                  Help().Open(page == HelpPage::Index ? HelpViewer::Side::Index : HelpViewer::Side::Contents);
              }),
          main_({layer_, ask_, wizard_, welcome_, settingsDialog_, migration_, running_, splash_, KeepToOneProcessor,
                 [] { return QGuiApplication::primaryScreen()->depth(); },
                 [] {}, // nothing can be asked for the class until other programs can reach it
                 [this](Ormain& host, const StartMode& mode) { return MakeApplication(host, mode); }},
                commandLine, startedByPlatform),
          shutdown_({clock_,
                     [this] { return main_.Application(); },
                     [] { return UnloadForms(); },
                     {},
                     [this] { EndLater(); }})
    {}

    Ormain& Main() { return main_; }

private:
    QWidget* MainWidget() const
    {
        const Kestrune* application = Kestrune::Application();
        return application != nullptr ? dynamic_cast<QWidget*>(application->MainWindow()) : nullptr;
    }

    QString SplashChoice() const
    {
        const GlobalSetting& row = GlobalSettingOf(GlobalId::Splash);
        const QString choice =
            layer_.profile.ProfileGetString(u"Custom"_s, row.key.toString(), {}, InstallationIniFile(layer_.folders));
        const bool isWord = choice.isEmpty() || choice.compare(u"yes"_s, Qt::CaseInsensitive) == 0 ||
                            choice.compare(u"no"_s, Qt::CaseInsensitive) == 0;
        return isWord ? choice : layer_.spec.ExpandPath(choice, layer_.folders.ProgramDir, {});
    }

    HelpViewer& Help()
    {
        if (help_ == nullptr) {
            const QString name = GlobalSettingOf(GlobalId::HelpPlace).key.toString();
            help_ = std::make_unique<HelpViewer>(HelpViewer::Memory{
                [this, name] { return layer_.store.StoreGetString(StoreKey::Settings, name, {}); },
                [this, name](const QString& place) {
                    Silently([&] { layer_.store.StoreSetString(StoreKey::Settings, name, place, {}); });
                }});
        }
        return *help_;
    }

    std::unique_ptr<Kestrune> MakeApplication(Ormain& host, const StartMode& mode)
    {
        Kestrune::Parts parts{layer_, clock_, ask_, recorder_, running_, {}, {}, {}, {}, {}, {}, &secrets_};
        parts.makeFrame = [this](Kestrune& application) { return MakeFrame(application); };
        parts.makeCommands = [this, &host](Kestrune& application) {
            return std::make_unique<MenuCmd>(application, host, commandPieces_);
        };
        parts.makeScriptEngine = [this](Kestrune&) {
            return std::make_unique<MissingScriptEngine>([this](const QString& line) { main_.ShowNotice(line); });
        };
        parts.placeFrame = [](const GlobalValues& values, FrameWindow& frame) {
            const WindowPlace place = PosFormGet(values, frame);
            frame.Move(place.left, place.top, place.width, place.height);
            frame.SetState(place.state);
            if (auto* window = dynamic_cast<frmMdiParent*>(&frame))
                window->RestoreBars(values.Text(GlobalId::BarPlaces));
        };
        parts.keepPlace = [](GlobalValues& values, const FrameWindow& frame) { PosFormSave(values, frame); };
        return std::make_unique<Kestrune>(parts, mode);
    }

    std::unique_ptr<FrameWindow> MakeFrame(Kestrune& application)
    {
        auto frame = std::make_unique<frmMdiParent>(application, frmMdiParent::Parts{[this] { return MakeEmulator(); },
                                                                                     [this] { shutdown_.Shutdown(); },
                                                                                     KeyboardLockReader()});
        main_.SetExit([logic = &frame->Logic()] { logic->EndFrame(CloseCode::Code); });
        endFrame_ = [logic = &frame->Logic()] { logic->EndFrame(CloseCode::TaskManager); };
        return frame;
    }

    std::unique_ptr<ctlEmulator> MakeEmulator()
    {
        return std::make_unique<ctlEmulator>(EmulatorPorts{lines_, clock_, layer_.keyFiles, ask_, clipboard_, texts_,
                                                           waiter_, outputs_, printing_, media_});
    }

    static bool UnloadForms()
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            if (window->isVisible() && !window->close())
                return false;
        return true;
    }

    // The frame is in the middle of its own closing: it goes from the event loop.
    void EndLater()
    {
        endFrame_ = {};
        clock_.Post([this] {
            main_.Release();
            QCoreApplication::quit();
        });
    }

    void EndAsAsked()
    {
        if (endFrame_)
            endFrame_();
        else
            QCoreApplication::quit();
    }

    NativeFileSystem files_;
    NativeSystem system_;
    EventClock clock_;
    std::unique_ptr<Hive> currentUser_;
    std::unique_ptr<Hive> localMachine_;
    SettingsLayer layer_;
    QtQuestions ask_;
    DialingDialog dialing_;
    CommLibrary lines_;
    SystemClipboard clipboard_;
    NativeTextFiles texts_{files_};
    EventWaiter waiter_;
    BackgroundFiles outputs_{clock_};
    SystemPrinting printing_;
    DesktopSecrets secrets_;
    SystemMedia media_{clock_, WriteLog};
    RecorderPort recorder_;
    frmSplash splash_;
    MissingWizard wizard_;
    MissingWelcome welcome_;
    MissingSettingsDialog settingsDialog_;
    std::unique_ptr<HelpViewer> help_;
    HelpKey helpKey_{[this](const QString& page) { Help().Open({page, {}}); }};
    MissingCommandPieces commandPieces_;
    MissingMigration migration_;
    MissingSingleInstance running_;
    Ormain main_;
    frmShutdown shutdown_;
    std::function<void()> endFrame_; // while there is one that can end
    EndRequests endRequests_{[this] { EndAsAsked(); }};
};

int Run(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const CommandLine commandLine = CommandLine::FromArguments(arguments);
    if (const auto& answer = commandLine.Immediate()) {
        std::fputs(qUtf8Printable(answer->text), answer->isError ? stderr : stdout);
        return answer->isError ? 2 : 0;
    }
    if (!HasDisplay()) {
        std::fputs("kestrune: no display to open a window on (DISPLAY and WAYLAND_DISPLAY are not set)\n", stderr);
        return 1;
    }

    // Our menu bar carries the buttons of a maximised session and opens by our key: a bar that the desktop draws
    // elsewhere can do neither. Asking for one would also make every start wait for the session bus.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    int programOnly = 1; // arguments are ours alone: a file may be called like one of the toolkit's options
    QApplication application(programOnly, argv);
    QApplication::setApplicationName(u"kestrune"_s);
    QApplication::setDesktopFileName(u"kestrune"_s);
    QApplication::setWindowIcon(ProgramIcon());
    DressApplication(application);
    QApplication::setQuitOnLastWindowClosed(false); // the process ends when its last work is done

    DarkWindows windows;
    const DarkChoice choice(QDBusConnection::sessionBus(), [&windows](bool dark) { windows.Follow(dark); });
    Program program(commandLine, StartedByPlatform(NativeSystem(), arguments));
    if (program.Main().Main() == Ormain::Outcome::Ends)
        return 0;
    return QApplication::exec();
}

} // namespace

} // namespace kestrune

int main(int argc, char** argv) { return kestrune::Run(argc, argv); }
