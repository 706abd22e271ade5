#pragma once

#include <ports/questions.h>

namespace kestrune {

// The waiting pointer for the length of a scope.
class Hourglass
{
public:
    explicit Hourglass(Questions& ask) : ask_(ask) { ask_.Hourglass(true); }
    ~Hourglass() { ask_.Hourglass(false); }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;

private:
    Questions& ask_;
};

} // namespace kestrune
