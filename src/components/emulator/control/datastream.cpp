#include "datastream.h"

#include <algorithm>
#include <utility>

namespace kestrune {

void DataStream::SetMode(int mode)
{
    mode_ = mode;
    if (!Listens())
        kept_.clear();
}

bool DataStream::Arrived(const QString& text)
{
    QStringView fresh = text;
    if (!fresh.isEmpty() && std::exchange(lineFeedMayCome_, false) && fresh.front() == u'\n')
        fresh = fresh.sliced(1);
    if (fresh.isEmpty() || !Listens())
        return false;
    kept_ += fresh;
    Try();
    if (const qsizetype over = kept_.size() - MaxKept; over > 0) {
        kept_.remove(0, over);
        searched_ = std::max<qsizetype>(0, searched_ - over);
    }
    return mode_ != 0 && !kept_.isEmpty();
}

void DataStream::Read(Reading reading, qsizetype length, int timeout, Done done)
{
    Wait wait;
    if (reading == Reading::Line)
        wait.whole = [this, length] { return TakeLine(length); };
    else
        wait.whole = [this, length] { return kept_.size() >= length ? std::optional(Take(length)) : std::nullopt; };
    wait.timeUp = [this, length] { return Take(length); };
    wait.done = std::move(done);
    Begin(timeout, std::move(wait));
}

void DataStream::WaitFor(Qt::CaseSensitivity compare, const QStringList& targets, int timeout, Done done)
{
    searched_ = 0;
    Wait wait;
    wait.whole = [this, compare, targets] { return TakeTarget(compare, targets); };
    wait.timeUp = [] { return Outcome{}; };
    wait.done = std::move(done);
    Begin(timeout, std::move(wait));
}

void DataStream::Begin(int timeout, Wait wait)
{
    wait_ = std::move(wait);
    Try();
    if (wait_ && timeout == 0)
        Cancel();
    else if (wait_ && timeout > 0)
        wait_->timer = clock_.After(std::chrono::seconds(timeout), [this] { Cancel(); });
}

void DataStream::Cancel()
{
    if (wait_)
        Finish(wait_->timeUp());
}

void DataStream::Try()
{
    if (!wait_)
        return;
    if (const auto outcome = wait_->whole())
        Finish(*outcome);
}

void DataStream::Finish(const Outcome& outcome)
{
    const Wait ended = *std::exchange(wait_, std::nullopt);
    if (!Listens())
        kept_.clear();
    ended.done(outcome);
}

DataStream::Outcome DataStream::Take(qsizetype length)
{
    Outcome outcome{kept_.left(length), 0};
    kept_.remove(0, length);
    return outcome;
}

std::optional<DataStream::Outcome> DataStream::TakeLine(qsizetype length)
{
    const auto isEnd = [](QChar c) { return c == u'\r' || c == u'\n'; };
    const qsizetype end = std::find_if(kept_.cbegin(), kept_.cend(), isEnd) - kept_.cbegin();
    if (end >= length) // also when no end has come: a line that is longer comes in pieces
        return kept_.size() >= length ? std::optional(Take(length)) : std::nullopt;
    if (end == kept_.size())
        return std::nullopt;
    Outcome outcome = Take(end);
    const bool carriageReturn = kept_.front() == u'\r';
    kept_.remove(0, 1);
    lineFeedMayCome_ = carriageReturn && kept_.isEmpty();
    if (carriageReturn && kept_.startsWith(u'\n'))
        kept_.remove(0, 1);
    return outcome;
}

// The text that is whole first wins; of two that end together, the one that was named first.
std::optional<DataStream::Outcome> DataStream::TakeTarget(Qt::CaseSensitivity compare, const QStringList& targets)
{
    Outcome found;
    qsizetype firstEnd = kept_.size() + 1;
    for (qsizetype i = 0; i < targets.size(); ++i) {
        const QString& target = targets[i];
        const qsizetype from = std::max<qsizetype>(0, searched_ - target.size() + 1);
        const qsizetype at = target.isEmpty() ? -1 : kept_.indexOf(target, from, compare);
        if (at >= 0 && at + target.size() < firstEnd) {
            firstEnd = at + target.size();
            found.target = int(i) + 1;
        }
    }
    searched_ = kept_.size();
    if (found.target == 0)
        return std::nullopt;
    kept_.remove(0, firstEnd);
    return found;
}

} // namespace kestrune
