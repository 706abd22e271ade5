#include <platform/fipspolicy.h>

#include <fstream>

namespace kestrune {

bool SystemWantsFips()
{
    std::ifstream file("/proc/sys/crypto/fips_enabled"); // a kernel without it knows no such rules
    int on = 0;
    return file >> on && on == 1;
}

} // namespace kestrune
