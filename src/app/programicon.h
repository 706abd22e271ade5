#pragma once

#include <QIcon>

namespace kestrune {

QIcon ProgramIcon(); // drawn at every size the desktop asks for

} // namespace kestrune
