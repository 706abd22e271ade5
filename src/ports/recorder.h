#pragma once

// What the macro recorder is told. Every hook does nothing unless recording is on.

#include <QString>

namespace kestrune {

class clsSession;

struct WindowPlace // pixels; state 0 normal, 1 minimised, 2 maximised
{
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    int state = 0;
    bool operator==(const WindowPlace&) const = default;
};

// What an upload or download dialog asks for; it is carried out from the message loop, after the dialog has gone.
struct TransferRequest
{
    bool upload = false;
    QString fileName;
    qint16 protocol = 0; // 0 ASCII, 1 Kermit, 2 XModem, 3 YModem, 4 ZModem
    qint16 mode = 0;     // 0 text
    qint16 overwrite = 0;
    qint16 textEncoding = 0; // used when mode is 0
};

// A command that was carried out, as macros repeat it.
struct CommandRecord
{
    int id = 0;
    clsSession* session = nullptr; // the one that it acted on or made; null: none
    QString text;                  // a file, a number to dial
    int value = 0;                 // a state that was switched to
};

class RecorderPort
{
public:
    virtual ~RecorderPort() = default;
    virtual bool IsRecording() const { return false; }
    // state: the new state, or -1 when it did not change
    virtual void MainWindowMoved(const WindowPlace&, int /*state*/) {}
    virtual void SessionWindowMoved(clsSession&, const WindowPlace&, int /*state*/) {}
    virtual void SessionActivated(clsSession&) {}
    virtual void SelectionChanged(clsSession&, int /*left*/, int /*top*/, int /*right*/, int /*bottom*/) {}
    virtual void RecordText(clsSession&, const QString&) {}
    virtual void RecordKey(clsSession&, const QString&, int /*code*/) {}
    virtual void TransferStarted(clsSession&, const TransferRequest&) {}
    virtual void CommandRan(const CommandRecord&) {}
    virtual void ApplicationActivated(bool) {}
    virtual void Close() {}
};

} // namespace kestrune
