#pragma once

// Two hosts with a cable between them: the test's own network namespace, which main() has made, and another one that a
// process holds open. What happens to the cable happens to nobody else.

#include "linerig.h"

#include <QFile>
#include <QProcess>

#include <filesystem>

namespace kestrune {

class TwoHosts
{
public:
    static QString FarAddress() { return QStringLiteral("10.77.0.2"); }

    TwoHosts()
    {
        holder_.start(QStringLiteral("unshare"),
                      {QStringLiteral("-n"), QStringLiteral("sleep"), QStringLiteral("300")});
        EXPECT_TRUE(holder_.waitForStarted());
        const auto space = [](const QString& task) { // "net:[4026531840]"
            std::error_code none;
            return std::filesystem::read_symlink(QStringLiteral("/proc/%1/ns/net").arg(task).toStdString(), none)
                .string();
        };
        EXPECT_TRUE(WaitUntil([&] {
            const std::string other = space(Holder());
            return !other.empty() && other != space(QStringLiteral("thread-self"));
        }));
        Run("ip link set lo up");
        Run("ip link add near type veth peer name far netns " + Holder().toLatin1());
        Run("ip addr add 10.77.0.1/30 dev near");
        Run("ip link set near up");
        RunFar("ip link set lo up");
        RunFar("ip addr add 10.77.0.2/30 dev far");
        RunFar("ip link set far up");
    }
    ~TwoHosts()
    {
        Run("ip link del near");
        holder_.kill();
        holder_.waitForFinished();
    }
    void Run(const QByteArray& command) const
    {
        QStringList words = QString::fromLatin1(command).split(u' ');
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(words.takeFirst(), words);
        const bool done = process.waitForFinished(10000) && process.exitCode() == 0;
        EXPECT_TRUE(done) << command.constData() << ": " << process.readAll().constData();
    }
    void RunFar(const QByteArray& command) const { Run(Prefix().join(u' ').toLatin1() + ' ' + command); }
    QStringList Prefix() const
    {
        return {QStringLiteral("nsenter"), QStringLiteral("-t"), Holder(), QStringLiteral("-n")};
    }
    void Unplug() const { RunFar("ip link set far down"); }
    void Plug() const { RunFar("ip link set far up"); }
    void DropAnswers(bool drop) const
    {
        RunFar(drop ? "ip route add blackhole 10.77.0.1/32" : "ip route del blackhole 10.77.0.1/32");
    }
    // Segments that this side has sent again so far (RFC 4022).
    static int SentAgain()
    {
        QFile file(QStringLiteral("/proc/thread-self/net/snmp"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        QByteArrayList names;
        for (const QByteArray& line : file.readAll().split('\n'))
            if (line.startsWith("Tcp:") && names.isEmpty())
                names = line.split(' ');
            else if (line.startsWith("Tcp:"))
                return line.split(' ').value(names.indexOf("RetransSegs")).toInt();
        return -1;
    }

private:
    QString Holder() const { return QString::number(holder_.processId()); }

    QProcess holder_;
};

} // namespace kestrune
