#pragma once

// What an emulator control reports, turned into status texts, session calls and recorder notices.

#include <ports/menutools.h>

#include <QObject>

#include <map>
#include <utility>

namespace kestrune {

class ApplicationPort;
class ctlEmulator;
class SessionWindow;

class EmulatorEvents : public QObject
{
    Q_OBJECT
public:
    // Listens to the window's emulator from now on. Both outlive it.
    EmulatorEvents(ApplicationPort& application, SessionWindow& window);
    void Stop();      // nothing is handled any more
    void TellAgain(); // puts every status into the window's tools again, which have been loaded anew

private:
    void ConnectStatus(ctlEmulator& emulator);
    void ConnectSession(ctlEmulator& emulator);
    void ConnectRecorder(ctlEmulator& emulator);
    void ConnectUser(ctlEmulator& emulator);
    void Tell(int tool, ToolProperty property, const QVariant& value);
    void SetCaption(int tool, const QString& text) { Tell(tool, ToolProperty::Caption, text); }
    void StatusChanged(qint16 status, QString& text);
    QString TermTypeName(int type) const;

    ApplicationPort& application_;
    SessionWindow& window_;
    std::map<std::pair<int, ToolProperty>, QVariant> told_; // events say a status only when it changes
};

} // namespace kestrune
