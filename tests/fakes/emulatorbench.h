#pragma once

// A whole emulator control on a host that the test plays, in one line.

#include <emulator/control/ctlemulator.h>
#include <fakes/fakeclipboard.h>
#include <fakes/fakeclock.h>
#include <fakes/fakeline.h>
#include <fakes/fakemedia.h>
#include <fakes/fakequestions.h>
#include <fakes/fakewaiter.h>
#include <fakes/memorykeyfile.h>
#include <fakes/memoryoutput.h>
#include <fakes/memoryprinting.h>

namespace kestrune {

struct EmulatorBench
{
    static constexpr int Vt220 = 8, LinuxConsole = 16;

    explicit EmulatorBench(int termType = Vt220, int cols = 80, int rows = 24)
    {
        control.Settings().SetValue(Setting("TermType"), termType);
        control.Settings().SetValue(Setting("Device"), int(Device::Telnet));
        control.Settings().SetValue(Setting("Charset"), QStringLiteral("UTF-8"));
        control.Settings().SetValue(Setting("HistoryRows"), 1000);
        control.Resize(cols, rows, cols * 8, rows * 16);
        control.Settings().SetChanged(false);
    }

    EmulatorBench& Connect()
    {
        control.SetOnLine(true);
        Host().Connect();
        Host().RemoteEcho(true);
        clock.RunPosted();
        return *this;
    }
    FakeLine& Host() const { return lines.Current(); }
    void HostSays(std::string_view bytes)
    {
        Host().HostSays(bytes);
        clock.RunPosted();
    }
    QString RowText(int row) const // without trailing blanks
    {
        QString text = control.GetText(0, row);
        while (text.endsWith(u' '))
            text.chop(1);
        return text;
    }

    FakeLineFactory lines;
    FakeClock clock;
    MemoryKeyFiles files;
    FakeQuestions ask;
    FakeClipboard clipboard;
    MemoryTextFiles texts;
    FakeWaiter waiter{clock};
    MemoryOutputFiles outputs{clock};
    MemoryPrinting printing{clock};
    FakeMedia media;
    EmulatorPorts Ports(Questions& asked)
    {
        return {lines, clock, files, asked, clipboard, texts, waiter, outputs, printing, media};
    }
    ctlEmulator control{Ports(ask)};
};

} // namespace kestrune
