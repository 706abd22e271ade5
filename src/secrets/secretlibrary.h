#pragma once

// libsecret, and what is needed of GLib below it, loaded when first asked for. The members are the libraries' functions
// by their own names.

#include <libsecret/secret.h>

#include <memory>

namespace kestrune {

#define KESTRUNE_SECRET_CALLS(X)                                                                                       \
    X(g_async_initable_new_async)                                                                                      \
    X(g_async_initable_new_finish)                                                                                     \
    X(g_bus_get)                                                                                                       \
    X(g_bus_get_finish)                                                                                                \
    X(g_cancellable_cancel)                                                                                            \
    X(g_cancellable_new)                                                                                               \
    X(g_dbus_connection_is_closed)                                                                                     \
    X(g_dbus_connection_set_exit_on_close)                                                                             \
    X(g_dbus_proxy_get_name_owner)                                                                                     \
    X(g_error_free)                                                                                                    \
    X(g_free)                                                                                                          \
    X(g_hash_table_insert)                                                                                             \
    X(g_hash_table_new)                                                                                                \
    X(g_hash_table_unref)                                                                                              \
    X(g_list_free)                                                                                                     \
    X(g_object_unref)                                                                                                  \
    X(g_str_equal)                                                                                                     \
    X(g_str_hash)                                                                                                      \
    X(secret_item_get_locked)                                                                                          \
    X(secret_item_get_secret)                                                                                          \
    X(secret_item_load_secret)                                                                                         \
    X(secret_item_load_secret_finish)                                                                                  \
    X(secret_service_clear)                                                                                            \
    X(secret_service_clear_finish)                                                                                     \
    X(secret_service_get_session_algorithms)                                                                           \
    X(secret_service_get_type)                                                                                         \
    X(secret_service_search)                                                                                           \
    X(secret_service_search_finish)                                                                                    \
    X(secret_service_store)                                                                                            \
    X(secret_service_store_finish)                                                                                     \
    X(secret_service_unlock)                                                                                           \
    X(secret_service_unlock_finish)                                                                                    \
    X(secret_value_get)                                                                                                \
    X(secret_value_new)                                                                                                \
    X(secret_value_unref)

// Of an object of GLib's.
template <typename T>
using GHandle = std::unique_ptr<T, decltype(&::g_object_unref)>;

struct SecretLibrary
{
#define KESTRUNE_SECRET_MEMBER(name) decltype(&::name) name; // NOLINT(bugprone-macro-parentheses): names
    KESTRUNE_SECRET_CALLS(KESTRUNE_SECRET_MEMBER)
#undef KESTRUNE_SECRET_MEMBER

    // Null: it is not installed. Stays loaded from then on.
    static const SecretLibrary* Load();

    template <typename T>
    GHandle<T> Own(T* object) const
    {
        return GHandle<T>(object, g_object_unref);
    }
};

} // namespace kestrune
