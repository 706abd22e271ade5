#include "standingquestion.h"

#include <QCoreApplication>

#include <utility>

namespace kestrune {

quint32 StandingQuestion::TrustWord() const
{
    const bool changed = question_ && question_->kind == LineQuestion::Kind::ChangedHost;
    return LineErrorWord(Device::Ssh, changed ? LineErrorNumber::HostChanged : LineErrorNumber::HostUnknown);
}

// The blanks round the two words go with them when a window replaces them, so there are two on either side.
QString StandingQuestion::TrustText() const
{
    const QString choices = QCoreApplication::translate(
        "StandingQuestion", "Press  Yes  to remember it for the next time,  No  to connect this once, or Cancel.");
    return question_ ? question_->text + QStringLiteral("\n\n") + choices : QString();
}

LineAnswer StandingQuestion::Take(LineAnswer::Choice choice, std::vector<Secret> values)
{
    const quint32 id = question_ ? question_->id : 0;
    question_.reset();
    return {.question = id, .choice = choice, .values = std::move(values)};
}

} // namespace kestrune
