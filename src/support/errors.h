#pragma once

// The central error handler. A procedure that can meet an unexpected failure catches it, names itself and its
// module, and asks ErrHndlr what to do. Failures that are to be ignored are swallowed under a visible
// SilentErrors scope; while one is open the handler stays quiet.

#include <dispatch/failure.h>

#include <QString>

#include <utility>

namespace kestrune {

class Questions;

// While one of these lives, ErrHndlr reports nothing and answers "go on". Scopes nest; the depth is process-wide
// and belongs to the user-interface thread.
class SilentErrors
{
public:
    SilentErrors() { ++depth_; }
    ~SilentErrors() { --depth_; }
    SilentErrors(const SilentErrors&) = delete;
    SilentErrors& operator=(const SilentErrors&) = delete;
    static int Depth() { return depth_; }

private:
    static inline int depth_ = 0;
};

// Runs one statement whose failure is ignored; false when it failed.
template <typename F>
bool Silently(F&& statement)
{
    const SilentErrors silent;
    try {
        std::forward<F>(statement)();
        return true;
    } catch (const std::exception&) { // the scope above says why nothing is done
        return false;
    }
}

enum class ErrorAction
{
    End,   // the user wants the program to stop
    Retry, // run the statement again
    Next,  // go on behind it
};

struct ErrorPlace
{
    QString procedure;
    QString module; // source name, such as "Ormain"
    int line = 0;
};

// The five labelled lines of a report, ends with a line end. action: "Fail", "Retry", "Ignore", "unrecoverable".
QString ErrorReport(const ErrorPlace& place, const Failure& failure, const QString& action);

// To be called from inside a catch block. With a user: shows the report and gives the choice. With no user: the
// report goes to the log and the failure is raised again, so that an automation client sees it.
ErrorAction ErrHndlr(Questions& ask, const QString& procedure, const QString& module, int line = __builtin_LINE());

// A statement under the central handler: again for as long as the user says so. False when it did not get done.
template <typename F>
bool Guarded(Questions& ask, const QString& procedure, const QString& module, F&& statement,
             int line = __builtin_LINE())
{
    for (;;) {
        try {
            statement();
            return true;
        } catch (const std::exception&) {
            if (ErrHndlr(ask, procedure, module, line) != ErrorAction::Retry)
                return false;
        }
    }
}

// The operating system's words for an error number of its own; never empty.
QString GetSystemMessageText(int number);

} // namespace kestrune
