#pragma once

// The store on the session's bus. Every answer comes from the event loop; with this object all that is under way is
// forgotten.

#include "secretlibrary.h"

#include <ports/secretkeeper.h>

#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrune {

class PasswordStore
{
public:
    // Null: the library is not installed.
    static std::unique_ptr<PasswordStore> OnSessionBus();
    static void SayThereIsNone(const QString& why); // in the log
    ~PasswordStore();
    PasswordStore(const PasswordStore&) = delete;
    PasswordStore& operator=(const PasswordStore&) = delete;

    // Looks for a store that is not there, or not any more. false: there is none. In the order of the calls.
    void WhenOpen(std::function<void(bool open)> then);

    // --- while it is open
    // A locked one asks the user, and is waited for.
    void Find(const QString& place, std::function<void(SecretKeeper::Found)> then);
    void Keep(const QString& place, const QString& label, const Secret& secret);
    void Forget(const QString& place);

private:
    class Patience;
    using Answered = std::function<void(GObject* source, GAsyncResult* result)>;
    using Told = std::function<void(SecretKeeper::Found)>;

    explicit PasswordStore(const SecretLibrary& library);
    gpointer Await(Answered then);
    static void OnAnswer(GObject* source, GAsyncResult* result, gpointer data);
    bool IsOpen() const;
    std::string Owner() const;
    void Connect();
    void LookAgain();
    void OpenService(const std::shared_ptr<Patience>& patience);
    void Opened(const QString& trouble);
    void Unlock(GHandle<SecretItem> item, const Told& then);
    void Load(GHandle<SecretItem> item, const Told& then);

    const SecretLibrary& library_;
    GHandle<GDBusConnection> connection_;
    GHandle<SecretService> service_;
    std::string owner_; // of the service's name when it was opened: another one knows nothing of what was agreed
    std::vector<std::function<void(bool)>> waiting_;
    int oldBuses_ = 0; // met since somebody waits
    std::shared_ptr<const int> life_;
    QTimer soon_; // goes first, with what it would still do
};

} // namespace kestrune
