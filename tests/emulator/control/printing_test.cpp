// What a host prints, what is copied for it, and prints of the screen: jobs as a printer gets them.

#include <fakes/emulatorbench.h>
#include <fakes/failures.h>

#include <gtest/gtest.h>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct PrinterBench : EmulatorBench
{
    PrinterBench()
    {
        Connect();
        QObject::connect(&control, &ctlEmulator::PrinterChange, [this](int state) { states << state; });
        QObject::connect(&control, &ctlEmulator::DeviceStatus, [this](const QString& text) { status = text; });
    }
    void Set(std::u16string_view name, const Variant& value)
    {
        control.Settings().Set(QString::fromUtf16(name.data(), qsizetype(name.size())), value);
    }
    void HostPrints(const std::string& bytes) { HostSays("\x1b[5i" + bytes + "\x1b[4i"); }
    void Idle() { clock.Advance(std::chrono::seconds(20)); }
    QStringList Page(size_t job, size_t page) const
    {
        return job < printing.jobs.size() && page < printing.jobs[job].pages.size()
                   ? MemoryPrinting::Text(printing.jobs[job].pages[page])
                   : QStringList{u"no such page"_s};
    }

    QList<int> states;
    QString status;
};

TEST(EmulatorPrinter, TextIsLaidOutOnPages)
{
    struct Row
    {
        const char* name;
        const char* bytes;
        QList<QStringList> pages;
    };
    const Row rows[] = {
        {"lines of any end", "a\r\nb\nc", {{u"a"_s, u"b"_s, u"c"_s}}},
        {"form feeds", "one\r\n\ftwo\f", {{u"one"_s}, {u"two"_s}}},
        {"an empty page in the middle", "one\f\fthree", {{u"one"_s}, {}, {u"three"_s}}},
        {"empty lines", "a\r\n\r\nb\r\n", {{u"a"_s, QString(), u"b"_s}}},
        {"overprint", "title\r_____\r\nb", {{u"title|0:_____"_s, u"b"_s}}},
        {"backspace strikes over", "a\b_b", {{u"a|0:_b"_s}}},
        {"tabs", "a\tb\t\tc", {{u"a       b               c"_s}}},
        {"bold and underline", "\x1b[1mb\x1b[0mn\x1b[4mu\x1b[24m.", {{u"*b*n_u_."_s}}},
        {"a printer's own codes",
         "\x1b"
         "Eb\x1b"
         "Fn\x1b-1u\x1b-0.",
         {{u"*b*n_u_."_s}}},
        {"other sequences are left out", "a\x1b[3zb\x1b(0c", {{u"abc"_s}}},
        {"outside ASCII", "gr\xc3\xbc\xc3\x9f", {{u"grüß"_s}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        PrinterBench bench;
        bench.HostPrints(row.bytes);
        bench.Idle();
        ASSERT_EQ(bench.printing.jobs.size(), 1U);
        ASSERT_EQ(bench.printing.jobs[0].pages.size(), size_t(row.pages.size()));
        for (size_t page = 0; page < size_t(row.pages.size()); ++page)
            EXPECT_EQ(bench.Page(0, page), row.pages[qsizetype(page)]);
    }
}

TEST(EmulatorPrinter, ALineThatIsTooLongGoesOnInTheNext)
{
    PrinterBench bench;
    bench.HostPrints(std::string(300, 'x'));
    bench.Idle();
    const QStringList page = bench.Page(0, 0);
    ASSERT_EQ(page.size(), 2);
    EXPECT_EQ(page[0].size() + page[1].size(), 300);
}

TEST(EmulatorPrinter, AJobEndsWhenNothingComes)
{
    PrinterBench bench;
    bench.Set(u"PrinterTimeout", 10);
    bench.Set(u"PrinterFontName", u"Some Font"_s);
    bench.Set(u"PrinterOrientation", 2);
    bench.Set(u"SlavePrinterName", u"Laser"_s);
    bench.control.SetTitle(u"Orders"_s);
    bench.HostPrints("one\r\n");
    bench.clock.Advance(std::chrono::seconds(9));
    bench.HostPrints("two\r\n");
    bench.clock.Advance(std::chrono::seconds(9));
    EXPECT_TRUE(bench.printing.jobs.empty());
    bench.clock.Advance(std::chrono::seconds(2));
    ASSERT_EQ(bench.printing.jobs.size(), 1U);
    EXPECT_EQ(bench.Page(0, 0), (QStringList{u"one"_s, u"two"_s}));
    const PrintJob& job = bench.printing.jobs[0];
    EXPECT_EQ(job.printer, u"Laser"_s);
    EXPECT_EQ(job.title, u"Orders"_s);
    EXPECT_EQ(job.look.fontName, u"Some Font"_s);
    EXPECT_EQ(job.look.orientation, 2);
    EXPECT_EQ(bench.status, u"Printed to somewhere"_s);

    bench.HostPrints("three");
    bench.control.PrinterClose();
    EXPECT_EQ(bench.Page(1, 0), QStringList{u"three"_s}) << "at once";
    bench.Set(u"PrinterTimeout", 0);
    bench.HostPrints("four");
    bench.clock.Advance(std::chrono::hours(1));
    EXPECT_EQ(bench.printing.jobs.size(), 2U);
    bench.printing.answer = {false, u"The printer burns."_s};
    bench.control.Shutdown();
    bench.clock.RunPosted();
    EXPECT_EQ(bench.Page(2, 0), QStringList{u"four"_s}) << "the end of the session";
    ASSERT_EQ(bench.ask.boxes.size(), 1U);
    EXPECT_EQ(bench.ask.boxes[0].text, u"The printer burns."_s);
}

TEST(EmulatorPrinter, CopyShowsAndPrintsTransparentOnlyPrints)
{
    PrinterBench bench;
    bench.HostSays("before ");
    bench.control.PrinterOn();
    EXPECT_EQ(bench.control.PrinterMode(), 1);
    bench.HostSays("both\x1b[5i and this\x1b[4i");
    bench.control.PrinterOn(1);
    EXPECT_EQ(bench.control.PrinterMode(), 2);
    bench.HostSays(" printed");
    bench.control.SetPrinterMode(0);
    bench.HostSays(" after");
    bench.Idle();
    EXPECT_EQ(bench.Page(0, 0), QStringList{u"both and this printed"_s}) << "each once";
    EXPECT_EQ(bench.RowText(0), u"before both after"_s);
    EXPECT_EQ(FailureNumber([&] { bench.control.SetPrinterMode(3); }), int(ErrorNumber::InvalidCall));
}

TEST(EmulatorPrinter, RawBytesGoOutUntouched)
{
    PrinterBench bench;
    bench.Set(u"SlavePrintMode", 1);
    const std::string bytes = "\x1b"
                              "E\x1b&l1O\xff\r\f";
    for (const bool eject : {false, true}) {
        bench.Set(u"PrintJobEject", eject ? 1 : 0);
        bench.HostPrints(bytes);
        bench.Idle();
        const QByteArray raw = bench.printing.jobs.back().raw;
        EXPECT_EQ(raw, QByteArray::fromStdString(eject ? bytes + "\f" : bytes));
        EXPECT_TRUE(bench.printing.jobs.back().pages.empty());
    }
}

TEST(EmulatorPrinter, ItsStateIsToldOnceForEachChange)
{
    PrinterBench bench;
    bench.control.PrinterOn();
    bench.clock.RunPosted();
    bench.HostSays("\x1b[5ix\x1b[4i");
    bench.control.PrinterOff();
    bench.clock.RunPosted();
    bench.HostSays("\x1b[5i");
    bench.HostSays("\x1b[4i");
    EXPECT_EQ(bench.states, (QList{1, 0, 1, 0}));
    bench.Set(u"SlavePrinterName", u"No Printer"_s);
    bench.clock.RunPosted();
    EXPECT_EQ(bench.states.back(), -1);
    bench.Idle();
    const size_t jobs = bench.printing.jobs.size();
    bench.control.PrinterOn();
    EXPECT_EQ(bench.control.PrinterMode(), 0);
    EXPECT_TRUE(bench.status.contains(u"no printer")) << bench.status.toStdString();
    bench.HostPrints("to nobody");
    bench.Idle();
    EXPECT_EQ(bench.printing.jobs.size(), jobs);
}

TEST(EmulatorPrintScreen, PrintsTheScreenOrTheSelectionWithItsLook)
{
    PrinterBench bench;
    bench.Set(u"ScreenPrinterName", u"Screens"_s);
    bench.HostSays("plain \x1b[1mbold\x1b[m \x1b[4mline\x1b[m\x1b[3;3H\x1b[8mhidden\x1b[m中x");
    bench.control.PrintScreen();
    ASSERT_EQ(bench.printing.jobs.size(), 1U);
    EXPECT_EQ(bench.printing.jobs[0].printer, u"Screens"_s);
    ASSERT_EQ(bench.printing.jobs[0].pages.size(), 1U);
    QStringList page = bench.Page(0, 0);
    EXPECT_EQ(page.size(), 24);
    EXPECT_EQ(page[0].trimmed(), u"plain *bold* _line_"_s);
    EXPECT_FALSE(page[2].contains(u"hidden"));
    EXPECT_TRUE(page[2].contains(u"中x"));

    bench.control.SetSelection(6, 0, 9, 0);
    bench.Set(u"ScreenPrintMode", 0);
    bench.control.PrintScreen();
    EXPECT_EQ(bench.Page(1, 0), QStringList{u"bold"_s});

    bench.Set(u"ScreenPrinterName", u"No Printer"_s);
    bench.control.PrintScreen();
    EXPECT_EQ(bench.printing.jobs.size(), 2U);
}

} // namespace

} // namespace kestrune
