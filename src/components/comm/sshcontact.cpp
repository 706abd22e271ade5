#include "sshcontact.h"

#include <comm/sshciphers.h>

#include <platform/sockets.h>

#include <libssh/server.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>
#include <system_error>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

constexpr qsizetype LongestHostWords = 4000;
// Lines that a host may say before its version (RFC 4253 4.2), in bytes; servers say a few hundred.
constexpr quint64 LongestGreeting = 65536;

QString Say(const char* text) { return QCoreApplication::translate("SshLine", text); }

} // namespace

QString HostWords(const char* text)
{
    QString words = QString::fromUtf8(text).left(LongestHostWords);
    words.remove(u'\r');
    for (QChar& c : words)
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format)
            c = c == u'\n' ? c : u' ';
    return words.trimmed();
}

const char* KeyTypeName(ssh_key key)
{
    switch (ssh_key_type(key)) { // the library's own names leave the curve out
    case SSH_KEYTYPE_ECDSA_P256:
        return "ecdsa-sha2-nistp256";
    case SSH_KEYTYPE_ECDSA_P384:
        return "ecdsa-sha2-nistp384";
    case SSH_KEYTYPE_ECDSA_P521:
        return "ecdsa-sha2-nistp521";
    default:
        return ssh_key_type_to_char(ssh_key_type(key));
    }
}

SshContact::SshContact(SshMailbox& mail, const LineOptions& options, const SshTarget& target)
    : mail_(mail), options_(options), session_(ssh_new()), given_(target.host)
{
    if (!session_)
        Fail(LineErrorNumber::NoBufferSpace, Say("The system has no room for another connection."));
    if (const QString error = target.Error(options.tcpIdn); !error.isEmpty())
        Fail(LineErrorNumber::InvalidArgument, error);
    ssh_set_blocking(session_.get(), 0);
    ssh_set_counters(session_.get(), &traffic_, &counter_);
    DenyRequests();
    SetText(SSH_OPTIONS_SSH_DIR, QDir::homePath() + u"/.ssh"_s);
    SetText(SSH_OPTIONS_HOST, target.host);
    if (!target.user.isEmpty())
        SetText(SSH_OPTIONS_USER, target.user);
    if (!target.port.isEmpty())
        SetText(SSH_OPTIONS_PORT_STR, target.port);
    // Its own faults are told by the user's SSH programs; what it says before them holds.
    ssh_options_parse_config(session_.get(), nullptr);
    if (const std::string ciphers = SshCipherList(options.ssh.cipher, options.ssh.onlyPreferredCipher);
        !ciphers.empty()) {
        ssh_options_set(session_.get(), SSH_OPTIONS_CIPHERS_C_S, ciphers.c_str());
        ssh_options_set(session_.get(), SSH_OPTIONS_CIPHERS_S_C, ciphers.c_str());
    }
    char* host = nullptr;
    if (ssh_options_get(session_.get(), SSH_OPTIONS_HOST, &host) == SSH_OK)
        host_ = QString::fromUtf8(SshText(host).get());
    unsigned int port = 22;
    if (ssh_options_get_port(session_.get(), &port) == SSH_OK)
        port_ = static_cast<int>(port);
}

void SshContact::DenyRequests()
{
    ssh_set_message_callback(
        session_.get(), [](ssh_session, ssh_message, void*) { return 1; }, nullptr);
}

SshContact::~SshContact()
{
    if (ssh_is_connected(session_.get()))
        ssh_disconnect(session_.get());
    session_.reset();
    // Which ends leave the library's descriptor open differs from one to the next.
    CloseDuplicate(duplicate_, socket_);
    CloseSocket(socket_);
}

void SshContact::SetText(ssh_options_e option, const QString& text)
{
    ssh_options_set(session_.get(), option, QFile::encodeName(text).constData());
}

QString SshContact::User() const
{
    char* user = nullptr;
    if (ssh_options_get(session_.get(), SSH_OPTIONS_USER, &user) != SSH_OK)
        return {};
    return QString::fromUtf8(SshText(user).get());
}

QString SshContact::ProxyCommand() const
{
    char* command = nullptr;
    if (ssh_options_get(session_.get(), SSH_OPTIONS_PROXYCOMMAND, &command) != SSH_OK)
        return {};
    return QString::fromUtf8(SshText(command).get());
}

QString SshContact::Address() const
{
    const QString user = User();
    const QString host = host_.contains(u':') ? u'[' + host_ + u']' : host_;
    return (user.isEmpty() ? QString() : user + u'@') + host +
           (port_ == 22 ? QString() : u':' + QString::number(port_));
}

void SshContact::Connect(int socket)
{
    socket_ = socket;
    duplicate_ = DuplicateSocket(socket);
    ssh_options_set(session_.get(), SSH_OPTIONS_FD, &duplicate_);
    const auto step = [this] {
        const int result = ssh_connect(session_.get());
        CheckGreeting();
        return result;
    };
    if (Until(step) != SSH_OK)
        FailToAgree();
}

