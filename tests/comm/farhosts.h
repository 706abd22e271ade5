#pragma once

// Servers on the far side of the cable: telnet, TLS and SSH.

#include "sshd.h"
#include "telnetserver.h"
#include "twohosts.h"

#include <QTemporaryDir>

namespace kestrune {

inline constexpr auto EchoScript = R"script(#!/bin/bash
echo ready
while read line; do echo "got $line"; done
)script";

// A server that echoes behind TLS; its certificate is nobody's concern here.
class FarTlsEcho
{
public:
    explicit FarTlsEcho(const TwoHosts& hosts)
    {
        QProcess openssl;
        openssl.setWorkingDirectory(folder_.path());
        openssl.start(QStringLiteral("openssl"),
                      Words("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -subj /CN=far "
                            "-days 30 -keyout far.key -out far.pem"));
        EXPECT_TRUE(openssl.waitForFinished(30000) && openssl.exitCode() == 0);
        QStringList command = hosts.Prefix();
        command << Words("timeout -k 1 300 socat OPENSSL-LISTEN:9992,reuseaddr,fork,verify=0,cert=far.pem,key=far.key "
                         "EXEC:cat");
        process_.setWorkingDirectory(folder_.path());
        process_.start(command.takeFirst(), command);
        EXPECT_TRUE(WaitUntil([] {
            QTcpSocket caller;
            caller.connectToHost(TwoHosts::FarAddress(), 9992);
            return caller.waitForConnected(200);
        }));
    }
    ~FarTlsEcho()
    {
        process_.terminate();
        process_.waitForFinished();
    }
    static LineOptions Options()
    {
        LineOptions options;
        options.device = Device::SslTelnet;
        options.hostName = TwoHosts::FarAddress();
        options.hostPort = QStringLiteral("9992");
        options.telnet.bypass = true;
        options.tls.validation = CertificateValidation::None;
        return options;
    }

private:
    static QStringList Words(const char* command) { return QString::fromLatin1(command).split(u' '); }

    QTemporaryDir folder_;
    QProcess process_;
};

struct FarTelnet : TelnetServer
{
    explicit FarTelnet(const TwoHosts& hosts, const char* script = EchoScript)
        : TelnetServer(script, hosts.Prefix(), TwoHosts::FarAddress())
    {
        EXPECT_TRUE(Answers());
    }
};

struct FarSsh : Sshd
{
    FarSsh(const TwoHosts& hosts, const OwnHome& home)
        : Sshd(home, {QStringLiteral("ListenAddress ") + TwoHosts::FarAddress()}, hosts.Prefix())
    {
        EXPECT_TRUE(Answers(TwoHosts::FarAddress())) << Log().constData();
    }
    LineOptions Options() const
    {
        LineOptions options = Sshd::Options();
        options.hostName = TwoHosts::FarAddress();
        return options;
    }
};

} // namespace kestrune
