#pragma once

// The settings room put together: what stands on what, in the order in which it must be made.

#include <settings/filespec.h>
#include <settings/folders.h>
#include <settings/isolation.h>
#include <settings/keyfiles.h>
#include <settings/profile.h>
#include <settings/regfuncs.h>
#include <settings/store.h>

namespace kestrune {

struct SettingsLayer
{
    SettingsLayer(const PathStyle& style, FileSystem& files, const System& system, Hive& currentUser,
                  Hive& localMachine)
        : spec(style, files), profile(files), keyFiles(profile), registry(currentUser, localMachine, system),
          isolation(spec, profile, system, FindProgramDir(spec, system)), store(isolation, registry, profile),
          folders(SetUpFolders(spec, system, store, registry))
    {}

    FileSpec spec;
    Profile profile;
    ProfileKeyFiles keyFiles;
    RegFuncs registry;
    Isolation isolation;
    Store store;
    Folders folders;
};

} // namespace kestrune
