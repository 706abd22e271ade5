#include "variant.h"

#include "object.h"

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

// Past the digits that stand at `at`.
qsizetype PastDigits(QStringView text, qsizetype at)
{
    while (at < text.size() && text[at] >= u'0' && text[at] <= u'9')
        ++at;
    return at;
}

bool IsOneOf(QStringView text, qsizetype at, QStringView characters)
{
    return at < text.size() && characters.contains(text[at]);
}

// Sign, digits with one decimal point, exponent by E or D; 0 when there is no number.
double NumberAtStart(QStringView text)
{
    text = text.trimmed();
    const qsizetype first = IsOneOf(text, 0, u"+-") ? 1 : 0;
    const qsizetype point = PastDigits(text, first);
    const bool hasPoint = IsOneOf(text, point, u".");
    qsizetype end = hasPoint ? PastDigits(text, point + 1) : point;
    if (end - first <= (hasPoint ? 1 : 0))
        return 0;
    if (IsOneOf(text, end, u"eEdD")) {
        const qsizetype exponent = end + (IsOneOf(text, end + 1, u"+-") ? 2 : 1);
        if (const qsizetype past = PastDigits(text, exponent); past > exponent)
            end = past;
    }
    return text.left(end).toString().toLower().replace(u'd', u'e').toDouble();
}

constexpr double kDayOfEpoch = 25569.0; // 1970-01-01 counted from 1899-12-30
constexpr double kMillisecondsOfDay = 86'400'000.0;
constexpr double kCurrencyScale = 10'000.0;

QString CurrencyText(Variant::Currency value)
{
    const quint64 size =
        value.scaled < 0 ? ~static_cast<quint64>(value.scaled) + 1 : static_cast<quint64>(value.scaled);
    QString text = QString::number(size / 10'000);
    if (const quint64 rest = size % 10'000) {
        text += u'.' + QString::number(rest).rightJustified(4, u'0');
        while (text.endsWith(u'0'))
            text.chop(1);
    }
    return value.scaled < 0 ? u'-' + text : text;
}

} // namespace

Variant::Variant(Array value) : Variant(VariantArray(std::move(value))) {}

Variant::Variant(VariantArray value) : value_(std::make_shared<const VariantArray>(std::move(value))) {}

const Variant& Variant::Resolved() const
{
    const Variant* value = this;
    while (const auto* reference = value->As<Reference>())
        value = reference->target;
    return *value;
}

double Variant::ToDouble() const
{
    return std::visit(
        Overloaded{
            [](bool v) { return v ? -1.0 : 0.0; },
            [](qint16 v) { return double(v); },
            [](qint32 v) { return double(v); },
            [](qint64 v) { return double(v); },
            [](float v) { return double(v); },
            [](double v) { return v; },
            [](Currency v) { return double(v.scaled) / kCurrencyScale; },
            [](const QDateTime& v) { return double(v.toMSecsSinceEpoch()) / kMillisecondsOfDay + kDayOfEpoch; },
            [](const QString& v) { return NumberAtStart(v); },
            [](Error v) { return double(v.number); },
            [](Reference v) { return v.target->ToDouble(); },
            [](const auto&) { return 0.0; },
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
    if (const auto* text = As<QString>()) {
        if (text->compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0)
            return true;
    }
    return ToDouble() != 0.0;
}

QString Variant::ToText() const
{
    return std::visit(Overloaded{
                          [](bool v) { return v ? QStringLiteral("True") : QStringLiteral("False"); },
                          [](qint16 v) { return QString::number(v); },
                          [](qint32 v) { return QString::number(v); },
                          [](qint64 v) { return QString::number(v); },
                          [](float v) { return QString::number(double(v), 'g', 7); },
                          [](double v) { return QString::number(v, 'g', 15); },
                          [](Currency v) { return CurrencyText(v); },
                          [](const QDateTime& v) { return v.toString(Qt::ISODate); },
                          [](const QString& v) { return v; },
                          [](Error v) { return QStringLiteral("Error %1").arg(v.number); },
                          [](Reference v) { return v.target->ToText(); },
                          [](const auto&) { return QString(); },
                      },
                      value_);
}

const VariantArray* Variant::AsArray() const
{
    const auto* array = As<SharedArray>();
    return array != nullptr ? array->get() : nullptr;
}

const Variant::Array& Variant::ToArray() const
{
    static const Array empty;
    const VariantArray* array = AsArray();
    return array != nullptr ? array->Elements() : empty;
}

ObjectRef Variant::ToObject() const
{
    const auto* object = Resolved().As<ObjectRef>();
    return object != nullptr ? *object : ObjectRef();
}

bool Variant::operator==(const Variant& other) const
{
    if (Type() == Kind::Array && other.Type() == Kind::Array)
        return *AsArray() == *other.AsArray();
    return value_ == other.value_;
}

VariantArray::VariantArray(Variant::Array elements)
    : bounds_{{0, static_cast<qint32>(elements.size()) - 1}}, elements_(std::move(elements))
{}

VariantArray::VariantArray(std::vector<Bound> bounds) : bounds_(std::move(bounds))
{
    if (bounds_.empty())
        throw Failure(ErrorNumber::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    std::size_t count = 1;
    for (const Bound& bound : bounds_) {
        const qint64 length = std::max<qint64>(0, qint64(bound.upper) - bound.lower + 1);
        if (count != 0 && static_cast<std::size_t>(length) > kMaxElements / count)
            throw Failure(ErrorNumber::OutOfMemory, QStringLiteral("Out of memory"));
        count *= static_cast<std::size_t>(length);
    }
    elements_.resize(count);
}

std::size_t VariantArray::Offset(const std::vector<qint32>& indexes) const
{
    std::size_t offset = 0;
    std::size_t step = 1;
    bool inside = indexes.size() == bounds_.size();
    for (std::size_t i = 0; inside && i < indexes.size(); ++i) {
        const Bound& bound = bounds_[i];
        inside = indexes[i] >= bound.lower && indexes[i] <= bound.upper;
        offset += static_cast<std::size_t>(qint64(indexes[i]) - bound.lower) * step;
        step *= static_cast<std::size_t>(qint64(bound.upper) - bound.lower + 1);
    }
    if (!inside)
        throw Failure(ErrorNumber::SubscriptOutOfRange, QStringLiteral("Subscript out of range"));
    return offset;
}

} // namespace kestrune
