#pragma once

#include "sshforwards.h"

#include <optional>

namespace kestrune::comm {

// A shell on a pseudo-terminal of the host, from its opening to its end.
class SshShell
{
public:
    explicit SshShell(SshContact& contact);
    ~SshShell();
    SshShell(const SshShell&) = delete;
    SshShell& operator=(const SshShell&) = delete;

    void Open();
    SshEnding Run(); // until the shell has ended; a lost connection is thrown

private:
    ssh_session Session() const { return contact_.Session(); }
    void SetEnvironment();
    void Obey();
    void KeepAlive();
    void Send();
    bool IsOver() const;
    bool Receive(bool fromErrors); // false: nothing was there, or there is no room
    [[noreturn]] void Refuse(const QString& what);

    SshContact& contact_;
    SshEventHandle event_;
    SshChannelHandle channel_;
    std::optional<SshForwards> forwards_;
    ssh_channel_callbacks_struct callbacks_{};
    QByteArray sending_;
    qsizetype sent_ = 0;      // of sending_
    quint64 heardBefore_ = 0; // at the last sign of life
    int silences_ = 0;        // signs of life in a row that the host has said nothing after
    bool closed_ = false;     // by the host; the library calls a channel closed as well when its connection is lost
    std::optional<int> exitCode_;
    int signalNumber_ = 0;
};

} // namespace kestrune::comm
