#pragma once

// Ids of the menu tools and states of windows that sessions read and set.

namespace kestrune {

namespace Tool {
inline constexpr int CloseSession = 104, PrinterOn = 201, PrintScreen = 202, Copy = 303, Paste = 305, ScreenMode = 506,
                     AutoDial = 704;
inline constexpr int TermType = 1101, ConnectionStatus = 1102, DeviceStatus = 1103, ScreenSize = 1104,
                     PrinterStatus = 1105, CaptureStatus = 1106, CursorPlace = 1107, KeyboardLock = 1108;
} // namespace Tool

inline constexpr int WindowNormal = 0, WindowMinimised = 1, WindowMaximised = 2;

} // namespace kestrune
