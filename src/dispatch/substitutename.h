#pragma once

// Old names of members that late-bound clients still use. When a name lookup fails, the object is asked once for
// the name that the member has today.

#include <QString>

namespace kestrune {

class IGetSubstituteName
{
public:
    virtual ~IGetSubstituteName() = default;
    // True when name was replaced. Names compare without regard to case.
    virtual bool Callback(QString& name) const = 0;
};

} // namespace kestrune
