#pragma once

// The session's own keys in a session file. The other keys of the section are the emulator's.

#include <QString>

namespace kestrune {

class KeyFile;
class SessionSettings;

// Both go through the members of SessionSettings in the order of the keys. programDir: pictures and mouse tables
// below it are stored relative to it.
void ReadSessionKeys(const KeyFile& file, SessionSettings& settings);
void WriteSessionKeys(KeyFile& file, const SessionSettings& settings, const QString& programDir);

} // namespace kestrune
