#pragma once

// The few settings that a session keeps itself, beside those of its emulator. Settings dialogs, the session file
// and clones reach them through this interface, and only through it, so that each assignment has its side effects.

#include <QString>

namespace kestrune {

class PropertyBag;

class SessionSettings
{
public:
    virtual ~SessionSettings() = default;
    virtual void Apply() = 0; // does nothing: assignments take effect at once

    virtual bool AutoClose() const = 0;
    virtual void SetAutoClose(bool on) = 0;
    virtual QString Caption() const = 0;
    virtual void SetCaption(const QString& text) = 0;
    virtual QString Icon() const = 0;
    virtual void SetIcon(const QString& path) = 0;
    virtual bool ShowErrs() const = 0;
    virtual void SetShowErrs(bool on) = 0;
    virtual int CopyPasteShortcut() const = 0; // 0 none, 1 Ctrl+Ins and Shift+Ins, 2 Ctrl+C and Ctrl+V
    virtual void SetCopyPasteShortcut(int mode) = 0;
    virtual QString MouseTable() const = 0; // file of mouse patterns
    virtual void SetMouseTable(const QString& path) = 0;
    virtual int CapsLock() const = 0; // 0 or 1
    virtual void SetCapsLock(int on) = 0;

    // Not served, on purpose: get and let raise Failure NotImplemented, and callers expect it.
    virtual QString MousePatterns() const = 0;
    virtual void SetMousePatterns(const QString& text) = 0;
    virtual QString Script() const = 0;
    virtual void SetScript(const QString& text) = 0;

    // Copy all seven settings from and to a bag.
    virtual void ReadProperties(const PropertyBag& bag) = 0;
    virtual void WriteProperties(PropertyBag& bag) const = 0;
};

} // namespace kestrune
