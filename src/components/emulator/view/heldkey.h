#pragma once

#include <QKeyEvent>

namespace kestrune {

// A key that is held down. Under X11 its repeats are releases and presses at one instant, which the toolkit does not
// always know for what they are.
class HeldKey
{
public:
    void Released(const QKeyEvent& event)
    {
        key_ = event.key();
        releasedAt_ = event.timestamp();
    }
    bool IsRepeat(const QKeyEvent& event) const
    {
        return event.isAutoRepeat() || (event.key() == key_ && event.timestamp() <= releasedAt_ + kSameInstant);
    }

private:
    static constexpr quint64 kSameInstant = 1; // milliseconds; no finger is as quick
    int key_ = 0;
    quint64 releasedAt_ = 0;
};

} // namespace kestrune
