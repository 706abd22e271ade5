#include "extensionfilter.h"

#include <algorithm>
#include <utility>

namespace kestrune {

namespace {

// How much of the end of text is a start of mark.
size_t StartAtEnd(std::string_view text, std::string_view mark)
{
    size_t length = std::min(text.size(), mark.size() - 1);
    while (length > 0 && !mark.starts_with(text.substr(text.size() - length)))
        --length;
    return length;
}

} // namespace

void ExtensionFilter::Set(std::string leadIn, std::string terminator)
{
    leadIn_ = std::move(leadIn);
    terminator_ = terminator.empty() ? "\r" : std::move(terminator);
    Reset();
}

void ExtensionFilter::Reset()
{
    held_.clear();
    inCommand_ = false;
}

std::string ExtensionFilter::TakeHeld() { return inCommand_ ? std::string() : std::exchange(held_, {}); }

std::string ExtensionFilter::Feed(std::string_view bytes, std::vector<std::string>& commands)
{
    std::string data;
    size_t from = inCommand_ ? held_.size() - StartAtEnd(held_, terminator_) : 0;
    held_ += bytes;
    for (;;) {
        const std::string& mark = inCommand_ ? terminator_ : leadIn_;
        const size_t at = held_.find(mark, from);
        from = 0;
        if (at == std::string::npos)
            break;
        if (inCommand_ && at > MaxCommand)
            data += leadIn_ + held_.substr(0, at) + terminator_;
        else if (inCommand_)
            commands.push_back(held_.substr(0, at));
        else
            data.append(held_, 0, at);
        held_.erase(0, at + mark.size());
        inCommand_ = !inCommand_;
    }
    if (inCommand_ && held_.size() > MaxCommand) {
        data += leadIn_ + std::exchange(held_, {});
        inCommand_ = false;
    } else if (!inCommand_) {
        const size_t passed = held_.size() - StartAtEnd(held_, leadIn_);
        data.append(held_, 0, passed);
        held_.erase(0, passed);
    }
    return data;
}

} // namespace kestrune
