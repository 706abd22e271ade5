#pragma once

// The value of a late-bound call: what scripts, other programs, property bags and member tables exchange.
// Conversions follow the BASIC language: a boolean is -1 or 0 as a number, halves round to even, text is
// read as a number from its start and gives 0 when there is none.

#include <QDateTime>
#include <QString>

#include <variant>
#include <vector>

namespace kestrune {

class Variant
{
public:
    struct Missing // an optional argument that was left out
    {
        bool operator==(const Missing&) const = default;
    };
    using Array = std::vector<Variant>;

    Variant() = default;
    Variant(Missing value) : value_(value) {}
    Variant(bool value) : value_(value) {}
    Variant(qint16 value) : value_(value) {}
    Variant(qint32 value) : value_(value) {}
    Variant(double value) : value_(value) {}
    Variant(QDateTime value) : value_(std::move(value)) {}
    Variant(QString value) : value_(std::move(value)) {}
    Variant(Array value) : value_(std::move(value)) {}

    bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
    bool IsMissing() const { return std::holds_alternative<Missing>(value_); }
    bool IsText() const { return std::holds_alternative<QString>(value_); }
    bool IsBoolean() const { return std::holds_alternative<bool>(value_); }

    bool ToBoolean() const;
    qint32 ToInteger() const;
    double ToDouble() const;
    QString ToText() const; // a boolean is "True" or "False", a number its shortest decimal text
    const Array& ToArray() const;

    bool operator==(const Variant& other) const = default;

private:
    std::variant<std::monostate, Missing, bool, qint16, qint32, double, QDateTime, QString, Array> value_;
};

} // namespace kestrune
