#include "keptsecrets.h"

#include <algorithm>
#include <utility>

namespace kestrune {

void KeptSecrets::Look(const LineQuestion& question, Then then)
{
    looking_.reset();
    place_ = question.fields.size() == 1 && question.fields[0].mayBeRemembered ? question.place : QString();
    label_ = question.title;
    if (!keeper_ || place_.isEmpty()) {
        then(std::nullopt, false);
        return;
    }
    if (question.again)
        Drop(place_);
    looking_ = std::make_shared<int>();
    keeper_->Find(place_, [this, again = question.again, then = std::move(then),
                           alive = std::weak_ptr(looking_)](SecretKeeper::Found found) {
        if (alive.expired())
            return; // and perhaps so has this
        if (again)
            found.secret.reset(); // it has been tried
        else if (found.secret)
            used_.push_back(place_);
        then(std::move(found.secret), found.canKeep);
    });
}

// What has not been accepted: one that was kept would be tried first each time, and hosts count.
void KeptSecrets::Drop(const QString& place)
{
    std::erase_if(pending_, [&](const Pending& row) { return row.place == place; });
    if (std::erase(used_, place) > 0)
        keeper_->Forget(place);
}

void KeptSecrets::Typed(const std::vector<Secret>& values, bool keep)
{
    if (keeper_ && keep && !place_.isEmpty() && values.size() == 1)
        pending_.push_back({place_, label_, values[0].Copy()});
}

void KeptSecrets::LetIn()
{
    for (Pending& row : std::exchange(pending_, {}))
        keeper_->Keep(row.place, row.label, std::move(row.secret));
    used_.clear();
}

void KeptSecrets::Withdraw()
{
    looking_.reset();
    pending_.clear();
    used_.clear();
}

} // namespace kestrune
