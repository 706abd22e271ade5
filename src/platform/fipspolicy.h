#pragma once

namespace kestrune {

// True: the system's administrator has put the whole machine under the FIPS 140 rules for cryptography.
bool SystemWantsFips();

} // namespace kestrune
