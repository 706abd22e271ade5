#include "pastequeue.h"

#include <algorithm>

namespace kestrune {

namespace {
// Enough to keep any line busy between two turns of the event loop, little enough to stop at once.
constexpr qsizetype kPasteAhead = 0x4000;
constexpr std::string_view kPasteEnd = "\x1b[201~";
} // namespace

void PasteQueue::Start(std::string_view bytes, bool bracketed)
{
    bytes_.erase(0, sent_);
    bytes_ += bytes;
    sent_ = 0;
    bracketed_ = bracketed;
}

size_t PasteQueue::Pump(Line& line)
{
    const qsizetype room = kPasteAhead - line.Unsent();
    if (room <= 0 || !IsRunning())
        return 0;
    const size_t count = std::min(size_t(room), bytes_.size() - sent_);
    const std::string piece = bytes_.substr(sent_, count);
    sent_ += count;
    if (!IsRunning()) {
        bytes_ = {};
        sent_ = 0;
    }
    line.Send(piece);
    return count;
}

size_t PasteQueue::Abort(Line* line)
{
    const bool openBracket = IsRunning() && sent_ > 0 && bracketed_;
    bytes_ = {};
    sent_ = 0;
    if (!openBracket || !line)
        return 0;
    line->Send(kPasteEnd);
    return kPasteEnd.size();
}

} // namespace kestrune
