#include "linerig.h"

#include <fakes/fakeclock.h>

#include <gtest/gtest.h>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

TEST(CommLibrary, KnowsWhichDevicesAreHere)
{
    FakeClock clock;
    const CommLibrary with(clock, u"Local Shell"_s);
    const CommLibrary without(clock, u" "_s);
    std::vector<int> present, presentWithout;
    for (int device = -1; device <= 8; ++device) {
        if (with.ORCommExist(device))
            present.push_back(device);
        if (without.ORCommExist(device))
            presentWithout.push_back(device);
    }
    EXPECT_EQ(present, (std::vector<int>{2, 3, 5, 6, 7}));
    EXPECT_EQ(presentWithout, (std::vector<int>{2, 3, 5, 7}));
}

TEST(CommLibrary, NamesDevicesIntoABufferOfGivenLength)
{
    FakeClock clock;
    const CommLibrary library(clock, u"anything"_s);
    struct Case
    {
        int device, room;
        QString text;
    };
    for (const Case& c : {Case{6, 20, u"Local Shell"_s}, Case{6, 5, u"Local"_s}, Case{3, 20, u"Telnet"_s},
                          Case{5, 20, u"SSH"_s}, Case{99, 20, u""_s}, Case{6, -1, u""_s}}) {
        int length = c.room;
        QString text = u"before"_s;
        library.ORCommID(c.device, length, text);
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(length, c.text.size());
    }
}

TEST(CommLibrary, MakesNoLineForADeviceThatIsNotHere)
{
    for (const Device device : {Device::None, Device::Modem, Device::SerialPort}) {
        LineOptions options;
        options.device = device;
        EXPECT_EQ(LineRig(options).line, nullptr);
    }
}

TEST(CommLibrary, TranslatesNumbersWithoutALocation)
{
    FakeClock clock;
    const CommLibrary library(clock, {});
    struct Case
    {
        QString number, dialable;
        int result;
    };
    for (const Case& c :
         {Case{u"+1 (212) 555-0100"_s, u"12125550100"_s, 1}, Case{u" 9,W5550100# "_s, u"9,W5550100#"_s, 1},
          Case{u"()"_s, {}, 0}, Case{QString(128, u'1'), {}, 0}}) {
        QString dialable, displayed;
        EXPECT_EQ(library.ORTranslateNumber(c.number, 0, dialable, displayed, 128), c.result);
        EXPECT_EQ(dialable, c.dialable);
        EXPECT_EQ(displayed, c.result ? c.number.trimmed() : QString());
    }
}

} // namespace

} // namespace kestrune
