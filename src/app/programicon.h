#pragma once

// The program's own picture: drawn, so that it needs no file and is sharp in every size.

#include <QIcon>
#include <QPixmap>

namespace kestrune {

QIcon ProgramIcon();                            // for windows
QPixmap ProgramPicture(int side, double ratio); // side: in pixels of the toolkit; ratio: device pixels in one

} // namespace kestrune
