#pragma once

// The members of a class that other programs and scripts can reach, as one table. A row names the member, its
// number and parameters, and the C++ function that serves it by pointer: who forwards and converts is made by the
// compiler, so a class with hundreds of members has hundreds of rows and no forwarding function.
//
//     using M = Members<clsSession>;
//     constexpr MemberRow kRows[] = {
//         M::Method<&clsSession::Move>(31, "Move", "Left, [Top = -1], [Width = -1], [Height = -1]"),
//         M::Property<&clsSession::Caption, &clsSession::SetCaption>(32, "Caption"),
//         M::Get<&ctlEmulator::CursorRow>(33, "CursorRow"), // served by a part of the object
//     };
//
// A function of another class is served by what the object's Served(Other*) gives for it.

#include <dispatch/conversion.h>
#include <dispatch/identity.h>

#include <QHash>

#include <array>
#include <functional>
#include <string_view>
#include <tuple>

namespace kestrune {

inline constexpr int kMaxParameters = 24;

struct ParameterType
{
    Variant::Kind kind = Variant::Kind::Empty; // Empty: any
    bool byReference = false;
    bool optional = false; // left out is a value of its own for the function
};

struct Handler // one function that serves a member in one way
{
    // arguments: as many as the function has, none null
    using Run = Variant (*)(Object& self, const Variant* const* arguments);
    Run run = nullptr;
    const ParameterType* types = nullptr;
    int count = 0;
};

struct MemberRow
{
    MemberId id = 0;
    const char* name = "";
    const char* parameters = ""; // "First, [Second = 5], [Third = True]": names, brackets round optional ones
    Variant::Kind result = Variant::Kind::Empty;
    Handler method, get, let, set; // let and set take the value last

    constexpr quint8 Kinds() const
    {
        return static_cast<quint8>((method.run ? InvokeKind::Method : 0) | (get.run ? InvokeKind::Get : 0) |
                                   (let.run ? InvokeKind::Let : 0) | (set.run ? InvokeKind::Set : 0));
    }
};

struct Parameter
{
    QString name;
    ParameterType type;
    bool optional = false;
    Variant fallback; // for one that is left out; Missing: the function is told so
};

// A table made ready for lookups; one for each class, alive as long as the program.
class MemberTable
{
public:
    MemberTable(const char* className, std::span<const MemberRow> rows);
    MemberTable(const ClassIdentity& identity, std::span<const MemberRow> rows) : MemberTable(identity.name, rows)
    {
        identity_ = &identity;
    }

    struct Member
    {
        const MemberRow* row = nullptr;
        std::vector<Parameter> parameters;
    };

    QString ClassName() const { return className_; }
    const ClassIdentity* Identity() const { return identity_; } // null: a class that nobody binds to
    const std::vector<Member>& All() const { return members_; } // in the order of the rows
    const Member* Find(MemberId id) const;
    const Member* FindName(const QString& name) const;

    Variant Invoke(Object& self, MemberId id, quint8 kinds, const CallArguments& arguments) const;

private:
    QString className_;
    const ClassIdentity* identity_ = nullptr;
    std::vector<Member> members_;
    std::vector<std::pair<MemberId, std::size_t>> byId_;
    QHash<QString, std::size_t> byName_; // lower case
};

// An object whose members stand in a table.
class TableObject : public Object
{
public:
    virtual const MemberTable& Table() const = 0;
    QString ClassName() const override { return Table().ClassName(); }
    bool Answers(const QUuid& interfaceId) const; // as this interface, by the same members
    std::optional<int> IndexOfArgument(MemberId member, const QString& name) const override;
    using Object::Invoke;
    Variant Invoke(MemberId member, quint8 kinds, const CallArguments& arguments) override
    {
        return Table().Invoke(*this, member, kinds, arguments);
    }

protected:
    std::optional<MemberId> FindName(const QString& name) const override;
};

constexpr bool DistinctMembers(std::span<const MemberRow> rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = i + 1; j < rows.size(); ++j)
            if (rows[i].id == rows[j].id || std::string_view(rows[i].name) == rows[j].name)
                return false;
    return true;
}

Variant RaiseNotImplemented(Object& self, const Variant* const* arguments);

namespace memberdetail {

template <typename F>
struct Function;
template <typename R, typename C, typename... A>
struct Function<R (C::*)(A...)>
{
    using Result = R;
    using Class = C;
    using Arguments = std::tuple<A...>;
};
template <typename R, typename C, typename... A>
struct Function<R (C::*)(A...) const> : Function<R (C::*)(A...)>
{};
template <typename R, typename C, typename... A>
struct Function<R (C::*)(A...) const noexcept> : Function<R (C::*)(A...)>
{};
template <typename R, typename C, typename... A>
struct Function<R (C::*)(A...) noexcept> : Function<R (C::*)(A...)>
{};
template <typename R, typename C, typename... A>
struct Function<R (*)(C&, A...)> // a free function with the object first
    : Function<R (C::*)(A...)>
{};

template <typename A>
inline constexpr bool kByReference = std::is_lvalue_reference_v<A> && !std::is_const_v<std::remove_reference_t<A>>;
template <typename T>
inline constexpr bool kOptional = false;
template <typename T>
inline constexpr bool kOptional<std::optional<T>> = true;

template <typename Tuple>
struct Types;
template <typename... A>
struct Types<std::tuple<A...>>
{
    static constexpr std::array<ParameterType, sizeof...(A)> value{
        ParameterType{Convert<std::remove_cvref_t<A>>::kKind, kByReference<A>,
                      kOptional<std::remove_cvref_t<A>> || std::same_as<std::remove_cvref_t<A>, Variant>}...};
};

template <typename Self, typename Class>
Class& Serve(Object& object)
{
    auto& self = static_cast<Self&>(object);
    if constexpr (std::derived_from<Self, Class>)
        return self;
    else
        return self.Served(static_cast<Class*>(nullptr));
}

template <typename A>
void WriteBack(const Variant& argument, const std::remove_cvref_t<A>& value)
{
    if constexpr (kByReference<A>) {
        const Variant* at = &argument;
        const Variant::Reference* last = nullptr;
        while (const auto* reference = at->As<Variant::Reference>()) {
            last = reference;
            at = reference->target;
        }
        if (last != nullptr)
            *last->target = Convert<std::remove_cvref_t<A>>::To(value);
    }
}

template <typename Self, auto F>
struct Thunk
{
    using Signature = Function<decltype(F)>;
    using Arguments = typename Signature::Arguments;
    static constexpr std::size_t kCount = std::tuple_size_v<Arguments>;
    static_assert(kCount <= kMaxParameters);

