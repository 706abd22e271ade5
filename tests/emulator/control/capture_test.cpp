// Captures: what ends in the file or the clipboard, and what happens when it cannot.

#include <fakes/emulatorbench.h>
#include <fakes/failures.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString kFile = u"/captures/file"_s;

struct CaptureBench : EmulatorBench
{
    CaptureBench()
    {
        Connect();
        QObject::connect(&control, &ctlEmulator::CaptureChange, [this](int state) { states << state; });
        QObject::connect(&control, &ctlEmulator::DeviceStatus, [this](const QString& text) { status = text; });
    }
    QByteArray File() const { return outputs.files.value(kFile); }

    QList<int> states;
    QString status;
};

TEST(EmulatorCapture, WritesRawBytesOrTextOnly)
{
    struct Row
    {
        const char* name;
        int mode;
        int encoding;
        std::string host;
        QByteArray file;
    };
    const std::string coloured = "\x1b[1;31mgr\xc3\xbc\xc3\x9f\x1b[m\r\n\x1b]0;title\x07\x08$ ";
    const Row rows[] = {
        {"raw, byte for byte", 0, 3, coloured, QByteArray::fromStdString(coloured)},
        {"text in the host's own bytes", 128, 0, coloured, "gr\xc3\xbc\xc3\x9f\n$ "},
        {"text as ANSI", 128, 1, coloured, "gr\xfc\xdf\n$ "},
        {"text as Unicode, with its mark", 129, 2, "a\xc3\xbc",
         QByteArray("\xff\xfe"
                    "a\0\xfc\0",
                    6)},
        {"text as UTF-8, with its mark", 129, 3, "\xc3\xbc", "\xef\xbb\xbf\xc3\xbc"},
        {"every line end is one", 128, 0, "a\r\nb\r\r\nc\nd\f\te\r\n", "a\nb\nc\nd\f\te\n"},
        {"what went over a line again has its own", 128, 0, "10%\r20%\r\n", "10%\n20%\n"},
    };
    for (const Row& row : rows)
        for (const bool inPieces : {false, true}) {
            SCOPED_TRACE(row.name);
            CaptureBench bench;
            bench.control.SetTextFileEncoding(row.encoding);
            bench.HostSays("before");
            bench.control.Capture(kFile, 1, row.mode);
            EXPECT_EQ(bench.control.CaptureSource(), 1);
            EXPECT_EQ(bench.control.CaptureMode(), row.mode);
            EXPECT_EQ(bench.control.CaptureFileName(), kFile);
            for (size_t at = 0; at < row.host.size(); at += inPieces ? 1 : row.host.size())
                bench.HostSays(row.host.substr(at, inPieces ? 1 : row.host.size()));
            bench.control.CaptureEnd();
            bench.HostSays("behind");
            EXPECT_EQ(bench.File(), row.file);
            EXPECT_EQ(bench.states, (QList{1, 0}));
            EXPECT_EQ(bench.control.CaptureSource(), 0);
        }
}

TEST(EmulatorCapture, OldFilesAreKeptReplacedOrContinued)
{
    CaptureBench bench;
    bench.outputs.files[kFile] = "old";
    bench.control.Capture(kFile, 1, 0);
    EXPECT_EQ(bench.control.CaptureSource(), 0) << "new file only";
    EXPECT_TRUE(bench.status.contains(kFile)) << bench.status.toStdString();
    EXPECT_EQ(bench.File(), "old");
    bench.clock.Advance(std::chrono::minutes(1));
    EXPECT_EQ(bench.status, u"Fake host"_s) << "the line's own status is back";

    bench.control.SetTextFileEncoding(3);
    bench.control.Capture(kFile, 1, 2 + 128);
    bench.HostSays("more");
    bench.control.Capture(kFile, 1, 2); // ends the first
    bench.HostSays("!");
    bench.control.CaptureEnd();
    EXPECT_EQ(bench.File(), "oldmore!") << "and no mark in the middle";
    bench.control.CaptureEnd(); // harmless
    EXPECT_EQ(bench.states, (QList{1, 0, 1, 0}));

    bench.control.Settings().SetValue(Setting("DefaultCaptureDir"), u"/captures"_s);
    bench.control.Capture(u"file"_s, 1, 1);
    EXPECT_EQ(bench.control.CaptureFileName(), kFile);
    EXPECT_EQ(bench.File(), "");

    EXPECT_EQ(FailureNumber([&] { bench.control.Capture(kFile, 3, 1); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(FailureNumber([&] { bench.control.Capture(kFile, 1, 4); }), int(ErrorNumber::InvalidCall));
    EXPECT_EQ(bench.control.CaptureSource(), 1) << "a wrong call leaves the capture alone";
}

TEST(EmulatorCapture, TheClipboardGetsItAtTheEnd)
{
    CaptureBench bench;
    bench.clipboard.standard = u"mine"_s;
    bench.control.Capture(QString(), 1, 3 + 128);
    bench.HostSays("\x1b[1mone\r\ntwo");
    EXPECT_EQ(bench.clipboard.standard, u"mine"_s);
    EXPECT_EQ(bench.control.CaptureFileName(), QString());
    bench.control.CaptureEnd();
    EXPECT_EQ(bench.clipboard.standard, u"one\ntwo"_s);

    bench.control.Capture(QString(), 1, 3);
    bench.control.CaptureEnd();
    EXPECT_EQ(bench.clipboard.standard, u"one\ntwo"_s) << "nothing captured leaves it as it is";
}

TEST(EmulatorCapture, PrinterDataIsWhatTheHostPrints)
{
    CaptureBench bench;
    bench.control.Capture(kFile, 2, 1);
    bench.HostSays("shown \x1b[5iprinted\x1b[1m\r\n\x1b[4i shown");
    EXPECT_EQ(bench.File(), "printed\x1b[1m\r\n");
    EXPECT_EQ(bench.states.value(0), 2);
}

TEST(EmulatorCapture, AFullDiskEndsItWithAWordAndKeepsWhatWasWritten)
{
    CaptureBench bench;
    bench.outputs.room = 5;
    bench.control.Capture(kFile, 1, 0);
    bench.HostSays("123456789");
    EXPECT_EQ(bench.File(), "12345");
    EXPECT_EQ(bench.control.CaptureSource(), 0);
    EXPECT_EQ(bench.states, (QList{1, 0}));
    ASSERT_EQ(bench.ask.boxes.size(), 1U);
    EXPECT_TRUE(bench.ask.boxes[0].text.contains(u"No space left"));
    bench.HostSays("more");
    EXPECT_EQ(bench.ask.boxes.size(), 1U);
}

TEST(EmulatorCapture, TheEndOfTheSessionClosesTheFile)
{
    CaptureBench bench;
    bench.outputs.room = 3;
    bench.control.Capture(kFile, 1, 0);
    bench.Host().HostSays("12345");
    bench.control.Shutdown();
    EXPECT_EQ(bench.control.CaptureSource(), 0);
    bench.clock.RunPosted();
    EXPECT_EQ(bench.ask.boxes.size(), 1U) << "what was lost is told all the same";
}

} // namespace

} // namespace kestrune
