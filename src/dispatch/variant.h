#pragma once

// The value of a late-bound call: what scripts, other programs, property bags and member tables exchange.
// The To... conversions never fail and suit text from files: a boolean is -1 or 0 as a number, halves round to
// even, text is read as a number from its start and gives 0 when there is none. Conversions that refuse what does
// not fit stand in conversion.h.

#include <dispatch/failure.h>
#include <dispatch/objectref.h>

#include <QDateTime>
#include <QString>

#include <memory>
#include <variant>
#include <vector>

namespace kestrune {

class Variant;
class VariantArray;

class Variant
{
public:
    struct Missing // an optional argument that was left out
    {
        bool operator==(const Missing&) const = default;
    };
    struct Null // a value that is known to be unknown
    {
        bool operator==(const Null&) const = default;
    };
    struct Currency // ten-thousandths
    {
        qint64 scaled = 0;
        bool operator==(const Currency&) const = default;
    };
    struct Error // an error number as a value
    {
        qint32 number = 0;
        bool operator==(const Error&) const = default;
    };
    struct Reference // a caller's variable; it outlives the call that the reference is passed to
    {
        Variant* target = nullptr;
        bool operator==(const Reference&) const = default;
    };
    using Array = std::vector<Variant>;

    enum class Kind // in the order of the alternatives below
    {
        Empty,
        Missing,
        Null,
        Boolean,
        Int16,
        Int32,
        Int64,
        Single,
        Double,
        Currency,
        Date,
        String,
        Object,
        Array,
        Error,
        Reference
    };

    Variant() = default;
    Variant(Missing value) : value_(value) {}
    Variant(Null value) : value_(value) {}
    Variant(bool value) : value_(value) {}
    Variant(qint16 value) : value_(value) {}
    Variant(qint32 value) : value_(value) {}
    Variant(qint64 value) : value_(value) {}
    Variant(float value) : value_(value) {}
    Variant(double value) : value_(value) {}
    Variant(Currency value) : value_(value) {}
    Variant(QDateTime value) : value_(std::move(value)) {}
    Variant(QString value) : value_(std::move(value)) {}
    Variant(ObjectRef value) : value_(std::move(value)) {} // null: the value Nothing
    Variant(Array value);                                  // one dimension, from 0
    Variant(VariantArray value);
    Variant(Error value) : value_(value) {}
    Variant(Reference value) : value_(value) {}
    template <typename T>
    Variant(T*) = delete; // no pointer is a boolean

    Kind Type() const { return static_cast<Kind>(value_.index()); }
    bool IsEmpty() const { return Type() == Kind::Empty; }
    bool IsMissing() const { return Type() == Kind::Missing; }
    bool IsNull() const { return Type() == Kind::Null; }
    bool IsText() const { return Type() == Kind::String; }
    bool IsBoolean() const { return Type() == Kind::Boolean; }
    bool IsObject() const { return Type() == Kind::Object; }
    bool IsArray() const { return Type() == Kind::Array; }
    bool IsReference() const { return Type() == Kind::Reference; }

    // The value itself where it is of that kind; null otherwise.
    template <typename T>
    const T* As() const
    {
        return std::get_if<T>(&value_);
    }
    // What a reference, or a reference to one, stands for; any other value is itself.
    const Variant& Resolved() const;

    bool ToBoolean() const;
    qint32 ToInteger() const;
    double ToDouble() const;
    QString ToText() const;              // a boolean is "True" or "False", a number its shortest decimal text
    const Array& ToArray() const;        // the elements; none when it is no array
    const VariantArray* AsArray() const; // null: no array
    ObjectRef ToObject() const;          // null: none

    bool operator==(const Variant& other) const;

private:
    using SharedArray = std::shared_ptr<const VariantArray>; // a value: never changed once it is in here
    std::variant<std::monostate, Missing, Null, bool, qint16, qint32, qint64, float, double, Currency, QDateTime,
                 QString, ObjectRef, SharedArray, Error, Reference>
        value_;
};

// The elements of an array of any number of dimensions, each with its own lowest and highest index. The elements
// stand in one row, the first index running fastest.
class VariantArray
{
public:
    struct Bound
    {
        qint32 lower = 0;
        qint32 upper = -1; // below lower: the dimension is empty
        bool operator==(const Bound&) const = default;
    };
    static constexpr std::size_t kMaxElements = 1U << 26;

    VariantArray() : VariantArray(Variant::Array{}) {}
    explicit VariantArray(Variant::Array elements); // one dimension, from 0
    // All elements empty. Raises Failure OutOfMemory when there would be too many, SubscriptOutOfRange for no
    // dimension at all.
    explicit VariantArray(std::vector<Bound> bounds);

    const std::vector<Bound>& Bounds() const { return bounds_; }
    const Variant::Array& Elements() const { return elements_; }
    // Raises Failure SubscriptOutOfRange, also for the wrong number of indexes.
    const Variant& At(const std::vector<qint32>& indexes) const { return elements_[Offset(indexes)]; }
    Variant& At(const std::vector<qint32>& indexes) { return elements_[Offset(indexes)]; }

    bool operator==(const VariantArray& other) const = default;

private:
    std::size_t Offset(const std::vector<qint32>& indexes) const;

    std::vector<Bound> bounds_;
    Variant::Array elements_;
};

} // namespace kestrune
