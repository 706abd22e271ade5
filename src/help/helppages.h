#pragma once

#include <span>

namespace kestrune {

struct HelpSource
{
    const char* name; // of its file in data/help, without the ending
    const char* text; // Markdown in UTF-8
};

std::span<const HelpSource> HelpSources(); // in the order of the contents

} // namespace kestrune
