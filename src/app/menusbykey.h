#pragma once

class QMainWindow;

namespace kestrune {

// In a session Alt belongs to the host; Ctrl+Shift+M opens the first menu of the window wherever the keyboard is.
void OpenMenusByKey(QMainWindow& window);

} // namespace kestrune
