#pragma once

// The OpenSSH server of tests/partners/sshd.sh, and answers to what the SSH device asks.

#include "partnerserver.h"

#include <unistd.h>

namespace kestrune {

class Sshd : public PartnerServer
{
public:
    // configuration: lines for the server's own. prefix: a command that runs another one where the server is to be.
    explicit Sshd(const OwnHome& home, const QStringList& configuration = {}, QStringList prefix = {})
        : PartnerServer(prefix << QStringLiteral(KESTRUNE_TESTS "/partners/sshd.sh")
                               << home.Path(QStringLiteral("sshd")) << QStringLiteral("%1") << configuration),
          home_(home)
    {}

    // Logs in by the key that needs no passphrase, to a host that may be trusted.
    LineOptions Options() const
    {
        LineOptions options;
        options.device = Device::Ssh;
        options.hostName = QStringLiteral("localhost");
        options.hostPort = QString::number(Port());
        options.userName = User();
        options.terminalName = QStringLiteral("vt220");
        options.size = {.cols = 100, .rows = 30};
        options.ssh.keyFile = Key(QStringLiteral("user_ed25519"));
        options.ssh.hostKeyValidation = HostKeyValidation::None;
        return options;
    }
    static QByteArray User() { return ::getuid() == 0 ? "tkey" : qgetenv("USER"); }
    QString Key(const QString& name) const { return home_.Path(QStringLiteral("sshd/keys/") + name); }

private:
    const OwnHome& home_;
};

// A command that runs another one as somebody without rights: as root, a user who exists for that command alone.
inline QStringList AsOrdinaryUser()
{
    return ::getuid() == 0 ? QStringList{QStringLiteral(KESTRUNE_TESTS "/partners/as-user.sh")} : QStringList();
}
inline QByteArray OrdinaryUser() { return ::getuid() == 0 ? "tuser" : qgetenv("USER"); }

// Each question is answered alike: with the values given, or with the choice alone.
inline std::function<LineAnswer(const LineQuestion&)>
Answering(std::vector<QString> texts, LineAnswer::Choice choice = LineAnswer::Choice::Continue)
{
    return [=](const LineQuestion& question) {
        LineAnswer answer{.question = question.id, .choice = choice};
        for (const QString& text : texts)
            answer.values.push_back(Secret::From(text));
        return answer;
    };
}

} // namespace kestrune
