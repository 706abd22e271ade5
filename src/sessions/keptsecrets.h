#pragma once

// The passwords of one session between its line, its user and the desktop's safe: what is kept there answers for the
// user, and what the user wants kept is kept once the host has let them in with it.

#include <ports/line.h>
#include <ports/secretkeeper.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestrune {

class KeptSecrets
{
public:
    explicit KeptSecrets(SecretKeeper* keeper) : keeper_(keeper) {} // null: nothing can be kept

    // Looks for the answer to a question. secret: here it is; else the user is to be asked, and mayKeep says whether
    // they can be offered to have it kept. Told at once where there is nothing to look for, and not at all when
    // another question has come or this one was withdrawn.
    using Then = std::function<void(std::optional<Secret> secret, bool mayKeep)>;
    void Look(const LineQuestion& question, Then then);
    void Typed(const std::vector<Secret>& values, bool keep); // the answer to the last one
    void LetIn();                                             // the host has accepted all of them
    void Withdraw();                                          // the line has ended

private:
    struct Pending
    {
        QString place;
        QString label;
        Secret secret;
    };
    void Drop(const QString& place);

    SecretKeeper* keeper_;
    QString place_; // of the question that stands; empty: it has none
    QString label_;
    std::vector<QString> used_; // kept ones that have answered
    std::vector<Pending> pending_;
    std::shared_ptr<int> looking_; // a new one for each look
};

} // namespace kestrune
