#include "propertybag.h"

namespace kestrune {

Variant PropertyBag::ReadProperty(const QString& name, const Variant& fallback) const
{
    return values_.value(name.toLower(), fallback);
}

void PropertyBag::WriteProperty(const QString& name, const Variant& value, const Variant& fallback)
{
    if (!fallback.IsEmpty() && value == fallback)
        values_.remove(name.toLower());
    else
        values_.insert(name.toLower(), value);
}

bool PropertyBag::Contains(const QString& name) const { return values_.contains(name.toLower()); }

} // namespace kestrune
