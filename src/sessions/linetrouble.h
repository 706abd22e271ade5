#pragma once

// What a session window does when its line fails, ends or asks: which panel comes up, with which words, and what the
// panels' buttons do. Messages that no panel fits are boxes.

#include "keptsecrets.h"

#include <ports/linepanels.h>

#include <QObject>

#include <vector>

namespace kestrune {

class ApplicationPort;
class clsSession;
class SessionWindow;

class LineTrouble : public QObject
{
    Q_OBJECT
public:
    // Listens to the window's emulator from now on. Both outlive it.
    LineTrouble(ApplicationPort& application, SessionWindow& window);
    void Stop(); // nothing is handled any more

    void Pressed(LineButton button);
    void SecretsTyped(std::vector<Secret> values, bool remember);

private:
    void CommError(quint32& word, const QString& description, bool fatal);
    void ConfirmHostKey(QString text);
    void AskForSecrets(const LineQuestion& question);
    void Disconnected();
    void StatusChanged(qint16 status);
    void ShowReconnect(const QString& text);
    void Say(const QString& text, quint32 number);
    void AttractUser();
    bool IsActive() const;
    void HidePanel();
    void AnswerHostKey(int resetMode);

    ApplicationPort& application_;
    SessionWindow& window_;
    KeptSecrets kept_;
    quint32 lastError_ = 0; // the word of the last CommError, with its flags; 0: dealt with
};

} // namespace kestrune
