#pragma once

// The live sessions, and the only way in which sessions are made. It owns them; windows and commands find theirs
// by Id, because any question to the user or any turn of the message loop may end one.

#include <QString>

#include <memory>
#include <vector>

namespace kestrune {

class ApplicationPort;
class clsSession;

// The Hidden argument of Add and AddClone: a bit set with one special value.
namespace AddHidden {
inline constexpr int NotShown = 1, NotOnLine = 2, NoTitles = 0x4000;
inline constexpr int OnlyNotShown = -1; // on-line, titles refreshed, not shown
} // namespace AddHidden

class clsSessions
{
public:
    explicit clsSessions(ApplicationPort& application);
    ~clsSessions();
    clsSessions(const clsSessions&) = delete;
    clsSessions& operator=(const clsSessions&) = delete;

    // fileName: a session file, empty for a new session. state: 0 to 2, negative for the application's choice.
    // mode: the emulator's InputMode. The message loop runs once when the session is shown, so the session may
    // have ended again when this returns (Terminated).
    std::shared_ptr<clsSession> Add(const QString& fileName = {}, int state = -1, int mode = 0, int hidden = 0);
    // A session with the same settings that claims the same file. Null gives null.
    std::shared_ptr<clsSession> AddClone(clsSession* session, int state = -1, int mode = 0, int hidden = 0);

    int Count() const { return static_cast<int>(sessions_.size()); }
    std::shared_ptr<clsSession> Item(int position) const;       // from 0; Failure InvalidCall when there is none
    std::shared_ptr<clsSession> Item(const QString& key) const; // an Id; Failure InvalidCall when there is none
    std::shared_ptr<clsSession> Find(const QString& key) const; // null: none
    std::vector<std::shared_ptr<clsSession>> All() const { return sessions_; } // a copy: sessions may end meanwhile

    void Remove(int position);
    void Remove(const QString& key);

    // The order in which lists and tabs show them. before: an Id; unknown or empty: to the end. Unknown key: nothing.
    void MoveBefore(const QString& key, const QString& before);

    void clsAdd(const std::shared_ptr<clsSession>& session); // the session's creation calls it
    void RefreshTitles();                                    // when they show numbers that depend on the others

    // A walk through the sessions with Ctrl held down: their order of use stands still until Ctrl goes up.
    bool Walking() const { return walking_; }
    void SetWalking(bool on) { walking_ = on; }

private:
    void Reveal(clsSession& session, int hidden);
    void RemoveSession(const std::shared_ptr<clsSession>& session);

    ApplicationPort& application_;
    std::vector<std::shared_ptr<clsSession>> sessions_;
    bool walking_ = false;
};

} // namespace kestrune
