#pragma once

// The script engine as the shell needs it. Until the engine stands, the version behind this port tells the
// user so in one line for each request and reports that nothing runs.

#include <dispatch/failure.h>

#include <QString>

namespace kestrune {

class ScriptEnginePort
{
public:
    virtual ~ScriptEnginePort() = default;
    virtual bool IsRunning() const = 0;
    // Raises Failure when the script cannot be read, compiled or ends in an error.
    virtual void RunFile(const QString& path, const QString& entry, const QString& title) = 0;
    virtual void RunModule(const QString& text, const QString& procedure, const QString& module) = 0;
    virtual void RunText(const QString& text, int sessionNumber, bool asynchronous) = 0;
    virtual QString ModuleText(const QString& module) const = 0; // text of a module that was run; empty: none
    virtual void End() = 0;
};

} // namespace kestrune
