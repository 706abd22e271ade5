#pragma once

// A tab's picture with the mark of its session's state in the corner.

#include <menubar/sessionbar.h>

namespace kestrune {

QIcon MarkedPicture(const QIcon& picture, SessionBar::Mark mark);

// For tooltips and assistive tools; empty for none.
QString MarkText(SessionBar::Mark mark);

} // namespace kestrune