    static Variant Run(Object& object, const Variant* const* arguments)
    {
        return Apply(object, arguments, std::make_index_sequence<kCount>());
    }

    static constexpr Handler kHandler{&Run, Types<Arguments>::value.data(), static_cast<int>(kCount)};

private:
    template <std::size_t... I>
    static Variant Apply(Object& object, [[maybe_unused]] const Variant* const* arguments, std::index_sequence<I...>)
    {
        using Result = typename Signature::Result;
        auto& target = Serve<Self, typename Signature::Class>(object);
        std::tuple<std::remove_cvref_t<std::tuple_element_t<I, Arguments>>...> values{
            Convert<std::remove_cvref_t<std::tuple_element_t<I, Arguments>>>::From(*arguments[I])...};
        const auto writeBack = [&] {
            (WriteBack<std::tuple_element_t<I, Arguments>>(*arguments[I], std::get<I>(values)), ...);
        };
        if constexpr (std::is_void_v<Result>) {
            std::invoke(F, target, std::get<I>(values)...);
            writeBack();
            return {};
        } else {
            Variant result = Convert<std::remove_cvref_t<Result>>::To(std::invoke(F, target, std::get<I>(values)...));
            writeBack();
            return result;
        }
    }
};

constexpr int CountParameters(std::string_view text)
{
    int count = text.find_first_not_of(' ') == std::string_view::npos ? 0 : 1;
    for (const char c : text)
        count += c == ',';
    return count;
}

template <typename R>
inline constexpr Variant::Kind kResult = Convert<std::remove_cvref_t<R>>::kKind;
template <>
inline constexpr Variant::Kind kResult<void> = Variant::Kind::Empty;

} // namespace memberdetail

template <typename Self>
struct Members
{
    template <auto F>
    static constexpr MemberRow Method(MemberId id, const char* name, const char* parameters = "")
    {
        MemberRow row = Row<F>(id, name, parameters, 0);
        row.method = memberdetail::Thunk<Self, F>::kHandler;
        return row;
    }
    template <auto F>
    static constexpr MemberRow Get(MemberId id, const char* name, const char* parameters = "")
    {
        MemberRow row = Row<F>(id, name, parameters, 0);
        row.get = memberdetail::Thunk<Self, F>::kHandler;
        return row;
    }
    template <auto F>
    static constexpr MemberRow Let(MemberId id, const char* name, const char* parameters = "")
    {
        MemberRow row = Row<F>(id, name, parameters, 1);
        row.let = memberdetail::Thunk<Self, F>::kHandler;
        return row;
    }
    template <auto G, auto L>
    static constexpr MemberRow Property(MemberId id, const char* name, const char* parameters = "")
    {
        MemberRow row = Get<G>(id, name, parameters);
        row.let = Let<L>(id, name, parameters).let;
        return row;
    }
    // A property that holds an object: assigned by Set.
    template <auto G, auto S>
    static constexpr MemberRow ObjectProperty(MemberId id, const char* name, const char* parameters = "")
    {
        MemberRow row = Get<G>(id, name, parameters);
        row.set = Let<S>(id, name, parameters).let;
        return row;
    }
    // Published, and fails with NotImplemented however it is called.
    static constexpr MemberRow Unserved(MemberId id, const char* name, quint8 kinds, const char* parameters = "")
    {
        const int count = memberdetail::CountParameters(parameters);
        MemberRow row;
        row.id = id;
        row.name = name;
        row.parameters = parameters;
        const auto handler = [&](quint8 kind, int values) {
            return (kinds & kind) != 0 ? Handler{&RaiseNotImplemented, nullptr, count + values} : Handler{};
        };
        row.method = handler(InvokeKind::Method, 0);
        row.get = handler(InvokeKind::Get, 0);
        row.let = handler(InvokeKind::Let, 1);
        row.set = handler(InvokeKind::Set, 1);
        return row;
    }

private:
    template <auto F>
    static constexpr MemberRow Row(MemberId id, const char* name, const char* parameters, int values)
    {
        using Thunk = memberdetail::Thunk<Self, F>;
        if (memberdetail::CountParameters(parameters) + values != static_cast<int>(Thunk::kCount))
            throw "the row names more or fewer parameters than the function has";
        MemberRow row;
        row.id = id;
        row.name = name;
        row.parameters = parameters;
        row.result = memberdetail::kResult<typename Thunk::Signature::Result>;
        return row;
    }
};

// A truth value that callers see as a 16-bit number, -1 or 0.
constexpr MemberRow Boolean16(MemberRow row)
{
    row.result = Variant::Kind::Int16;
    return row;
}

} // namespace kestrune
