#pragma once

// Values of late-bound calls as the C++ types of the functions that serve them, and back. What does not fit is
// refused by the rules of the BASIC language: halves round to even, out of range is Overflow, text that is no
// number TypeMismatch, Null InvalidUseOfNull. A room adds a type of its own by specialising Convert.

#include <dispatch/object.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace kestrune {

double NumberOf(const Variant& value);                                 // Failure when it is no number
qint64 WholeNumberOf(const Variant& value, qint64 least, qint64 most); // rounded; Failure Overflow outside
bool BooleanOf(const Variant& value);
QString TextOf(const Variant& value);
QDateTime DateOf(const Variant& value);
ObjectRef ObjectOf(const Variant& value); // Nothing gives null; Failure ObjectRequired for a plain value
[[noreturn]] void RaiseTypeMismatch();

template <typename T>
struct Convert;

template <typename T>
concept WholeNumber = std::integral<T> && !std::same_as<T, bool>;

template <WholeNumber T>
struct Convert<T>
{
    using Stored = std::conditional_t<
        (sizeof(T) < 4) && std::is_signed_v<T>, qint16,
        std::conditional_t<(sizeof(T) > 4) || (sizeof(T) == 4 && !std::is_signed_v<T>), qint64, qint32>>;
    static constexpr Variant::Kind kKind = sizeof(Stored) == 2   ? Variant::Kind::Int16
                                           : sizeof(Stored) == 4 ? Variant::Kind::Int32
                                                                 : Variant::Kind::Int64;
    static T From(const Variant& value)
    {
        if (const auto* same = value.As<Stored>(); same != nullptr && std::in_range<T>(*same))
            return static_cast<T>(*same);
        constexpr auto most = std::in_range<qint64>(std::numeric_limits<T>::max())
                                  ? static_cast<qint64>(std::numeric_limits<T>::max())
                                  : std::numeric_limits<qint64>::max();
        return static_cast<T>(WholeNumberOf(value, static_cast<qint64>(std::numeric_limits<T>::min()), most));
    }
    static Variant To(T value) { return static_cast<Stored>(value); }
};

template <std::floating_point T>
struct Convert<T>
{
    static constexpr Variant::Kind kKind = sizeof(T) == 4 ? Variant::Kind::Single : Variant::Kind::Double;
    static T From(const Variant& value) { return static_cast<T>(NumberOf(value)); }
    static Variant To(T value) { return value; }
};

template <>
struct Convert<bool>
{
    static constexpr Variant::Kind kKind = Variant::Kind::Boolean;
    static bool From(const Variant& value) { return BooleanOf(value); }
    static Variant To(bool value) { return value; }
};

template <typename T>
requires std::is_enum_v<T>
struct Convert<T>
{
    using Number = Convert<std::underlying_type_t<T>>;
    static constexpr Variant::Kind kKind = Number::kKind;
    static T From(const Variant& value) { return static_cast<T>(Number::From(value)); }
    static Variant To(T value) { return Number::To(static_cast<std::underlying_type_t<T>>(value)); }
};

template <>
struct Convert<QString>
{
    static constexpr Variant::Kind kKind = Variant::Kind::String;
    static QString From(const Variant& value) { return TextOf(value); }
    static Variant To(QString value) { return value; }
};

template <>
struct Convert<QDateTime>
{
    static constexpr Variant::Kind kKind = Variant::Kind::Date;
    static QDateTime From(const Variant& value) { return DateOf(value); }
    static Variant To(QDateTime value) { return value; }
};

template <>
struct Convert<Variant>
{
    static constexpr Variant::Kind kKind = Variant::Kind::Empty; // any
    static Variant From(const Variant& value) { return value.Resolved(); }
    static Variant To(Variant value) { return value; }
};

template <>
struct Convert<ObjectRef>
{
    static constexpr Variant::Kind kKind = Variant::Kind::Object;
    static ObjectRef From(const Variant& value) { return ObjectOf(value); }
    static Variant To(ObjectRef value) { return value; }
};

template <typename T>
struct Convert<Ref<T>>
{
    static constexpr Variant::Kind kKind = Variant::Kind::Object;
    static Ref<T> From(const Variant& value)
    {
        const ObjectRef object = ObjectOf(value);
        auto* same = dynamic_cast<T*>(object.Get());
        if (object && same == nullptr)
            RaiseTypeMismatch();
        return Ref<T>(same);
    }
    static Variant To(const Ref<T>& value) { return static_cast<const ObjectRef&>(value); }
};

// An argument whose absence means something: left out, or given.
template <typename T>
struct Convert<std::optional<T>>
{
    static constexpr Variant::Kind kKind = Convert<T>::kKind;
    static std::optional<T> From(const Variant& value)
    {
        return value.IsMissing() ? std::nullopt : std::optional<T>(Convert<T>::From(value));
    }
    static Variant To(const std::optional<T>& value) { return value ? Convert<T>::To(*value) : Variant(); }
};

} // namespace kestrune
