#pragma once

// Shows the user where the telephone stands, as dialing.ini in userFolder has it, and keeps what they change. False:
// there is nobody to show it to, or no folder to keep it in.

#include <ports/dialingform.h>

namespace kestrune::comm {

bool ShowDialingProperties(DialingForm& form, quintptr window, const QString& userFolder);

} // namespace kestrune::comm
