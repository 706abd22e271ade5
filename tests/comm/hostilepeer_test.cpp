// Telnet hosts that no honest program plays: the line stays alive, its memory bounded, and every byte of text arrives.

#include "scriptedhost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/socket.h>
#include <utility>

namespace kestrune {

namespace {

using namespace Qt::StringLiterals;

// Writes as fast as the line takes it, so that the test itself needs no memory for it.
class Flood : public QObject
{
public:
    Flood(QTcpSocket& to, QByteArray piece, int times) : to_(to), piece_(std::move(piece)), left_(times)
    {
        connect(&to_, &QIODevice::bytesWritten, this, [this] { More(); });
        More();
    }
    bool IsOver() const { return left_ == 0 && to_.bytesToWrite() == 0; }

private:
    void More()
    {
        while (left_ > 0 && to_.bytesToWrite() < 4 * piece_.size()) {
            --left_;
            to_.write(piece_);
        }
    }

    QTcpSocket& to_;
    QByteArray piece_;
    int left_;
};

TEST(HostilePeer, ABannerOf100MegabytesArrivesPieceByPiece)
{
    ScriptedHost host;
    LineRig rig(host.Options());
    rig.keep = false;
    qint64 longest = 0, before = 0;
    rig.onReceived = [&] { longest = std::max(longest, rig.receivedBytes - std::exchange(before, rig.receivedBytes)); };
    ASSERT_TRUE(host.Takes(rig));
    const QByteArray piece(1'000'000, 'x');
    Flood flood(host.Caller(), piece, 100);
    ASSERT_TRUE(rig.Until([&] { return rig.receivedBytes == 100'000'000; }));
    EXPECT_LE(longest, 64 * 1024);
    rig.Type("still here");
    EXPECT_TRUE(host.Hears(rig, "still here"));
}

TEST(HostilePeer, AStormOfOptionsIsAnsweredOrDroppedButNeverHoarded)
{
    ScriptedHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(host.Takes(rig));
    QByteArray piece;
    for (int option = 0; option < 255; ++option)
        for (const char verb : {'\xfb', '\xfd', '\xfc', '\xfe'})
            piece += QByteArray("\xff") + verb + static_cast<char>(option);
    host.Caller().setReadBufferSize(1); // it never reads what it is told
    Flood flood(host.Caller(), piece, 4'000);
    qsizetype most = 0;
    ASSERT_TRUE(rig.Until([&] {
        most = std::max(most, rig.line->Unsent());
        return flood.IsOver();
    }));
    EXPECT_LE(most, 2 * Line::MaxUnsent + 4096);
    host.Says("text");
    EXPECT_TRUE(rig.UntilReceived("text"));
}

TEST(HostilePeer, ASubnegotiationWithoutEndIsGivenUp)
{
    ScriptedHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(host.Takes(rig));
    host.Says("before\xff\xfa\x18");
    Flood flood(host.Caller(), QByteArray(qsizetype{64} * 1024, 'x'), 2);
    ASSERT_TRUE(rig.UntilReceived("xxx"));
    EXPECT_TRUE(rig.received.startsWith("before"));
    rig.Type("still here");
    EXPECT_TRUE(host.Hears(rig, "still here"));
}

TEST(HostilePeer, OneByteAtATimeIsTheSameConversation)
{
    ScriptedHost host;
    LineOptions options = host.Options();
    options.userName = "ann";
    LineRig rig(options);
    ASSERT_TRUE(host.Takes(rig));
    host.Caller().setSocketOption(QAbstractSocket::LowDelayOption, 1);
    static constexpr char talk[] = "\xff\xfd\x18\xff\xfa\x18\x01\xff\xf0\xff\xfb\x01\xff\xfd\x27login:\r\0 \xff\xff.";
    for (const char byte : QByteArray(talk, sizeof talk - 1)) {
        host.Says(QByteArray(1, byte));
        host.Caller().flush();
        QCoreApplication::processEvents();
    }
    ASSERT_TRUE(rig.UntilReceived("login:\r \xff."));
    EXPECT_EQ(rig.received, "login:\r \xff.");
    EXPECT_EQ(rig.remoteEcho, true);
    EXPECT_TRUE(host.Hears(rig, QByteArray("\xff\xfa\x18\x00vt220\xff\xf0", 11)));
}

TEST(HostilePeer, AHostThatClosesInTheMiddleOfACommandIsAnOrdinaryEnd)
{
    for (const char* talk : {"\xff", "\xff\xfd", "\xff\xfa\x18\x01", "text\xff\xfa\x18\x01\xff"}) {
        ScriptedHost host;
        LineRig rig(host.Options());
        ASSERT_TRUE(host.Takes(rig));
        host.Says(talk);
        host.Caller().disconnectFromHost();
        ASSERT_TRUE(rig.UntilClosed());
        EXPECT_EQ(rig.errors, QStringList());
        EXPECT_EQ(rig.stateText, u"The host 127.0.0.1 has closed the connection."_s);
    }
}

// The host has gone without a word, as after a power cut; what is left of it answers with a reset.
TEST(HostilePeer, AResetIsSaidAsALoss)
{
    ScriptedHost host;
    LineRig rig(host.Options());
    ASSERT_TRUE(host.Takes(rig));
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    ASSERT_EQ(
        ::setsockopt(static_cast<int>(host.Caller().socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce),
        0);
    host.Caller().abort();
    ASSERT_TRUE(rig.UntilClosed());
    EXPECT_EQ(rig.states.back(), LineState::Closed);
    EXPECT_FALSE(rig.stateText.isEmpty());
}

} // namespace

} // namespace kestrune
