#include "object.h"

namespace kestrune {

ObjectRef::ObjectRef(Object* object) : object_(object)
{
    if (object_ != nullptr)
        ++object_->references_;
}

ObjectRef::~ObjectRef()
{
    if (object_ != nullptr && --object_->references_ == 0)
        delete object_;
}

std::optional<MemberId> Object::IdOfName(const QString& name) const
{
    if (const auto id = FindName(name))
        return id;
    QString today = name;
    return SubstituteName(today) ? FindName(today) : std::nullopt;
}

Variant Object::Invoke(const QString& name, quint8 kinds, std::span<const Variant> positional)
{
    const auto id = IdOfName(name);
    if (!id)
        throw Failure(ErrorNumber::NoSuchMember,
                      QStringLiteral("Object doesn't support this property or method: %1").arg(name), ClassName());
    return Invoke(*id, kinds, CallArguments{positional, {}});
}

Variant Object::Get(const QString& name, std::initializer_list<Variant> arguments)
{
    return Invoke(name, InvokeKind::Get, arguments);
}

void Object::Let(const QString& name, std::initializer_list<Variant> argumentsAndValue)
{
    Invoke(name, InvokeKind::Let, argumentsAndValue);
}

Variant Object::Call(const QString& name, std::initializer_list<Variant> arguments)
{
    return Invoke(name, InvokeKind::Method, arguments);
}

Variant Enumerator::Invoke(MemberId, quint8, const CallArguments&)
{
    throw Failure(ErrorNumber::NoSuchMember, QStringLiteral("Object doesn't support this property or method"),
                  ClassName());
}

bool ListEnumerator::Next(Variant& item)
{
    if (next_ == items_.size())
        return false;
    item = items_[next_++];
    return true;
}

Ref<Enumerator> EnumerateItems(Object& collection)
{
    ObjectRef made;
    try {
        made = collection.Invoke(kEnumeratorMember, InvokeKind::Method | InvokeKind::Get, {}).ToObject();
    } catch (const Failure& failure) {
        if (failure.Number() != ErrorNumber::NoSuchMember)
            throw;
    }
    auto* enumerator = dynamic_cast<Enumerator*>(made.Get());
    if (enumerator == nullptr)
        throw Failure(ErrorNumber::NotACollection, QStringLiteral("Object not a collection"), collection.ClassName());
    return Ref<Enumerator>(enumerator);
}

} // namespace kestrune
