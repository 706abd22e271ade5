#pragma once

// The seven settings that a session keeps itself, in a session file and in a property bag. The other keys of the
// file's section are the emulator's. All functions go through the members of SessionSettings, in one order.

#include <dispatch/failure.h>

#include <QString>

#include <optional>

namespace kestrune {

class FileSpec;
class KeyFile;
class PropertyBag;
class SessionSettings;

// Every setting is assigned, also behind one whose side effect fails (a mouse table that is not there): the first
// such failure is the result.
std::optional<Failure> ReadSessionKeys(const KeyFile& file, SessionSettings& settings);
// programDir: a picture or mouse table below it is stored relative to it.
void WriteSessionKeys(KeyFile& file, const SessionSettings& settings, const FileSpec& spec, const QString& programDir);

std::optional<Failure> ReadSessionBag(const PropertyBag& bag, SessionSettings& settings);
void WriteSessionBag(PropertyBag& bag, const SessionSettings& settings);

} // namespace kestrune
