#pragma once

// What the user is told when a session file or a layout cannot be written. Used when a session closes, and by the
// save commands.

#include <dispatch/failure.h>
#include <ports/questions.h>

#include <QString>

namespace kestrune {

class FileSpec;

enum class SavedThing
{
    Session,
    Layout
};

// The Save As dialog of either.
FileDialogRequest SaveAsDialog(SavedThing thing, const QString& folder, const QString& name);

// A save reports a folder that is gone as 53 and a file that may not be written as 75; the rest as it came.
Failure SaveFailure(const Failure& failure);

// The message for 53 and 75, which leads to the Save As dialog; empty for every other number.
QString SaveFailureWords(const Failure& failure, SavedThing thing, const FileSpec& spec, const QString& path);

} // namespace kestrune
