#pragma once

namespace kestrune {

// Who asked. It decides what is recorded, whether a question may be asked, and what the log says.
enum class Cause
{
    User,
    Macro,
    Script,
    OtherProgram,
    CommandLine
};

} // namespace kestrune
