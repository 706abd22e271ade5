#pragma once

// The seven settings that a session keeps itself, in a session file and in a property bag. The other keys of the
// file's section are the emulator's. All functions go through the members of SessionSettings, in one order.

#include <QString>

namespace kestrune {

class FileSpec;
class KeyFile;
class PropertyBag;
class SessionSettings;

void ReadSessionKeys(const KeyFile& file, SessionSettings& settings);
// programDir: a picture or mouse table below it is stored relative to it.
void WriteSessionKeys(KeyFile& file, const SessionSettings& settings, const FileSpec& spec, const QString& programDir);

void ReadSessionBag(const PropertyBag& bag, SessionSettings& settings);
void WriteSessionBag(PropertyBag& bag, const SessionSettings& settings);

} // namespace kestrune
