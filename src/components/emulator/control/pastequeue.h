#pragma once

// A long text on its way to the host, at the pace of the line, so that it can be stopped.

#include <ports/line.h>

#include <string>
#include <string_view>

namespace kestrune {

class PasteQueue
{
public:
    // bytes with the marks of a bracketed paste, if the host asked for them. A second paste follows the first.
    void Start(std::string_view bytes, bool bracketed);
    // What the line has room for; returns how many bytes went out. Call again when the line has drained.
    size_t Pump(Line& line);
    size_t Abort(Line* line); // the rest is dropped; a host that waits for the end mark gets it
    bool IsRunning() const { return sent_ < bytes_.size(); }

private:
    std::string bytes_;
    size_t sent_ = 0;
    bool bracketed_ = false;
};

} // namespace kestrune
