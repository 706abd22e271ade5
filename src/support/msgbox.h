#pragma once

// The shell's message call: caption "Kestrune", failures ignored.

#include <ports/questions.h>

namespace kestrune {

inline constexpr int MsgBoxNoCheck = 0xFF7F; // masks the check box out of a result

// owner: a window handle, 0 for the main window. The result is a MsgResult, with MsgResult::Checked added when the
// box had a check box and it was ticked; 0 when the box could not be shown.
int MsgBox(Questions& ask, const QString& text, int flags = MsgFlag::Ok, quintptr owner = 0);

} // namespace kestrune
