#include "variant.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace kestrune {

namespace {

template <typename... Ts>
struct Overloaded : Ts...
{
    using Ts::operator()...;
};
template <typename... Ts>
Overloaded(Ts...) -> Overloaded<Ts...>;

double NumberAtStart(const QString& text)
{
    static const QRegularExpression number(QStringLiteral(R"(^\s*[+-]?(\d+\.?\d*|\.\d+)([eEdD][+-]?\d+)?)"));
    const auto match = number.match(text);
    if (!match.hasMatch())
        return 0;
    return match.captured().trimmed().toLower().replace(u'd', u'e').toDouble();
}

} // namespace

double Variant::ToDouble() const
{
    return std::visit(Overloaded{
                          [](std::monostate) { return 0.0; },
                          [](Missing) { return 0.0; },
                          [](bool v) { return v ? -1.0 : 0.0; },
                          [](qint16 v) { return double(v); },
                          [](qint32 v) { return double(v); },
                          [](double v) { return v; },
                          [](const QDateTime& v) { return double(v.toMSecsSinceEpoch()) / 86'400'000.0 + 25569.0; },
                          [](const QString& v) { return NumberAtStart(v); },
                          [](const Array&) { return 0.0; },
                      },
                      value_);
}

qint32 Variant::ToInteger() const
{
    const double rounded = std::nearbyint(ToDouble());
    if (!(rounded >= std::numeric_limits<qint32>::min()))
        return std::numeric_limits<qint32>::min();
    if (rounded > std::numeric_limits<qint32>::max())
        return std::numeric_limits<qint32>::max();
    return qint32(rounded);
}

bool Variant::ToBoolean() const
{
    if (const auto* text = std::get_if<QString>(&value_)) {
        if (text->compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0)
            return true;
    }
    return ToDouble() != 0.0;
}

QString Variant::ToText() const
{
    return std::visit(Overloaded{
                          [](std::monostate) { return QString(); },
                          [](Missing) { return QString(); },
                          [](bool v) { return v ? QStringLiteral("True") : QStringLiteral("False"); },
                          [](qint16 v) { return QString::number(v); },
                          [](qint32 v) { return QString::number(v); },
                          [](double v) { return QString::number(v, 'g', 15); },
                          [](const QDateTime& v) { return v.toString(Qt::ISODate); },
                          [](const QString& v) { return v; },
                          [](const Array&) { return QString(); },
                      },
                      value_);
}

const Variant::Array& Variant::ToArray() const
{
    static const Array empty;
    const auto* array = std::get_if<Array>(&value_);
    return array ? *array : empty;
}

} // namespace kestrune
