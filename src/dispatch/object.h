#pragma once

// A late-bound object: its members are found by name once and then invoked by number, as scripts and other
// programs do. Objects are reference counted: made by MakeObject, held by ObjectRef, gone with the last one.
// All failures are raised as Failure with number, text and source.

#include <dispatch/variant.h>

#include <optional>
#include <span>

namespace kestrune {

using MemberId = qint32;
inline constexpr MemberId kDefaultMember = 0;
inline constexpr MemberId kEnumeratorMember = -4;

// How a member is invoked; a caller that reads x.Name asks for Method | Get.
namespace InvokeKind {
inline constexpr quint8 Method = 1, Get = 2, Let = 4, Set = 8;
} // namespace InvokeKind

struct NamedArgument
{
    int index = 0; // of the parameter, as IndexOfArgument gave it
    Variant value;
};

// For Let and Set the value is the last positional one. A by-reference argument is a Variant::Reference.
struct CallArguments
{
    std::span<const Variant> positional;
    std::span<const NamedArgument> named;
};

class Object
{
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    virtual QString ClassName() const = 0;

    // The member of that name, without regard to case. A name that is not known is looked up once more under the
    // name that SubstituteName gives for it.
    std::optional<MemberId> IdOfName(const QString& name) const;
    virtual std::optional<int> IndexOfArgument(MemberId member, const QString& name) const = 0;

    // kinds: what the caller can do with; the first that the member offers of Method, Get, Let, Set is carried out.
    // Raises Failure: 438 no such member, 448 to 450 arguments, 6 and 13 values that do not fit, and the member's own.
    virtual Variant Invoke(MemberId member, quint8 kinds, const CallArguments& arguments) = 0;

    // By name, for callers that have no use for numbers.
    Variant Invoke(const QString& name, quint8 kinds, std::span<const Variant> positional = {});
    Variant Get(const QString& name, std::initializer_list<Variant> arguments = {});
    void Let(const QString& name, std::initializer_list<Variant> argumentsAndValue);
    Variant Call(const QString& name, std::initializer_list<Variant> arguments = {});

protected:
    virtual ~Object() = default;
    virtual std::optional<MemberId> FindName(const QString& name) const = 0;
    virtual bool SubstituteName(QString& /*name*/) const { return false; } // true: name was replaced

private:
    friend class ObjectRef;
    int references_ = 0;
};

// What a collection's member -4 gives: its items, one after the other.
class Enumerator : public Object
{
public:
    virtual bool Next(Variant& item) = 0; // false: there are no more
    virtual void Reset() = 0;

    QString ClassName() const override { return QStringLiteral("Enumerator"); }
    std::optional<int> IndexOfArgument(MemberId, const QString&) const override { return std::nullopt; }
    Variant Invoke(MemberId member, quint8 kinds, const CallArguments& arguments) override; // it has no members

protected:
    std::optional<MemberId> FindName(const QString&) const override { return std::nullopt; }
};

// Over items that stood when it was made.
class ListEnumerator final : public Enumerator
{
public:
    explicit ListEnumerator(Variant::Array items) : items_(std::move(items)) {}
    bool Next(Variant& item) override;
    void Reset() override { next_ = 0; }

private:
    Variant::Array items_;
    std::size_t next_ = 0;
};

// The enumerator of a collection. Raises Failure NotACollection when the object has none.
Ref<Enumerator> EnumerateItems(Object& collection);

} // namespace kestrune
