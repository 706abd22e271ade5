#pragma once

// How failures of the operating system reach the rest of the program: as a Failure with the shell's error
// number and a text that says what failed, on what, and the system's own reason.

#include <dispatch/failure.h>

namespace kestrune {

// The same system error means another number for a file and for a folder: "no such file" against "no such path".
enum class Subject
{
    File,
    Folder
};

// The platform's error numbers as the shell's table knows them (2 file not found, 3 path not found, 5 access
// denied, 112 disk full, ...); -1 for one that has no such number.
int PlatformError(int systemError, Subject subject);

// 2 to 53, 3 to 76, 4 to 67, 5 to 5, 6 to 52, 8 to 7, 15 to 68, 16 and 145 to 75, 17 to 74, 32 to 70,
// 80 and 183 to 58, 112 to 61; anything else is 5.
ErrorNumber ShellErrorNumber(int platformError);

// The system's own text for one of its error numbers (errno), with no full stop or line end behind it.
QString SystemErrorText(int systemError);

class SystemFailure : public Failure
{
public:
    // systemError: errno. action: a sentence in the user's words, "The file '...' cannot be written".
    SystemFailure(int systemError, Subject subject, const QString& action);

    int SystemError() const { return systemError_; }

private:
    int systemError_;
};

} // namespace kestrune
