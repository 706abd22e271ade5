#include "conversion.h"

#include <QRegularExpression>
#include <QTimeZone>

namespace kestrune {

namespace {

constexpr int kDefaultChain = 8; // default members that are followed before it is a type mismatch

[[noreturn]] void RaiseOverflow() { throw Failure(ErrorNumber::Overflow, QStringLiteral("Overflow")); }

// What a value stands for where a plain one is wanted: references and default members are followed.
Variant PlainValue(const Variant& value)
{
    Variant plain = value.Resolved();
    for (int depth = 0; plain.IsObject(); ++depth) {
        const ObjectRef object = plain.ToObject();
        if (!object)
            throw Failure(ErrorNumber::ObjectNotSet, QStringLiteral("Object variable not set"));
        if (depth == kDefaultChain)
            RaiseTypeMismatch();
        plain = object->Invoke(kDefaultMember, InvokeKind::Method | InvokeKind::Get, {}).Resolved();
    }
    if (plain.IsNull())
        throw Failure(ErrorNumber::InvalidUseOfNull, QStringLiteral("Invalid use of Null"));
    using Kind = Variant::Kind;
    if (plain.Type() == Kind::Missing || plain.Type() == Kind::Error || plain.Type() == Kind::Array)
        RaiseTypeMismatch();
    return plain;
}

double NumberInText(const QString& text)
{
    static const QRegularExpression decimal(QStringLiteral(R"(^[+-]?(\d+\.?\d*|\.\d+)([eEdD][+-]?\d+)?$)"));
    static const QRegularExpression based(QStringLiteral(R"(^&([hH][0-9a-fA-F]{1,16}|[oO][0-7]{1,21})&?$)"));
    QString trimmed = text.trimmed();
    if (decimal.match(trimmed).hasMatch()) {
        const double number = trimmed.toLower().replace(u'd', u'e').toDouble();
        if (std::isinf(number))
            RaiseOverflow();
        return number;
    }
    const auto match = based.match(trimmed);
    if (!match.hasMatch())
        RaiseTypeMismatch();
    const QString digits = match.captured(1);
    return static_cast<double>(digits.mid(1).toULongLong(nullptr, digits.front().toLower() == u'h' ? 16 : 8));
}

} // namespace

void RaiseTypeMismatch() { throw Failure(ErrorNumber::TypeMismatch, QStringLiteral("Type mismatch")); }

double NumberOf(const Variant& value)
{
    const Variant plain = PlainValue(value);
    const auto* text = plain.As<QString>();
    return text != nullptr ? NumberInText(*text) : plain.ToDouble();
}

qint64 WholeNumberOf(const Variant& value, qint64 least, qint64 most)
{
    const Variant plain = PlainValue(value);
    qint64 number = 0;
    if (const auto* exact = plain.As<qint64>()) {
        number = *exact; // a double would lose digits
    } else {
        const double rounded = std::nearbyint(NumberOf(plain));
        constexpr double limit = 9223372036854775808.0; // 2 to the 63rd
        if (!(rounded >= -limit && rounded < limit))
            RaiseOverflow();
        number = static_cast<qint64>(rounded);
    }
    if (number < least || number > most)
        RaiseOverflow();
    return number;
}

bool BooleanOf(const Variant& value)
{
    const Variant plain = PlainValue(value);
    if (const auto* text = plain.As<QString>()) {
        for (const auto& [word, is] : {std::pair{"True", true}, {"#TRUE#", true}, {"False", false}, {"#FALSE#", false}})
            if (text->compare(QLatin1String(word), Qt::CaseInsensitive) == 0)
                return is;
    }
    return NumberOf(plain) != 0.0;
}

QString TextOf(const Variant& value) { return PlainValue(value).ToText(); }

QDateTime DateOf(const Variant& value)
{
    const Variant plain = PlainValue(value);
    if (const auto* date = plain.As<QDateTime>())
        return *date;
    if (const auto* text = plain.As<QString>()) {
        QDateTime read = QDateTime::fromString(*text, Qt::ISODate);
        if (read.isValid())
            return read;
    }
    const QDateTime dayZero(QDate(1899, 12, 30), QTime(0, 0), QTimeZone::utc());
    constexpr double millisecondsOfDay = 86'400'000.0;
    const double milliseconds = NumberOf(plain) * millisecondsOfDay;
    constexpr double tenThousandYears = 3.2e14;
    if (std::abs(milliseconds) > tenThousandYears)
        RaiseOverflow();
    return dayZero.addMSecs(static_cast<qint64>(milliseconds));
}

ObjectRef ObjectOf(const Variant& value)
{
    const Variant& plain = value.Resolved();
    if (!plain.IsObject())
        throw Failure(ErrorNumber::ObjectRequired, QStringLiteral("Object required"));
    return plain.ToObject();
}

} // namespace kestrune
