#pragma once

// The area in the main window that holds the session windows. Keys with Ctrl are the session's: the toolkit's own
// walk through the windows, which takes Ctrl+Tab from every widget, is off.

#include <QEvent>
#include <QMdiArea>

namespace kestrune {

class SessionArea : public QMdiArea
{
public:
    using QMdiArea::QMdiArea;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
        return !key && QMdiArea::eventFilter(watched, event);
    }
};

} // namespace kestrune
