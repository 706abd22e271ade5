#pragma once

// A counted reference to a late-bound object. The object lives as long as one of these does. Not for use from
// several threads: every object belongs to the user-interface thread.

#include <concepts>
#include <utility>

namespace kestrune {

class Object;

class ObjectRef
{
public:
    ObjectRef() = default;
    explicit ObjectRef(Object* object); // takes part in the object's life; null is no object
    ObjectRef(const ObjectRef& other) : ObjectRef(other.object_) {}
    ObjectRef(ObjectRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ObjectRef& operator=(ObjectRef other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ObjectRef();

    Object* Get() const { return object_; }
    Object& operator*() const { return *object_; }
    Object* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    bool operator==(const ObjectRef& other) const { return object_ == other.object_; }

private:
    Object* object_ = nullptr;
};

// A reference that knows the class of what it refers to.
template <typename T>
class Ref : public ObjectRef
{
public:
    Ref() = default;
    explicit Ref(T* object) : ObjectRef(object) {}
    template <std::derived_from<T> U>
    Ref(const Ref<U>& other) : ObjectRef(other)
    {}
    T* Get() const { return static_cast<T*>(ObjectRef::Get()); }
    T& operator*() const { return *Get(); }
    T* operator->() const { return Get(); }
};

template <typename T, typename... Args>
Ref<T> MakeObject(Args&&... args)
{
    return Ref<T>(new T(std::forward<Args>(args)...));
}

} // namespace kestrune
