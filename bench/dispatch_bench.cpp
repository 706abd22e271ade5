// What a late-bound call costs inside the process, by member id, on a class with as many members as a session has.
// Prints nanoseconds per call, the best of several rounds; the goal is 200.

#include <dispatch/membertable.h>

#include <chrono>
#include <cstdio>

namespace {

using namespace kestrune;

class Bench final : public TableObject
{
public:
    qint32 Number() const { return number_; }
    void SetNumber(qint32 value) { number_ = value; }
    QString Text(qint16 first, const QString& second) { return first > 0 ? second : QString(); }
    const MemberTable& Table() const override;

private:
    qint32 number_ = 1;
};

constexpr std::size_t kMembers = 338;
const char* const kNoName = "Member";

std::array<MemberRow, kMembers> Rows()
{
    using M = Members<Bench>;
    constexpr MemberRow number = M::Property<&Bench::Number, &Bench::SetNumber>(0, "Number");
    constexpr MemberRow text = M::Method<&Bench::Text>(0, "Text", "First, [Second = \"x\"]");
    std::array<MemberRow, kMembers> rows;
    for (std::size_t i = 0; i < kMembers; ++i) {
        rows[i] = i % 2 ? text : number;
        rows[i].id = static_cast<MemberId>(i);
        rows[i].name = kNoName;
    }
    return rows;
}

const MemberTable& Bench::Table() const
{
    static const auto rows = Rows();
    static const MemberTable table("Bench", rows);
    return table;
}

void Measure(const char* what, Object& object, MemberId id, quint8 kind, std::initializer_list<Variant> arguments)
{
    constexpr int calls = 1'000'000;
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < calls; ++i)
            object.Invoke(id, kind, {arguments, {}});
        const std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count() / calls);
    }
    std::printf("%-36s %7.1f ns\n", what, best);
}

} // namespace

int main()
{
    const Ref<Bench> object = MakeObject<Bench>();
    Measure("get a number", *object, 100, InvokeKind::Method | InvokeKind::Get, {});
    Measure("let a number", *object, 100, InvokeKind::Let, {qint32(5)});
    Measure("let a number from text", *object, 100, InvokeKind::Let, {QStringLiteral("5")});
    Measure("method, two arguments", *object, 101, InvokeKind::Method, {qint16(1), QStringLiteral("text")});
    Measure("method, default filled in", *object, 101, InvokeKind::Method, {qint16(1)});
}
