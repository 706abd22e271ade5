// Members of ctlEmulator whose piece is not built yet. One table says which feature each belongs to; a call
// raises the failure that the shell shows to the user in one line.

#include "ctlemulator.h"

#include <dispatch/failure.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <string_view>

namespace kestrune {

namespace {

struct LaterMember
{
    std::string_view member;
    const char* feature;
};

constexpr std::array kLater{
    LaterMember{"Upload", QT_TRANSLATE_NOOP("Later", "file transfer")},
};

consteval const char* FeatureOf(std::string_view member)
{
    for (const LaterMember& row : kLater)
        if (row.member == member)
            return row.feature;
    throw "no such member";
}

[[noreturn]] void RaiseNotBuilt(const char* feature)
{
    throw Failure(ErrorNumber::NotImplemented,
                  QCoreApplication::translate("Later", "The %1 has not been implemented at this time.")
                      .arg(QCoreApplication::translate("Later", feature)),
                  QStringLiteral("ctlEmulator"));
}

} // namespace

int ctlEmulator::Upload(const QString&, int, int, int, int) { RaiseNotBuilt(FeatureOf("Upload")); }
int ctlEmulator::Download(const QString&, int, int, int, int) { RaiseNotBuilt(FeatureOf("Upload")); }

} // namespace kestrune
