#include "passwordstore.h"

#include <QLoggingCategory>

#include <string_view>
#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(SecretLog, "kestrune.secrets")

// A store that does not answer must not keep the user from typing; where it asks the user itself, that takes as long as
// it takes.
constexpr std::chrono::seconds AnswerLimit{3};

// An error that a call of the library may raise.
class LibraryError
{
public:
    explicit LibraryError(const SecretLibrary& library) : library_(library) {}
    ~LibraryError()
    {
        if (error_ != nullptr)
            library_.g_error_free(error_);
    }
    LibraryError(const LibraryError&) = delete;
    LibraryError& operator=(const LibraryError&) = delete;

    GError** Out() { return &error_; }
    bool IsRaised() const { return error_ != nullptr; }
    QString Text() const { return error_ != nullptr ? QString::fromUtf8(error_->message) : QString(); }

private:
    const SecretLibrary& library_;
    GError* error_ = nullptr;
};

// What a password is found by.
class Attributes
{
public:
    Attributes(const SecretLibrary& library, const QString& place)
        : place_(place.toUtf8()),
          table_(library.g_hash_table_new(library.g_str_hash, library.g_str_equal), library.g_hash_table_unref)
    {
        const auto add = [&](const char* name, const char* value) {
            library.g_hash_table_insert(table_.get(), const_cast<char*>(name), const_cast<char*>(value));
        };
        add("application", "kestrune");
        add("place", place_.constData());
    }
    GHashTable* Table() const { return table_.get(); } // copied by whoever is given it

private:
    QByteArray place_;
    std::unique_ptr<GHashTable, decltype(&::g_hash_table_unref)> table_;
};

struct Awaited
{
    std::weak_ptr<const int> life;
    std::function<void(GObject*, GAsyncResult*)> then;
};

} // namespace

// Cancels the calls that it is given to when the time is over: then they fail.
class PasswordStore::Patience
{
public:
    explicit Patience(const SecretLibrary& library) : cancellable_(library.Own(library.g_cancellable_new()))
    {
        timer_.setSingleShot(true);
        timer_.callOnTimeout([this, &library] { library.g_cancellable_cancel(cancellable_.get()); });
        timer_.start(AnswerLimit);
    }
    GCancellable* Get() const { return cancellable_.get(); }

private:
    GHandle<GCancellable> cancellable_;
    QTimer timer_;
};

void PasswordStore::SayThereIsNone(const QString& why)
{
    qCInfo(SecretLog, "No password store, passwords are asked for each time: %s", qUtf8Printable(why));
}

std::unique_ptr<PasswordStore> PasswordStore::OnSessionBus()
{
    const SecretLibrary* library = SecretLibrary::Load();
    if (library == nullptr) {
        SayThereIsNone(u"libsecret is not installed"_s);
        return nullptr;
    }
    return std::unique_ptr<PasswordStore>(new PasswordStore(*library));
}

PasswordStore::PasswordStore(const SecretLibrary& library)
    : library_(library), connection_(library.Own<GDBusConnection>(nullptr)),
      service_(library.Own<SecretService>(nullptr)), life_(std::make_shared<int>())
{
    soon_.setSingleShot(true);
    soon_.callOnTimeout([this] {
        if (IsOpen())
            Opened({});
        else
            Connect();
    });
}

PasswordStore::~PasswordStore() = default;

// The library calls back once, whatever happens, and owns what it is given until then.
gpointer PasswordStore::Await(Answered then) { return new Awaited{life_, std::move(then)}; }

void PasswordStore::OnAnswer(GObject* source, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<Awaited> awaited(static_cast<Awaited*>(data));
    if (!awaited->life.expired())
        awaited->then(source, result);
}

// --- the way to the store

std::string PasswordStore::Owner() const
{
    char* owner = library_.g_dbus_proxy_get_name_owner(reinterpret_cast<GDBusProxy*>(service_.get()));
    std::string name = owner != nullptr ? owner : "";
    (library_.g_free)(owner); // newer releases have a macro of that name
    return name;
}

bool PasswordStore::IsOpen() const
{
    return service_ && library_.g_dbus_connection_is_closed(connection_.get()) == FALSE && Owner() == owner_;
}

void PasswordStore::WhenOpen(std::function<void(bool)> then)
{
    waiting_.push_back(std::move(then));
    if (waiting_.size() > 1)
        return;
    oldBuses_ = 0;
    soon_.start(0);
}

void PasswordStore::Opened(const QString& trouble)
{
    if (!trouble.isEmpty()) {
        service_.reset();
        connection_.reset();
        SayThereIsNone(trouble);
    }
    const bool open = service_ != nullptr;
    for (const auto& then : std::exchange(waiting_, {}))
        then(open);
}

void PasswordStore::Connect()
{
    service_.reset();
    connection_.reset();
    const auto patience = std::make_shared<Patience>(library_);
    library_.g_bus_get(G_BUS_TYPE_SESSION, patience->Get(), &OnAnswer,
                       Await([this, patience](GObject*, GAsyncResult* result) {
                           LibraryError error(library_);
                           connection_ = library_.Own(library_.g_bus_get_finish(result, error.Out()));
                           if (!connection_) {
                               Opened(error.Text());
                               return;
                           }
                           if (library_.g_dbus_connection_is_closed(connection_.get()) != FALSE) {
                               LookAgain();
                               return;
                           }
                           // By default it ends the process with the bus, and all of its sessions.
                           library_.g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
                           OpenService(patience);
                       }));
}

