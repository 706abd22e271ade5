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
    LaterMember{"Dial", QT_TRANSLATE_NOOP("Later", "dialer")},
    LaterMember{"Upload", QT_TRANSLATE_NOOP("Later", "file transfer")},
    LaterMember{"GetBlock", QT_TRANSLATE_NOOP("Later", "saving of screen blocks")},
    LaterMember{"LoadImage", QT_TRANSLATE_NOOP("Later", "display of images")},
    LaterMember{"PlayWave", QT_TRANSLATE_NOOP("Later", "playing of sounds")},
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

void ctlEmulator::Dial(const QString&, int) { RaiseNotBuilt(FeatureOf("Dial")); }
int ctlEmulator::Upload(const QString&, int, int, int, int) { RaiseNotBuilt(FeatureOf("Upload")); }
int ctlEmulator::Download(const QString&, int, int, int, int) { RaiseNotBuilt(FeatureOf("Upload")); }
Variant ctlEmulator::GetBlock(int, int, int, int, int) { RaiseNotBuilt(FeatureOf("GetBlock")); }
void ctlEmulator::SetBlock(const Variant&, int) { RaiseNotBuilt(FeatureOf("GetBlock")); }
void ctlEmulator::LoadImage(const QString&, int, int, int, int, bool, int) { RaiseNotBuilt(FeatureOf("LoadImage")); }
void ctlEmulator::UnloadImage(const QString&) { RaiseNotBuilt(FeatureOf("LoadImage")); }
void ctlEmulator::PlayMIDI(const QString&) { RaiseNotBuilt(FeatureOf("PlayWave")); }
void ctlEmulator::PlayWave(const QString&) { RaiseNotBuilt(FeatureOf("PlayWave")); }

} // namespace kestrune
