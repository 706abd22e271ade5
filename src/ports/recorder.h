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
    virtual void ApplicationActivated(bool) {}
    virtual void Close() {}
};

} // namespace kestrune
