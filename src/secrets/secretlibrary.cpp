#include "secretlibrary.h"

#include <QLibrary>

#include <optional>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

template <typename Call>
bool Resolve(QLibrary& library, const char* name, Call& call)
{
    call = reinterpret_cast<Call>(library.resolve(name)); // or in what it stands on
    return call != nullptr;
}

std::optional<SecretLibrary> LoadAll()
{
    QLibrary library(u"secret-1"_s, 0);
    SecretLibrary calls{};
    bool whole = true;
#define KESTRUNE_SECRET_RESOLVE(name) whole = whole && Resolve(library, #name, calls.name);
    KESTRUNE_SECRET_CALLS(KESTRUNE_SECRET_RESOLVE)
#undef KESTRUNE_SECRET_RESOLVE
    return whole ? std::optional(calls) : std::nullopt;
}

} // namespace

const SecretLibrary* SecretLibrary::Load()
{
    static const std::optional<SecretLibrary> library = LoadAll();
    return library ? &*library : nullptr;
}

} // namespace kestrune
