#pragma once

// Makes a connected socket a secure one: TLS 1.2 or 1.3, never less, with the host's name told and its certificate
// checked, and a certificate of ours where the session has one. Questions stop it and its time limit, nothing else
// does. After it the socket is an ordinary one, and only the words of a late refusal are asked of this object:
// under TLS 1.3 a host refuses our certificate after it has let us in.

#include <ports/clock.h>
#include <ports/line.h>

#include <QObject>
#include <QSslSocket>

#include <chrono>
#include <functional>
#include <memory>

namespace kestrune::comm {

class TlsEvents
{
public:
    virtual ~TlsEvents() = default;
    virtual void TlsReady() = 0;
    virtual void TlsFailed(quint16 number, const QString& text) = 0; // the socket may not be used
    virtual void TlsAsks(const LineQuestion& question, std::function<void(LineAnswer)> then) = 0;
    virtual void TlsCancelled() = 0; // by the user, in an answer
};

class TlsHandshake : public QObject
{
    Q_OBJECT

public:
    struct Peer
    {
        QString host;
        quint16 port = 0;
        std::chrono::seconds limit{30};
    };

    TlsHandshake(QSslSocket& socket, Peer peer, LineOptions::Tls options, TlsEvents& events, Clock& clock);

    void Start();
    void Stop(); // nothing is told after it
    // What the host said when it refused us; empty: it has not.
    const QString& Refusal() const { return refusal_; }

private:
    void Identify(const Secret& passphrase);
    void AskPassphrase(const QString& path);
    void Shake();
    void Doubted(const QList<QSslError>& errors);
    void AskTrust(const QString& account, bool changed, const QList<QSslError>& errors);
    void Trust(const QList<QSslError>& errors);
    bool Remember();
    void Broken(QAbstractSocket::SocketError error);
    void Alerted(QSsl::AlertType type, const QString& description);
    void StartLimit();
    void Fail(quint16 number, const QString& reason);

    QSslSocket& socket_;
    Peer peer_;
    LineOptions::Tls options_;
    TlsEvents& events_;
    Clock& clock_;
    std::unique_ptr<Clock::Timer> limit_;
    QString refusal_;
    int passphrases_ = 0; // asked for
    bool stopped_ = false;
};

} // namespace kestrune::comm
