#include <comm/socksserver.h>

#include <gtest/gtest.h>

#include <string>

namespace kestrune::comm {

namespace {

using namespace std::string_literals;

struct SocksCase
{
    const char* name;
    std::string said;
    SocksServer::Progress end; // after all of it
    std::string answered;      // up to there
    std::string host;
    unsigned port;
};

const SocksCase socksCases[]{
    {"a name", "\5\1\0\5\1\0\3\4host\0\x50"s, SocksServer::Progress::Wants, "\5\0"s, "host", 80},
    {"an address", "\5\2\2\0\5\1\0\1\x0a\0\0\xff\x1f\x90"s, SocksServer::Progress::Wants, "\5\0"s, "10.0.0.255", 8080},
    {"an IPv6 address", "\5\1\0\5\1\0\4\x20\1\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\1\0\x16"s, SocksServer::Progress::Wants,
     "\5\0"s, "2001:db8:0:0:0:0:0:1", 22},
    {"logins only", "\5\1\2"s, SocksServer::Progress::Refused, "\5\xff"s, "", 0},
    {"listening for it", "\5\1\0\5\2\0\3\1"s, SocksServer::Progress::Refused, "\5\0\5\7\0\1\0\0\0\0\0\0"s, "", 0},
    {"an unknown kind of address", "\5\1\0\5\1\0\7\0"s, SocksServer::Progress::Refused, "\5\0\5\x08\0\1\0\0\0\0\0\0"s,
     "", 0},
    {"half a name", "\5\1\0\5\1\0\3\4ho"s, SocksServer::Progress::More, "\5\0"s, "", 0},
    {"version 4", "\4\1\0\x50\x7f\0\0\1me\0"s, SocksServer::Progress::Wants, "", "127.0.0.1", 80},
    {"version 4a", "\4\1\0\x50\0\0\0\1\0host\0"s, SocksServer::Progress::Wants, "", "host", 80},
    {"version 4 without end", "\4\1\0\x50\x7f\0\0\1"s + std::string(700, 'x'), SocksServer::Progress::Refused, "", "",
     0},
    {"something else", "GET / HTTP/1.1\r\n"s, SocksServer::Progress::Refused, "", "", 0},
};

TEST(SocksServer, UnderstandsWhatProgramsWant)
{
    for (const SocksCase& c : socksCases) {
        SocksServer server;
        std::string answered;
        auto progress = SocksServer::Progress::More;
        std::size_t taken = 0;
        while (taken < c.said.size() && progress == SocksServer::Progress::More) {
            progress = server.Take(c.said[taken++]);
            answered += server.Answer();
        }
        EXPECT_EQ(progress, c.end) << c.name;
        EXPECT_EQ(answered, c.answered) << c.name;
        if (c.end != SocksServer::Progress::Wants)
            continue;
        EXPECT_EQ(taken, c.said.size()) << c.name << ": what follows belongs to the connection";
        EXPECT_EQ(server.Host(), c.host) << c.name;
        EXPECT_EQ(server.Port(), c.port) << c.name;
        EXPECT_EQ(server.Outcome(true)[1], c.said[0] == 4 ? '\x5a' : '\0') << c.name;
        EXPECT_NE(server.Outcome(false)[1], server.Outcome(true)[1]) << c.name;
    }
}

} // namespace

} // namespace kestrune::comm
