#include "pastequeue.h"

#include <algorithm>
#include <string_view>

namespace kestrune {

namespace {
// Enough to keep any line busy between two turns of the event loop, little enough to stop at once.
constexpr qsizetype kPasteAhead = 0x4000;
constexpr std::string_view kPasteEnd = "\x1b[201~";
} // namespace

void PasteQueue::Start(const PasteForm& form, bool bracketed)
{
    bytes_.erase(0, sent_);
    bytes_ += form.bytes;
    sent_ = 0;
    bracketed_ = bracketed;
    lineEnd_ = form.lineEnd;
    pause_ = form.pause;
}

// One line, if there is a pause behind each.
size_t PasteQueue::NextPiece(size_t room) const
{
    size_t count = bytes_.size() - sent_;
    if (Paces())
        if (const size_t end = bytes_.find(lineEnd_, sent_); end != std::string::npos)
            count = end + lineEnd_.size() - sent_;
    return std::min(room, count);
}

size_t PasteQueue::Pump(Line& line)
{
    const qsizetype room = kPasteAhead - line.Unsent();
    if (room <= 0 || !IsRunning() || pausing_)
        return 0;
    const size_t count = NextPiece(size_t(room));
    const std::string piece = bytes_.substr(sent_, count);
    sent_ += count;
    if (!IsRunning()) {
        bytes_ = {};
        sent_ = 0;
    } else if (Paces() && piece.ends_with(lineEnd_)) {
        pausing_ = clock_.After(pause_, [this] {
            pausing_.reset();
            ready_();
        });
    }
    line.Send(piece);
    return count;
}

size_t PasteQueue::Abort(Line* line)
{
    const bool openBracket = IsRunning() && sent_ > 0 && bracketed_;
    bytes_ = {};
    sent_ = 0;
    pausing_.reset();
    if (!openBracket || !line)
        return 0;
    line->Send(kPasteEnd);
    return kPasteEnd.size();
}

} // namespace kestrune
