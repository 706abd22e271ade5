#pragma once

// The panels that a session window lays over its terminal while its line needs the user, so that nothing stops the
// other sessions. At most one is up; the terminal takes no input meanwhile.

#include <ports/line.h>

#include <QString>

namespace kestrune {

enum class LinePanel
{
    None,
    Reconnect, // pnlReconnect: the connection is gone
    Confirm,   // pnlConfirm: is this the right host?
    Secrets    // pnlSecrets: passwords and passphrases
};

enum class LineButton
{
    Reconnect,       // cmdOKRecon
    ReconnectResume, // cmdReconnectResume
    CloseSession,    // cmdCloseRecon
    CancelReconnect, // cmdCancelRecon
    Info,            // cmdInfoRecon
    ConfirmUpdate,   // cmdConfirmUpdate
    ConfirmContinue, // cmdConfirmContinue
    ConfirmCancel,   // cmdConfirmCancel
    CancelSecrets    // the other one, which hands them over, carries them: ChildLogic::SecretsTyped
};

class LinePanels
{
public:
    virtual ~LinePanels() = default;
    virtual LinePanel Shown() const = 0;
    // Each takes the place of whatever is up.
    virtual void ShowReconnect(const QString& text) = 0;
    virtual void ShowConfirm(const QString& text) = 0;
    // mayKeep: the user is offered to have what they type kept for the next time.
    virtual void ShowSecrets(const LineQuestion& question, bool mayKeep) = 0;
    // Which of the two buttons the reconnect panel has, now and when it is shown next.
    virtual void SetCanResume(bool on) = 0;
    virtual void Hide() = 0;
    virtual void TakeFocus() = 0;                   // to the button or field that the panel begins with
    virtual void ShowHelp(const QString& text) = 0; // beside the button that cancels the reconnect panel
};

} // namespace kestrune
