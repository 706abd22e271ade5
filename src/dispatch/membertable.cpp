#include "membertable.h"

#include <algorithm>

namespace kestrune {

namespace {

Variant ZeroOf(Variant::Kind kind)
{
    switch (kind) {
    case Variant::Kind::Boolean:
        return false;
    case Variant::Kind::Int16:
        return qint16(0);
    case Variant::Kind::Int32:
        return qint32(0);
    case Variant::Kind::Int64:
        return qint64(0);
    case Variant::Kind::Single:
    case Variant::Kind::Double:
        return 0.0;
    case Variant::Kind::String:
        return QString();
    case Variant::Kind::Object:
        return ObjectRef();
    default:
        return Variant::Missing{};
    }
}

Variant ReadDefault(const QString& text)
{
    if (text == QLatin1String("True") || text == QLatin1String("False"))
        return text == QLatin1String("True");
    if (text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"'))
        return text.mid(1, text.size() - 2);
    bool whole = false;
    const int number = text.toInt(&whole);
    return whole ? Variant(qint32(number)) : Variant(text.toDouble());
}

const Handler& AnyHandler(const MemberRow& row)
{
    for (const Handler* each : {&row.method, &row.get, &row.let})
        if (each->run != nullptr)
            return *each;
    return row.set;
}

std::vector<Parameter> ReadParameters(const MemberRow& row)
{
    std::vector<Parameter> parameters;
    const Handler& handler = AnyHandler(row);
    const QStringList pieces = QString::fromLatin1(row.parameters).split(u',', Qt::SkipEmptyParts);
    for (const QString& piece : pieces) {
        QString text = piece.trimmed();
        Parameter parameter;
        if (handler.types != nullptr)
            parameter.type = handler.types[parameters.size()];
        parameter.optional = text.startsWith(u'[') && text.endsWith(u']');
        if (parameter.optional)
            text = text.mid(1, text.size() - 2);
        parameter.name = text.section(u'=', 0, 0).trimmed();
        if (text.contains(u'='))
            parameter.fallback = ReadDefault(text.section(u'=', 1).trimmed());
        else
            parameter.fallback = parameter.type.optional ? Variant(Variant::Missing{}) : ZeroOf(parameter.type.kind);
        parameters.push_back(std::move(parameter));
    }
    return parameters;
}

[[noreturn]] void Raise(ErrorNumber number, const char* text) { throw Failure(number, QString::fromLatin1(text)); }

// The arguments of one call in the order of the function's parameters.
class Bound
{
public:
    Bound(const MemberTable::Member& member, bool hasValue, const CallArguments& arguments)
    {
        const auto count = member.parameters.size();
        std::span<const Variant> positional = arguments.positional;
        if (hasValue) {
            if (positional.empty())
                Raise(ErrorNumber::ArgumentNotOptional, "Argument not optional");
            at_[count] = &positional.back();
            positional = positional.first(positional.size() - 1);
        }
        if (positional.size() > count)
            Raise(ErrorNumber::TooManyArguments, "Wrong number of arguments or invalid property assignment");
        for (std::size_t i = 0; i < positional.size(); ++i)
            if (!positional[i].IsMissing())
                at_[i] = &positional[i];
        for (const NamedArgument& named : arguments.named) {
            const auto index = static_cast<std::size_t>(named.index);
            if (index >= count || at_[index] != nullptr)
                Raise(ErrorNumber::NoSuchArgument, "Named argument not found");
            at_[index] = &named.value;
        }
        for (std::size_t i = 0; i < count; ++i) {
            if (at_[i] != nullptr)
                continue;
            if (!member.parameters[i].optional)
                Raise(ErrorNumber::ArgumentNotOptional, "Argument not optional");
            at_[i] = &member.parameters[i].fallback;
        }
    }
    const Variant* const* Arguments() const { return at_.data(); }

private:
    std::array<const Variant*, kMaxParameters + 1> at_{};
};

struct Choice
{
    const Handler* handler = nullptr;
    bool hasValue = false;
};

Choice Choose(const MemberRow& row, quint8 kinds)
{
    if ((kinds & InvokeKind::Method) != 0 && row.method.run != nullptr)
        return {&row.method, false};
    if ((kinds & InvokeKind::Get) != 0 && row.get.run != nullptr)
        return {&row.get, false};
    if ((kinds & InvokeKind::Let) != 0 && row.let.run != nullptr)
        return {&row.let, true};
    if ((kinds & InvokeKind::Set) != 0 && row.set.run != nullptr)
        return {&row.set, true};
    return {};
}

} // namespace

Variant RaiseNotImplemented(Object&, const Variant* const*) { Raise(ErrorNumber::NotImplemented, "Not implemented"); }

MemberTable::MemberTable(const char* className, std::span<const MemberRow> rows)
    : className_(QString::fromLatin1(className))
{
    members_.reserve(rows.size());
    for (const MemberRow& row : rows) {
        byId_.emplace_back(row.id, members_.size());
        byName_.insert(QString::fromLatin1(row.name).toLower(), members_.size());
        members_.push_back({&row, ReadParameters(row)});
    }
    std::sort(byId_.begin(), byId_.end());
}

const MemberTable::Member* MemberTable::Find(MemberId id) const
{
    const auto at = std::lower_bound(byId_.begin(), byId_.end(), std::pair(id, std::size_t(0)));
    return at != byId_.end() && at->first == id ? &members_[at->second] : nullptr;
}

const MemberTable::Member* MemberTable::FindName(const QString& name) const
{
    const auto at = byName_.constFind(name.toLower());
    return at != byName_.constEnd() ? &members_[*at] : nullptr;
}

Variant MemberTable::Invoke(Object& self, MemberId id, quint8 kinds, const CallArguments& arguments) const
{
    const ObjectRef alive(&self); // the call may let go of the last reference
    const Member* member = Find(id);
    try {
        const Choice choice = member != nullptr ? Choose(*member->row, kinds) : Choice{};
        if (choice.handler == nullptr)
            Raise(ErrorNumber::NoSuchMember, "Object doesn't support this property or method");
        const Bound bound(*member, choice.hasValue, arguments);
        Variant result = choice.handler->run(self, bound.Arguments());
        if (member->row->result == Variant::Kind::Int16 && result.IsBoolean())
            return static_cast<qint16>(result.ToInteger());
        return result;
    } catch (const Failure& failure) {
        if (!failure.Source().isEmpty())
            throw;
        throw Failure(failure.Number(), failure.Text(), className_);
    }
}

bool TableObject::Answers(const QUuid& interfaceId) const
{
    const ClassIdentity* identity = Table().Identity();
    return identity != nullptr && std::any_of(identity->interfaces.begin(), identity->interfaces.end(),
                                              [&](const InterfaceIdentity& each) { return each.id == interfaceId; });
}

std::optional<int> TableObject::IndexOfArgument(MemberId member, const QString& name) const
{
    const MemberTable::Member* found = Table().Find(member);
    if (found == nullptr)
        return std::nullopt;
    for (std::size_t i = 0; i < found->parameters.size(); ++i)
        if (found->parameters[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    return std::nullopt;
}

std::optional<MemberId> TableObject::FindName(const QString& name) const
{
    const MemberTable::Member* member = Table().FindName(name);
    return member != nullptr ? std::optional(member->row->id) : std::nullopt;
}

} // namespace kestrune
