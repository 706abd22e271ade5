#pragma once

// Named values on their way between two holders of settings: a session and its clone, a settings dialog's
// before and after. Names compare without regard to case.

#include <dispatch/variant.h>

#include <QHash>

namespace kestrune {

class PropertyBag
{
public:
    // A name that was never written gives the default.
    Variant ReadProperty(const QString& name, const Variant& fallback = {}) const;
    // A value equal to its default is not kept.
    void WriteProperty(const QString& name, const Variant& value, const Variant& fallback = {});
    bool Contains(const QString& name) const;

private:
    QHash<QString, Variant> values_; // key: name in lower case
};

} // namespace kestrune
