#pragma once

// Under which ids other programs bind to a class of late-bound objects. An id is given once and never changes.

#include <QUuid>

#include <array>

namespace kestrune {

struct InterfaceIdentity
{
    const char* name;
    QUuid id;
};

struct ClassIdentity
{
    const char* name;
    const char* progId;
    QUuid id;
    // Each has all members of the class; the first is the one that late binding uses.
    std::array<InterfaceIdentity, 2> interfaces;
};

} // namespace kestrune
