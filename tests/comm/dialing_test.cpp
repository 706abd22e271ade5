#include <comm/dialing.h>

#include <gtest/gtest.h>

namespace kestrune::comm {

namespace {

const DialLocation Office{.country = "1",
                          .area = "212",
                          .outsideLine = "9,",
                          .outsideLineFar = "8,",
                          .longDistance = "1",
                          .international = "011",
                          .areaAlways = false};
const DialLocation Home{.country = "49",
                        .area = "30",
                        .outsideLine = {},
                        .outsideLineFar = {},
                        .longDistance = "0",
                        .international = "00",
                        .areaAlways = false};

struct DialCase
{
    const char* number;
    const DialLocation& from;
    const char* dialable; // "": nothing can be dialled
    const char* displayed;
};

void Check(std::optional<DialText> (*translate)(std::string_view, const DialLocation&), const DialCase& c)
{
    const auto result = translate(c.number, c.from);
    EXPECT_EQ(result ? result->dialable : "", c.dialable) << c.number;
    EXPECT_EQ(result ? result->displayed : "", c.displayed) << c.number;
}

TEST(Dialing, TranslatesCanonicalNumbersByThePlace)
{
    const DialLocation nowhere;
    DialLocation tenDigits = Office;
    tenDigits.areaAlways = true;
    for (const DialCase& c : {
             DialCase{"+1 (212) 555-0100", Office, "9,5550100", "9, 555-0100"},
             DialCase{"+1(212)5550100", tenDigits, "9,2125550100", "9, (212) 5550100"},
             DialCase{"+1 (415) 5550100", Office, "8,14155550100", "8, 1 (415) 5550100"},
             DialCase{"+49 (30) 12345", Office, "8,011493012345", "8, 011 49 (30) 12345"},
             DialCase{"+49 30 12345", Office, "8,011493012345", "8, 011 49 30 12345"},
             DialCase{"+14155550100", Office, "8,14155550100", "8, 1 4155550100"},
             DialCase{"+49 (30) 12345", Home, "12345", "12345"},
             DialCase{"+49 (40) 12345", Home, "04012345", "0 (40) 12345"},
             DialCase{"+1 (212) 5550100", Home, "0012125550100", "00 1 (212) 5550100"},
             DialCase{"+1 (212) 5550100", nowhere, "12125550100", "+1 (212) 5550100"},
             DialCase{" 5550100 ", Office, "5550100", "5550100"}, // as written: no outside line
             DialCase{"9,W5550100#", Office, "9,W5550100#", "9,W5550100#"},
             DialCase{"+1 (212) ", Office, "", ""},
             DialCase{"+(212) 1", Office, "2121", "+(212) 1"},
             DialCase{"+1 (212", Office, "1212", "+1 (212"},
             DialCase{"", Office, "", ""},
             DialCase{"+", Office, "", ""},
         })
        Check(&TranslateNumber, c);
}

TEST(Dialing, UnderstandsNumbersAsPeopleTypeThem)
{
    DialLocation noArea = Office;
    noArea.area.clear();
    for (const DialCase& c : {
             DialCase{"555-0100", Office, "9,5550100", "9, 5550100"},
             DialCase{"1/415.555 0100", Office, "8,14155550100", "8, 1 (415) 5550100"},
             DialCase{"(415) 555-0100", Office, "8,14155550100", "8, 1 (415) 5550100"},
             DialCase{"1(212)5550100", Office, "9,5550100", "9, 5550100"},
             DialCase{"555-0100", noArea, "5550100", "5550100"},
             DialCase{"1234567", Home, "1234567", "1234567"},
             DialCase{"(40) 12345", Home, "04012345", "0 (40) 12345"},
             DialCase{"0, 555", Office, "0,555", "0,555"},
             DialCase{"- -", Office, "", ""},
         })
        Check(&TranslateTyped, c);
}

} // namespace

} // namespace kestrune::comm
