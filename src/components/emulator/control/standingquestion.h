#pragma once

// The question that a line waits for, from the moment it asks until it is answered or the line ends. It is put as
// the control puts questions: about trust as an error word with a text, about secrets as an event.

#include <ports/line.h>

#include <optional>

namespace kestrune {

class StandingQuestion
{
public:
    void Stand(const LineQuestion& question) { question_ = question; }
    bool IsTrust() const { return question_ && question_->kind != LineQuestion::Kind::Secrets; }
    bool IsSecrets() const { return question_ && question_->kind == LineQuestion::Kind::Secrets; }

    // The error word of the host-key question; the same two for every device, since it is the same question.
    quint32 TrustWord() const;
    // With the two choices named " Yes " and " No ": a window with buttons of its own puts their names there.
    QString TrustText() const;

    // The answer that the line is given; nothing stands afterwards.
    LineAnswer Take(LineAnswer::Choice choice, std::vector<Secret> values = {});
    bool Withdraw() { return std::exchange(question_, std::nullopt).has_value(); } // true: one stood

private:
    std::optional<LineQuestion> question_;
};

} // namespace kestrune