// The library bounds the length of a line, and not their number; nor does it tell a version that it has not.
void SshContact::CheckGreeting() const
{
    const QByteArray version = ssh_get_serverbanner(session_.get());
    if (version.isEmpty() && traffic_.in_bytes > LongestGreeting)
        Fail(
            LineErrorNumber::ProtocolNotSupported,
            Say("Unable to connect to %1: the host talks without end and does not say that it speaks SSH.").arg(host_));
    if (version.startsWith("SSH-1.") && !version.startsWith("SSH-1.99")) // that one speaks both
        Fail(LineErrorNumber::ProtocolNotSupported,
             Say("Unable to connect to %1: the host speaks only version 1 of SSH, which has been unsafe for decades "
                 "and is not spoken here.")
                 .arg(host_));
}

// The library names the list in which nothing was found in common, in English: "no match for method encryption
// client->server: server [a,b], client [c]".
void SshContact::FailToAgree()
{
    struct Subject
    {
        QLatin1StringView mark;
        const char* text;
    };
    static constexpr std::array subjects{
        Subject{"encryption "_L1,
                QT_TRANSLATE_NOOP("SshLine", "Unable to connect to %1: the host and this session have no cipher in "
                                             "common. The host offers %2.")},
        Subject{"kex algo"_L1,
                QT_TRANSLATE_NOOP("SshLine", "Unable to connect to %1: the host and this program have no key exchange "
                                             "in common. The host offers %2.")},
        Subject{"server host key algo"_L1,
                QT_TRANSLATE_NOOP("SshLine", "Unable to connect to %1: the host and this program have no kind of host "
                                             "key in common. The host offers %2.")},
        Subject{"mac algo"_L1,
                QT_TRANSLATE_NOOP("SshLine", "Unable to connect to %1: the host and this program have no way of "
                                             "checking messages in common. The host offers %2.")},
    };
    const QString reason = Reason();
    if (reason.contains("no match for method"_L1)) {
        const qsizetype from = reason.indexOf("server ["_L1) + 8;
        const QString offer = reason.mid(from, reason.indexOf(u']', from) - from).replace(u","_s, u", "_s);
        for (const Subject& subject : subjects)
            if (reason.contains(subject.mark))
                Fail(LineErrorNumber::ProtocolNotSupported, Say(subject.text).arg(host_, offer));
    }
    // A socket that has ended without an error has the system's word for that as its reason: "Success".
    const QString noError = QString::fromStdString(std::generic_category().message(0));
    if (reason.contains("Socket error"_L1) || reason.isEmpty() || reason == noError)
        Fail(LineErrorNumber::ConnectionReset,
             Say("Unable to connect to %1: the host has closed the connection before the login.").arg(host_));
    Fail(LineErrorNumber::ProtocolNotSupported, Say("Unable to connect to %1: %2").arg(host_, reason));
}

void SshContact::WaitForHost()
{
    const bool writing = ssh_get_poll_flags(session_.get()) & SSH_WRITE_PENDING;
    if (!mail_.AwaitHost(ssh_get_fd(session_.get()), writing))
        throw SshFailure(SshEnding{});
}

LineAnswer SshContact::Ask(LineQuestion question)
{
    question.id = ++lastQuestion_;
    mail_.Tell([question](SshNotices& line) { line.SshAsks(question); });
    auto answer = mail_.AwaitAnswer(ssh_get_fd(session_.get()));
    if (!answer && mail_.IsCancelled())
        throw SshFailure(SshEnding{});
    if (!answer)
        Fail(LineErrorNumber::ConnectionReset,
             Say("The host %1 has closed the connection while it waited for an answer.").arg(host_));
    if (answer->choice == LineAnswer::Choice::Nobody)
        Fail(LineErrorNumber::AccessDenied,
             question.kind == LineQuestion::Kind::Secrets
                 ? Say("Unable to log in to %1: the host asks for a password and there is nobody to ask.").arg(host_)
                 : Say("Unable to connect to %1: its host key is not known and there is nobody to ask.").arg(host_));
    if (answer->choice == LineAnswer::Choice::Cancel)
        throw SshFailure(SshEnding{.number = 0, .text = Say("Disconnected")});
    return std::move(*answer);
}

void SshContact::Fail(quint16 number, const QString& text) const { throw SshFailure({.number = number, .text = text}); }

QString SshContact::Reason() const { return HostWords(ssh_get_error(session_.get())); }

bool SshContact::IsLost() const
{
    return !ssh_is_connected(session_.get()) || (ssh_get_status(session_.get()) & (SSH_CLOSED | SSH_CLOSED_ERROR));
}

void SshContact::FailAsLost() const
{
    Fail(LineErrorNumber::ConnectionReset, Say("The connection to %1 was lost.").arg(host_));
}

} // namespace kestrune::comm
