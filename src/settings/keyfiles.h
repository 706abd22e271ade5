#pragma once

// The components' view of INI files (ports/keyfile.h) over the profile layer. A Change and a ProfileGroup of the
// same file and Profile nest in each other, in any order, and end in one replacement of the file.

#include <ports/keyfile.h>

namespace kestrune {

class Profile;

class ProfileKeyFiles : public KeyFiles
{
public:
    explicit ProfileKeyFiles(Profile& profile) : profile_(profile) {}
    void Read(const QString& path, const QString& section, const std::function<void(const KeyFile&)>& use) override;
    void Change(const QString& path, const QString& section, const std::function<void(KeyFile&)>& use) override;

private:
    Profile& profile_;
};

} // namespace kestrune
