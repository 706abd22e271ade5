#pragma once

// One SSH session with a host, as the steps of a conversation see it: each call of the library is repeated until
// it has an answer, and the thread sleeps in between. The user's own SSH configuration is read, from the home
// folder that the environment names. What fails, and a conversation that was cancelled, is thrown as SshFailure.

#include "sshmailbox.h"
#include <comm/sshtarget.h>

#include <libssh/libssh.h>

#include <exception>
#include <memory>
#include <utility>

namespace kestrune::comm {

class SshFailure : public std::exception
{
public:
    explicit SshFailure(SshEnding ending) : why(std::move(ending)) {}
    const char* what() const noexcept override { return "SSH"; }
    SshEnding why;
};

template <auto Free>
struct SshFree
{
    template <typename T>
    void operator()(T* handle) const
    {
        Free(handle);
    }
};
using SshSessionHandle = std::unique_ptr<ssh_session_struct, SshFree<ssh_free>>;
using SshChannelHandle = std::unique_ptr<ssh_channel_struct, SshFree<ssh_channel_free>>;
using SshEventHandle = std::unique_ptr<ssh_event_struct, SshFree<ssh_event_free>>;
using SshKeyHandle = std::unique_ptr<ssh_key_struct, SshFree<ssh_key_free>>;
using SshText = std::unique_ptr<char, SshFree<ssh_string_free_char>>;

class SshContact
{
public:
    SshContact(SshMailbox& mail, const LineOptions& options, const SshTarget& target);
    ~SshContact();

    ssh_session Session() const { return session_.get(); }
    const LineOptions& Options() const { return options_; }
    SshMailbox& Mail() { return mail_; }
    // What the user's configuration puts between: a command whose standard input and output lead to the host (what
    // ProxyJump says comes as one too); empty: nothing.
    QString ProxyCommand() const;
    const QString& Host() const { return host_; } // as the configuration says: where the connection goes
    int Port() const { return port_; }
    const QString& Given() const { return given_; } // before the configuration has had its say
    QString User() const;
    QString Address() const; // "user@host" for titles, with a port that is not the usual one

    // Key exchange over a connected socket, owned from now on.
    void Connect(int socket);

    // Repeats a call of the library until it says something else than again.
    template <typename Step>
    int Until(Step step)
    {
        static_assert(int(SSH_AUTH_ERROR) == SSH_ERROR);
        for (;;) {
            const int result = step();
            if (result != SSH_AGAIN && result != SSH_AUTH_AGAIN)
                return result;
            if (IsLost())
                return SSH_ERROR; // some calls go on asking for patience; SSH_AUTH_ERROR is the same number
            WaitForHost();
        }
    }
    void WaitForHost();
    // Waits for the user. Never returns a refusal: that ends the conversation.
    LineAnswer Ask(LineQuestion question);
    [[noreturn]] void Fail(quint16 number, const QString& text) const;
    QString Reason() const; // the library's words for what failed last
    bool IsLost() const;    // the host has gone
    // What the host asks for on its own is denied at once; the library would keep it, however much comes.
    void DenyRequests();
    // Counts what the host has said. Any call of the library may take in more of it than it was asked for; only who
    // sees the same count before and after all his work may sleep.
    quint64 Heard() const { return counter_.in_packets; }
    quint64 Said() const { return counter_.out_packets; }
    [[noreturn]] void FailAsLost() const;

private:
    void SetText(ssh_options_e option, const QString& text);
    [[noreturn]] void FailToAgree();
    void CheckGreeting() const;

    SshMailbox& mail_;
    LineOptions options_;
    ssh_counter_struct counter_{}; // the library's to write, both
    ssh_counter_struct traffic_{}; // in bytes, from the first one on
    SshSessionHandle session_;
    QString given_;
    QString host_;
    int port_ = 22;
    int socket_ = -1;    // ours
    int duplicate_ = -1; // the library's
    quint32 lastQuestion_ = 0;
};

// As the type of a key stands in front of it: "ssh-ed25519", "ecdsa-sha2-nistp256".
const char* KeyTypeName(ssh_key key);

// What a host says, fit for people: its control characters become blanks, line ends stay, and it has an end.
QString HostWords(const char* text);

} // namespace kestrune::comm
