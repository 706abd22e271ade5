// What the SSH device makes of texts: the host field, the list of known hosts, the list of ciphers.

#include <comm/sshciphers.h>
#include <comm/sshknownhosts.h>
#include <comm/sshtarget.h>

#include <gtest/gtest.h>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

TEST(SshTarget, TakesTheHostFieldApart)
{
    struct Case
    {
        QString field, user, host, port;
    };
    for (const Case& c :
         {Case{u"host"_s, {}, u"host"_s, {}}, Case{u" ann@host:2200 "_s, u"ann"_s, u"host"_s, u"2200"_s},
          Case{u"ann@corp.example@host"_s, u"ann@corp.example"_s, u"host"_s, {}},
          Case{u"[fe80::1%eth0]:22"_s, {}, u"fe80::1%eth0"_s, u"22"_s}, Case{u"ann@[::1]"_s, u"ann"_s, u"::1"_s, {}},
          Case{u"fe80::1"_s, {}, u"fe80::1"_s, {}}, Case{u"[::1]x"_s, {}, u"::1x"_s, {}}, Case{u"@"_s, {}, {}, {}}}) {
        const SshTarget target = SshTarget::From(c.field);
        EXPECT_EQ(target.user, c.user);
        EXPECT_EQ(target.host, c.host);
        EXPECT_EQ(target.port, c.port);
    }
}

TEST(SshKnownHosts, ReplacesOneKeyAndNothingElse)
{
    // By ssh-keygen -H: "host" and "[host]:2200".
    const QByteArray hashed = "|1|XJXKoZgwjkj5uqyY/Om/i9Et73I=|JbUxi/FyVlkdaH7CkqNCiGfRKes= ssh-ed25519 OLDK\n";
    const QByteArray hashedPort = "|1|c3FCX6GQVdWYt3b66Oxmn8NWv0I=|JHziv11Il20BxNT3IvSRfN3bB2U= ssh-ed25519 OLDK\n";
    const QByteArray others =
        "# mine\n\nother ssh-ed25519 AAAA comment\nhost ssh-rsa BBBB\n@revoked host ssh-ed25519 CCCC\n";
    struct Case
    {
        QByteArray before, after;
    };
    for (const Case& c :
         {Case{"", "host ssh-ed25519 NEWK\n"}, Case{"host ssh-ed25519 OLDK\n", "host ssh-ed25519 NEWK\n"},
          Case{hashed + hashedPort, hashedPort + "host ssh-ed25519 NEWK\n"},
          Case{others + "HOST,10.0.0.1 ssh-ed25519 OLDK me@here\n",
               others + "10.0.0.1 ssh-ed25519 OLDK me@here\nhost ssh-ed25519 NEWK\n"},
          Case{"other ssh-ed25519 AAAA", "other ssh-ed25519 AAAA\nhost ssh-ed25519 NEWK\n"}})
        EXPECT_EQ(WithKnownHostKey(c.before, "host", "ssh-ed25519", "NEWK").toStdString(), c.after.toStdString());
    EXPECT_EQ(KnownHostKey(hashedPort, KnownHostName("host", 2200), "ssh-ed25519"), "OLDK");
    EXPECT_EQ(KnownHostKey(hashedPort + others, "host", "ssh-ed25519"), "")
        << "neither another port's nor a revoked one";
}

TEST(SshKnownHosts, FingerprintIsTheOneThatOtherProgramsShow)
{
    EXPECT_EQ(KeyFingerprint("AAAAC3NzaC1lZDI1NTE5AAAAIPg1v8mV0J0t0l3u6tJ6u2Y3j5m7n9pQrStUvWxYz012"),
              "SHA256:oosRoa8usi/8D/KIpOTn0WicDv6nxdgxjJ83grrUu7c"); // ssh-keygen -l
}

TEST(SshCiphers, PutThePreferredOneFirstAndOldOnesOnlyThere)
{
    EXPECT_EQ(SshCipherList(0, false), "");
    EXPECT_EQ(SshCipherList(99, true), "");
    EXPECT_EQ(SshCipherList(6, true), "aes128-ctr");
    EXPECT_EQ(SshCipherList(9, false), "3des-cbc,aes256-gcm@openssh.com,aes128-gcm@openssh.com,"
                                       "chacha20-poly1305@openssh.com,aes256-ctr,aes192-ctr,aes128-ctr");
    EXPECT_EQ(SshCipherList(4, false), "aes256-ctr,aes256-gcm@openssh.com,aes128-gcm@openssh.com,"
                                       "chacha20-poly1305@openssh.com,aes192-ctr,aes128-ctr");
}

} // namespace

} // namespace kestrune::comm
