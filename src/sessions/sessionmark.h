#pragma once

// What a session's tab tells about it: whether its line stands, was lost, and whether something came that nobody has
// looked at.

#include <QObject>

namespace kestrune {

class ctlEmulator;

class SessionMark : public QObject
{
    Q_OBJECT

public:
    enum class State // what matters most to one who looks at another session
    {
        Offline, // not connected, and nobody expected otherwise
        Connected,
        Lost,
        Activity,
        Bell
    };

    explicit SessionMark(ctlEmulator& emulator); // outlives it
    State Now() const;
    void SetWatched(bool on); // the session is the one before the user's eyes; what came before is seen

signals:
    void Changed();

private:
    void Tell();

    ctlEmulator& emulator_;
    State told_ = State::Offline;
    int seenBytes_ = 0;
    bool lost_ = false, activity_ = false, bell_ = false, watched_ = false;
};

} // namespace kestrune
