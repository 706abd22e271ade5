#include <comm/telnet.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <sstream>

namespace kestrune::comm {

namespace {

// "IAC DO TTYPE text 13" as bytes: command and option names, decimal bytes, and words that are neither as text.
std::string Wire(const std::string& words)
{
    static const std::map<std::string, int> names{
        {"IAC", 255},    {"DONT", 254}, {"DO", 253},     {"WONT", 252},   {"WILL", 251},  {"SB", 250},
        {"AYT", 246},    {"IP", 244},   {"BRK", 243},    {"DM", 242},     {"NOP", 241},   {"SE", 240},
        {"BINARY", 0},   {"ECHO", 1},   {"SGA", 3},      {"TM", 6},       {"TTYPE", 24},  {"NAWS", 31},
        {"STATUS", 5},   {"EOR", 25},   {"LOGOUT", 18},  {"ENDREC", 239}, {"TSPEED", 32}, {"XDISPLOC", 35},
        {"ENVIRON", 39}, {"AUTH", 37},  {"LINEMODE", 34}};
    std::string bytes;
    std::istringstream in(words);
    for (std::string word; in >> word;) {
        if (const auto name = names.find(word); name != names.end())
            bytes += static_cast<char>(name->second);
        else if (word.find_first_not_of("0123456789") == std::string::npos)
            bytes += static_cast<char>(std::stoi(word));
        else
            bytes += word;
    }
    return bytes;
}

std::string Words(const std::string& bytes)
{
    std::string words;
    for (const char c : bytes)
        words += std::to_string(static_cast<unsigned char>(c)) + " ";
    return words;
}

class TelnetRig : public TelnetEvents
{
public:
    explicit TelnetRig(TelnetSettings settings = {}) : telnet(std::move(settings), *this) {}
    void TelnetData(std::string_view bytes) override { data += bytes; }
    void TelnetOutput(std::string_view wire) override { output += wire; }
    void TelnetRemoteEcho(bool remote) override { echoes.push_back(remote); }

    // A machine that has made its offers and whose output begins here.
    TelnetRig& Started()
    {
        telnet.Start();
        output.clear();
        return *this;
    }
    void HostSays(const std::string& words) { telnet.Receive(Wire(words)); }
    std::string Answer(const std::string& words)
    {
        output.clear();
        HostSays(words);
        return output;
    }
    std::string Typed(std::string_view bytes)
    {
        output.clear();
        telnet.Send(bytes);
        return output;
    }

