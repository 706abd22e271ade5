#include "noise.h"

#include <comm/rebind/stream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace kestrune::comm {
namespace {

std::string AllBytes()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += char(byte);
    return bytes + bytes;
}

TEST(ResumableStream, CarriesEveryByteOverLinesThatDoNot)
{
    for (const bool sevenBit : {false, true}) {
        ResumableStream from(0x10000), to(0x10000);
        from.SetSevenBit(sevenBit);
        from.Write(AllBytes());
        const std::string wire = from.TakeOutput(0x10000);
        std::string noisy; // what terminal lines add and repeat
        for (const char byte : wire)
            noisy.append({byte, '\r', '\0', '\x11', '\x13'});
        std::string got;
        ASSERT_TRUE(to.Receive(noisy, got));
        EXPECT_EQ(got, AllBytes());
        for (const char byte : wire) {
            EXPECT_FALSE(std::string_view("\0\r\n\x11\x13\x7f", 6).find(byte) != std::string_view::npos);
            EXPECT_FALSE(sevenBit && (byte & 0x80) != 0);
        }
    }
}

// Whatever is lost of either direction at each cut, both sides have every byte once, in order.
TEST(ResumableStream, ResumesAnywhere)
{
    Noise chance(5);
    std::array<ResumableStream, 2> sides{ResumableStream(0x2000), ResumableStream(0x1000)};
    std::array<Noise, 2> sends{Noise(1), Noise(2)}, expects{Noise(2), Noise(1)};
    std::array<std::string, 2> got;
    std::array<std::size_t, 2> total{};
    for (int round = 0; round < 1000; ++round) {
        for (std::size_t side : {0U, 1U}) {
            sides[side].Write(sends[side].Take(std::min(sides[side].Room(), std::size_t{8} * chance.Next())));
            std::string wire = sides[side].TakeOutput(chance.Next() * 16U);
            if (round % 3 == 0)
                wire.resize(wire.size() * chance.Next() / 256); // cut on the way
            ASSERT_TRUE(sides[1 - side].Receive(wire, got[1 - side])) << "round " << round;
        }
        if (round % 3 == 0) {
            const auto first = sides[0].Received(), second = sides[1].Received();
            ASSERT_TRUE(sides[0].Resume(second));
            ASSERT_TRUE(sides[1].Resume(first));
        }
        for (std::size_t side : {0U, 1U}) {
            total[side] += got[side].size();
            ASSERT_EQ(got[side], expects[side].Take(got[side].size())) << "round " << round;
            got[side].clear();
        }
    }
    EXPECT_GT(total[0], 100'000U);
    EXPECT_GT(total[1], 100'000U);
}

TEST(ResumableStream, GivesUpALineThatLies)
{
    const struct
    {
        const char* name;
        std::string wire;
        bool taken;
    } cases[] = {
        {"an escape of nothing", "\x10!", false},
        {"an escape cut short by noise", "\x10\rJ", true},
        {"an acknowledgement of what was never sent",
         "\x10"
         "a5;",
         false},
        {"a count that differs",
         "ab\x10"
         "c3;",
         false},
        {"a count that agrees",
         "ab\x10"
         "c2;",
         true},
        {"a number without end",
         "\x10"
         "a00000000000000000000",
         false},
        {"a number that is none",
         "\x10"
         "axyz;",
         false},
        {"a message of a later version", "\x10z1f;", true},
    };
    for (const auto& test : cases) {
        ResumableStream stream(0x1000);
        std::string data;
        EXPECT_EQ(stream.Receive(test.wire, data), test.taken) << test.name;
    }
    ResumableStream stream(0x1000);
    stream.Write("abc");
    EXPECT_FALSE(stream.Resume(4));
    EXPECT_TRUE(stream.Resume(2));
    EXPECT_FALSE(stream.Resume(1)) << "it has gone";
    EXPECT_EQ(stream.TakeOutput(10), "c");
}

TEST(ResumableStream, TheEndComesLastAndAgainAfterACut)
{
    ResumableStream from(0x1000), to(0x1000);
    from.Write("last words");
    from.End(3);
    from.TakeOutput(0x1000);
    ASSERT_TRUE(from.Resume(0));
    std::string data;
    ASSERT_TRUE(to.Receive(from.TakeOutput(4), data));
    EXPECT_FALSE(to.Ended());
    ASSERT_TRUE(to.Receive(from.TakeOutput(100), data));
    EXPECT_EQ(data, "last words");
    EXPECT_EQ(to.Ended(), 3);
    EXPECT_FALSE(from.HasOutput());
}

} // namespace
} // namespace kestrune::comm