// The library hands out one connection to all; the one to a bus that has ended goes when the last has let go of it.
void PasswordStore::LookAgain()
{
    constexpr int most = 10;
    connection_.reset();
    if (++oldBuses_ < most)
        soon_.start(std::chrono::milliseconds(20));
    else
        Opened(u"the session bus has ended"_s);
}

// With a session for secrets, whose key both sides agree on.
void PasswordStore::OpenService(const std::shared_ptr<Patience>& patience)
{
    library_.g_async_initable_new_async( // NOLINT(cppcoreguidelines-pro-type-vararg)
        library_.secret_service_get_type(), G_PRIORITY_DEFAULT, patience->Get(), &OnAnswer,
        Await([this, patience](GObject* source, GAsyncResult* result) {
            LibraryError error(library_);
            auto* made =
                library_.g_async_initable_new_finish(reinterpret_cast<GAsyncInitable*>(source), result, error.Out());
            service_ = library_.Own(reinterpret_cast<SecretService*>(made));
            if (!service_) {
                Opened(error.Text());
                return;
            }
            owner_ = Owner();
            const char* algorithms = library_.secret_service_get_session_algorithms(service_.get());
            const bool encrypts = algorithms != nullptr && std::string_view(algorithms).starts_with("dh-");
            Opened(encrypts ? QString() : u"it takes passwords only unencrypted"_s);
        }),
        "flags", SECRET_SERVICE_OPEN_SESSION, nullptr);
}

// --- passwords

void PasswordStore::Find(const QString& place, Told then)
{
    const Attributes attributes(library_, place);
    const auto patience = std::make_shared<Patience>(library_);
    library_.secret_service_search(
        service_.get(), nullptr, attributes.Table(), SECRET_SEARCH_NONE, patience->Get(), &OnAnswer,
        Await([this, patience, then = std::move(then)](GObject* source, GAsyncResult* result) {
            LibraryError error(library_);
            GList* items =
                library_.secret_service_search_finish(reinterpret_cast<SecretService*>(source), result, error.Out());
            auto item = library_.Own(static_cast<SecretItem*>(items != nullptr ? items->data : nullptr)); // one at most
            library_.g_list_free(items);
            if (!item)
                then({.canKeep = !error.IsRaised()});
            else if (library_.secret_item_get_locked(item.get()) != FALSE)
                Unlock(std::move(item), then);
            else
                Load(std::move(item), then);
        }));
}

// The store asks the user.
void PasswordStore::Unlock(GHandle<SecretItem> item, const Told& then)
{
    SecretItem* const locked = item.get();
    GList objects{.data = locked, .next = nullptr, .prev = nullptr};
    library_.secret_service_unlock(service_.get(), &objects, nullptr, &OnAnswer,
                                   Await([this, then, kept = std::make_shared<GHandle<SecretItem>>(std::move(item))](
                                             GObject* source, GAsyncResult* result) {
                                       if (library_.secret_service_unlock_finish(
                                               reinterpret_cast<SecretService*>(source), result, nullptr, nullptr) > 0)
                                           Load(std::move(*kept), then);
                                       else
                                           then({.canKeep = true}); // the user did not want that
                                   }));
}

void PasswordStore::Load(GHandle<SecretItem> item, const Told& then)
{
    const auto patience = std::make_shared<Patience>(library_);
    SecretItem* const from = item.get();
    library_.secret_item_load_secret(
        from, patience->Get(), &OnAnswer,
        Await([this, patience, then,
               kept = std::make_shared<GHandle<SecretItem>>(std::move(item))](GObject*, GAsyncResult* result) {
            SecretKeeper::Found found{.canKeep = true};
            const bool loaded = library_.secret_item_load_secret_finish(kept->get(), result, nullptr) != FALSE;
            if (SecretValue* value = loaded ? library_.secret_item_get_secret(kept->get()) : nullptr) {
                gsize size = 0;
                const char* bytes = library_.secret_value_get(value, &size);
                found.secret.emplace(std::string_view(bytes, size));
                library_.secret_value_unref(value); // it overwrites them
            }
            then(std::move(found));
        }));
}

void PasswordStore::Keep(const QString& place, const QString& label, const Secret& secret)
{
    const Attributes attributes(library_, place);
    const std::string_view utf8 = secret.Utf8();
    SecretValue* value =
        library_.secret_value_new(utf8.data(), static_cast<gssize>(utf8.size()), "text/plain; charset=utf8");
    library_.secret_service_store(
        service_.get(), nullptr, attributes.Table(), SECRET_COLLECTION_DEFAULT, label.toUtf8().constData(), value,
        nullptr, &OnAnswer, Await([this](GObject* source, GAsyncResult* result) {
            LibraryError error(library_);
            library_.secret_service_store_finish(reinterpret_cast<SecretService*>(source), result, error.Out());
            if (error.IsRaised())
                qCWarning(SecretLog, "The password store did not keep a password: %s", qUtf8Printable(error.Text()));
        }));
    library_.secret_value_unref(value);
}

void PasswordStore::Forget(const QString& place)
{
    const Attributes attributes(library_, place);
    library_.secret_service_clear(service_.get(), nullptr, attributes.Table(), nullptr, &OnAnswer,
                                  Await([this](GObject* source, GAsyncResult* result) {
                                      library_.secret_service_clear_finish(reinterpret_cast<SecretService*>(source),
                                                                           result, nullptr);
                                  }));
}

} // namespace kestrune