    Telnet telnet;
    std::string data, output;
    std::vector<bool> echoes;
};

TelnetSettings Vt220()
{
    TelnetSettings settings;
    settings.terminalNames = {"vt220", "vt100"};
    return settings;
}

TEST(Telnet, AnswersOptionsAsItsTableSays)
{
    TelnetSettings asUser = Vt220();
    asUser.userName = "ann";
    TelnetSettings ownEcho;
    ownEcho.localEcho = true;
    struct Case
    {
        const char* name;
        TelnetSettings settings;
        const char* host;
        const char* answer;
    };
    const std::vector<Case> cases{
        {"offered echo is taken", {}, "IAC WILL ECHO", "IAC DO ECHO"},
        {"unless echo is local", ownEcho, "IAC WILL ECHO", "IAC DONT ECHO"},
        {"echo of ours is refused", {}, "IAC DO ECHO", "IAC WONT ECHO"},
        {"binary to us when the host wishes", {}, "IAC WILL BINARY", "IAC DO BINARY"},
        {"binary from us when the host wishes", {}, "IAC DO BINARY", "IAC WILL BINARY"},
        {"terminal type was offered, so no answer", {}, "IAC DO TTYPE", ""},
        {"unknown ones are refused",
         {},
         "IAC WILL AUTH IAC DO XDISPLOC IAC DO LINEMODE IAC DO 200",
         "IAC DONT AUTH IAC WONT XDISPLOC IAC WONT LINEMODE IAC WONT 200"},
        {"what never was on is not switched off", {}, "IAC WONT AUTH IAC DONT XDISPLOC IAC DONT ECHO", ""},
        {"no user, no environment", {}, "IAC DO ENVIRON", "IAC WONT ENVIRON"},
        {"window size follows the agreement", {}, "IAC DO NAWS", "IAC SB NAWS 0 80 0 24 IAC SE"},
        {"speed", {}, "IAC DO TSPEED IAC SB TSPEED 1 IAC SE", "IAC SB TSPEED 0 38400,38400 IAC SE"},
        {"no speed before the agreement", {}, "IAC SB TSPEED 1 IAC SE", ""},
        {"each timing mark is marked", {}, "IAC DO TM IAC DO TM", "IAC WILL TM IAC WILL TM"},
        {"are you there", {}, "IAC AYT", "IAC NOP"},
        {"status",
         {},
         "IAC DO STATUS IAC WILL ECHO IAC DO TSPEED IAC SB STATUS 1 IAC SE",
         "IAC WILL STATUS IAC DO ECHO IAC SB STATUS 0 WILL STATUS WILL TSPEED DO ECHO IAC SE"},
        {"no status of the host's", {}, "IAC WILL STATUS IAC SB STATUS 0 WILL ECHO IAC SE", "IAC DONT STATUS"},
        {"records both ways when asked", {}, "IAC DO EOR IAC WILL EOR", "IAC WILL EOR IAC DO EOR"},
        {"nobody is logged off", {}, "IAC DO LOGOUT IAC WILL LOGOUT", "IAC WONT LOGOUT IAC DONT LOGOUT"},
        {"user by name", asUser, "IAC DO ENVIRON IAC SB ENVIRON 1 0 USER IAC SE",
         "IAC SB ENVIRON 0 0 USER 1 ann IAC SE"},
        {"user when all is asked for", asUser, "IAC DO ENVIRON IAC SB ENVIRON 1 IAC SE",
         "IAC SB ENVIRON 0 0 USER 1 ann IAC SE"},
        {"user among all well-known ones", asUser, "IAC DO ENVIRON IAC SB ENVIRON 1 0 3 IAC SE",
         "IAC SB ENVIRON 0 0 USER 1 ann IAC SE"},
        {"nothing else is told", asUser, "IAC DO ENVIRON IAC SB ENVIRON 1 0 HOME 3 USER 3 IAC SE",
         "IAC SB ENVIRON 0 IAC SE"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Words(TelnetRig(c.settings).Started().Answer(c.host)), Words(Wire(c.answer))) << c.name;
}

TEST(Telnet, WaitsForTheHostUnlessStarted)
{
    TelnetSettings settings;
    settings.binary = true;
    const std::string offers =
        Wire("IAC WILL BINARY IAC DO BINARY IAC WILL SGA IAC DO SGA IAC WILL TTYPE IAC WILL NAWS "
             "IAC WILL TSPEED");
    TelnetRig quiet(settings);
    EXPECT_EQ(quiet.Answer("login:"), "");
    EXPECT_EQ(Words(quiet.Answer("IAC NOP")), Words(offers));
    EXPECT_EQ(quiet.Answer("IAC NOP"), "");

    TelnetRig eager(settings);
    eager.telnet.Start();
    eager.telnet.Start();
    EXPECT_EQ(Words(eager.output), Words(offers));
}

TEST(Telnet, NamesItsTerminalsInTurnAndTheLastOneTwice)
{
    TelnetRig rig(Vt220());
    rig.Started().HostSays("IAC DO TTYPE");
    for (const char* name : {"vt220", "vt100", "vt100", "vt220", "vt100"})
        EXPECT_EQ(Words(rig.Answer("IAC SB TTYPE 1 IAC SE")),
                  Words(Wire(std::string("IAC SB TTYPE 0 ") + name + " IAC SE")));
    EXPECT_EQ(rig.Answer("IAC SB TTYPE 0 xterm IAC SE"), "") << "only a request is answered";
}

TEST(Telnet, TellsEachNewSizeOnceAndDoublesIac)
{
    TelnetRig rig;
    rig.Started();
    rig.telnet.Resize(100, 30);
    EXPECT_EQ(rig.output, "") << "not agreed yet";
    EXPECT_EQ(Words(rig.Answer("IAC DO NAWS")), Words(Wire("IAC SB NAWS 0 100 0 30 IAC SE")));
    rig.output.clear();
    rig.telnet.Resize(100, 30);
    rig.telnet.Resize(255, 511);
    EXPECT_EQ(Words(rig.output), Words(Wire("IAC SB NAWS 0 IAC IAC 1 IAC IAC IAC SE")));
    rig.HostSays("IAC DONT NAWS");
    rig.output.clear();
    rig.telnet.Resize(80, 24);
    EXPECT_EQ(rig.output, "");
}

TEST(Telnet, TellsWhenTheHostBeginsAndStopsToEcho)
{
    TelnetRig rig;
    rig.HostSays("IAC WILL ECHO IAC WILL ECHO IAC WONT ECHO IAC WONT ECHO IAC WILL ECHO");
    EXPECT_EQ(rig.echoes, (std::vector<bool>{true, false, true}));
    EXPECT_TRUE(rig.telnet.RemoteEcho());
}

TEST(Telnet, TakesTextOutOfTheProtocol)
{
    struct Case
    {
        const char* name;
        std::string wire;
        std::string data;
    };
    using namespace std::string_literals;
    const std::vector<Case> cases{
        {"plain", "abc", "abc"},
        {"CR NUL is a CR", "a\r\0b"s, "a\rb"},
        {"CR LF stays", "a\r\nb", "a\r\nb"},
        {"any other NUL stays", "\0a\0\r\0\0"s, "\0a\0\r\0"s},
        {"doubled IAC", Wire("a IAC IAC b IAC IAC"), "a\xff"s + "b\xff"},
        {"a CR, then a command, then its NUL", "\r"s + Wire("IAC NOP") + "\0x"s, "\rx"},
        {"CR, IAC IAC, NUL", "\r"s + Wire("IAC IAC") + "\0"s, "\r\xff\0"s},
        {"binary keeps CR NUL", Wire("IAC WILL BINARY") + "\r\0"s, "\r\0"s},
        {"after binary no longer", Wire("IAC WILL BINARY IAC WONT BINARY") + "\r\0"s, "\r"},
        {"commands are no text", Wire("a IAC NOP IAC DM IAC BRK IAC IP IAC 249 b"), "ab"},
        {"sub-negotiations are no text", Wire("a IAC SB TTYPE 1 IAC SE IAC SB 77 x IAC IAC y IAC SE b"), "ab"},
        {"one that is broken off by a command", Wire("IAC SB TTYPE 1 IAC WILL ECHO ab"), "ab"},
        {"text after an endless one shows again", Wire("IAC SB TTYPE") + std::string(65536, 'x') + "shown", "shown"},
    };
    for (const Case& c : cases) {
        TelnetRig rig;
        rig.telnet.Receive(c.wire);
        EXPECT_EQ(Words(rig.data), Words(c.data)) << c.name;
    }
}

TEST(Telnet, DropsSubNegotiationsThatAreTooLong)
{
    TelnetRig rig(Vt220());
    rig.Started().HostSays("IAC DO TTYPE");
    rig.output.clear();
    rig.telnet.Receive(Wire("IAC SB TTYPE 1") + std::string(5000, 'x') + Wire("IAC SE after"));
    EXPECT_EQ(rig.output, "");
    EXPECT_EQ(rig.data, "after");
}

TEST(Telnet, SendsCarriageReturnsAsTheHostReadsThem)
{
    using namespace std::string_literals;
    TelnetRig rig;
    rig.Started();
    EXPECT_EQ(rig.Typed("ls\r"), "ls\r\n") << "a host that takes whole lines";
    EXPECT_EQ(rig.Typed("a\r\nb\n"), "a\r\nb\n");
    rig.HostSays("IAC WILL SGA");
    EXPECT_EQ(rig.Typed("ls\r"), "ls\r\0"s) << "one that reads characters";
    EXPECT_EQ(rig.Typed("a\r\nb\n"), "a\r\0\nb\n"s);
    rig.HostSays("IAC DO BINARY");
    EXPECT_EQ(rig.Typed("ls\r\xff"), "ls\r\xff\xff") << "binary";
}

TEST(Telnet, EndsRecordsWhereTheHostAsksForThem)
{
    using namespace std::string_literals;
    TelnetRig rig;
    rig.Started().HostSays("IAC DO BINARY IAC DO EOR");
    EXPECT_EQ(rig.Typed("ab"), "ab");
    EXPECT_EQ(Words(rig.Typed("ab\r")), Words("ab\r" + Wire("IAC ENDREC")));
    rig.HostSays("a IAC ENDREC b");
    EXPECT_EQ(rig.data, "ab") << "marks are no text";
}

TEST(Telnet, DropsTextUpToTheDataMarkButObeysCommands)
{
    TelnetRig rig;
    rig.Started().telnet.BeginSynch();
    EXPECT_EQ(Words(rig.Answer("old IAC IAC IAC DO TM old IAC DM new")), Words(Wire("IAC WILL TM")));
    EXPECT_EQ(rig.data, "new");
    rig.telnet.BeginSynch();
    rig.HostSays("lost");
    rig.telnet.EndSynch();
    rig.HostSays("IAC DM kept");
    EXPECT_EQ(rig.data, "newkept");
}

TEST(Telnet, SendsCommands)
{
    TelnetRig rig;
    rig.telnet.SendBreak(TelnetBreak::Break);
    rig.telnet.SendBreak(TelnetBreak::InterruptProcess);
    rig.telnet.SendNop();
    rig.telnet.SendAreYouThere();
    EXPECT_EQ(Words(rig.output), Words(Wire("IAC BRK IAC IP IAC NOP IAC AYT")));
}

// Two of these machines, each the other's host, must come to rest (RFC 1143), whatever they are asked to want.
TEST(Telnet, NeverLoopsWithAPeerOfItsOwnKind)
{
    for (const bool binary : {false, true}) {
        TelnetSettings settings;
        settings.binary = binary;
        TelnetRig a(settings), b(settings);
        a.telnet.Start();
        b.telnet.Start();
        int rounds = 0;
        for (; rounds < 10 && !(a.output.empty() && b.output.empty()); ++rounds) {
            const std::string toB = std::exchange(a.output, {});
            const std::string toA = std::exchange(b.output, {});
            b.telnet.Receive(toB);
            a.telnet.Receive(toA);
        }
        EXPECT_LT(rounds, 5);
    }
}

// Interesting bytes are frequent, so that every state is reached and every border cut.
std::string RandomWire(std::mt19937& random)
{
    static const std::string common =
        Wire("IAC IAC IAC SB SE WILL DO DONT WONT ECHO TTYPE NAWS BINARY SGA ENVIRON 13 a 2");
    std::string wire;
    for (int i = 0; i < 200; ++i)
        wire += random() % 8 ? common[random() % common.size()] : static_cast<char>(random() % 256);
    return wire;
}

TEST(Telnet, GivesTheSameForAnySplit)
{
    std::mt19937 random(20261);
    for (int round = 0; round < 500; ++round) {
        const std::string wire = RandomWire(random);
        TelnetSettings settings = Vt220();
        settings.userName = "ann";
        TelnetRig whole(settings), split(settings);
        if (round % 2) {
            whole.telnet.BeginSynch();
            split.telnet.BeginSynch();
        }
        whole.telnet.Receive(wire);
        for (std::size_t at = 0; at < wire.size();) {
            const std::size_t length = 1 + random() % 5;
            split.telnet.Receive(std::string_view(wire).substr(at, length));
            at += length;
        }
        ASSERT_EQ(Words(whole.data), Words(split.data)) << Words(wire);
        ASSERT_EQ(Words(whole.output), Words(split.output)) << Words(wire);
        ASSERT_EQ(whole.echoes, split.echoes);
    }
}

} // namespace

} // namespace kestrune::comm
