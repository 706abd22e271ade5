#include "hivefile.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

bool SameHiveName(const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

constexpr std::array<std::pair<char16_t, char16_t>, 5> kEscapes = {
    {{u'\\', u'\\'}, {u'"', u'"'}, {u'n', u'\n'}, {u'r', u'\r'}, {u't', u'\t'}}};

// What UTF-8 cannot hold, and what would not be seen by a person, stands as \uXXXX.
QString Quoted(const QString& text)
{
    const bool valid = text.isValidUtf16();
    QString quoted = u"\""_s;
    for (const QChar c : text) {
        const auto escape = std::ranges::find(kEscapes, c.unicode(), &std::pair<char16_t, char16_t>::second);
        if (escape != kEscapes.end())
            quoted += u'\\', quoted += QChar(escape->first);
        else if (c.unicode() < 0x20 || (!valid && c.isSurrogate()))
            quoted += u"\\u%1"_s.arg(uint(c.unicode()), 4, 16, QChar(u'0'));
        else
            quoted += c;
    }
    return quoted + u'"';
}

// The quoted text at the head of `rest`, which is moved behind it.
std::optional<QString> TakeQuoted(QStringView& rest)
{
    if (!rest.startsWith(u'"'))
        return std::nullopt;
    QString text;
    for (qsizetype i = 1; i < rest.size(); ++i) {
        const QChar c = rest[i];
        if (c == u'"') {
            rest = rest.sliced(i + 1).trimmed();
            return text;
        }
        if (c != u'\\') {
            text += c;
            continue;
        }
        if (++i == rest.size())
            return std::nullopt;
        const auto escape = std::ranges::find(kEscapes, rest[i].unicode(), &std::pair<char16_t, char16_t>::first);
        bool isNumber = false;
        const ushort number = rest[i] == u'u' ? rest.mid(i + 1, 4).toUShort(&isNumber, 16) : ushort(0);
        if (escape != kEscapes.end())
            text += QChar(escape->second);
        else if (isNumber && rest.size() >= i + 5)
            text += QChar(number), i += 4;
        else
            return std::nullopt;
    }
    return std::nullopt;
}

constexpr QStringView kExpand = u"expand:";

} // namespace

QByteArray HiveFile::Heading()
{
    return "# Settings of Kestrune. The program may be running while this file is edited.\n";
}

HiveFile HiveFile::Parse(const QByteArray& content)
{
    HiveFile file;
    if (content.isEmpty())
        return file;
    auto raws = content.split('\n');
    if (raws.back().isEmpty())
        raws.removeLast();
    for (const auto& raw : raws)
        file.lines_.push_back(Classify(raw));
    return file;
}

QByteArray HiveFile::Serialise() const
{
    QByteArray content;
    for (const auto& line : lines_)
        content += line.raw + '\n';
    return content;
}

HiveFile::Line HiveFile::Classify(const QByteArray& raw)
{
    Line line;
    line.raw = raw;
    const QString text = QString::fromUtf8(raw).trimmed();
    if (text.startsWith(u'[') && text.endsWith(u']')) {
        line.kind = Kind::Key;
        line.name = text.sliced(1, text.size() - 2);
        return line;
    }
    QStringView rest = text;
    const auto name = TakeQuoted(rest);
    if (!name || !rest.startsWith(u'='))
        return line;
    rest = rest.sliced(1).trimmed();
    const bool expandable = rest.startsWith(kExpand);
    if (expandable)
        rest = rest.sliced(kExpand.size()).trimmed();
    const auto value = TakeQuoted(rest);
    if (!value || !rest.isEmpty())
        return line;
    line.kind = Kind::Value;
    line.name = *name;
    line.value = {expandable ? HiveValueType::Expandable : HiveValueType::String, *value};
    return line;
}

HiveFile::Line HiveFile::Make(const QString& name, const HiveValue& value)
{
    const QString type = value.type == HiveValueType::Expandable ? kExpand.toString() : QString();
    return {Kind::Value, name, value, (Quoted(name) + u" = "_s + type + Quoted(value.text)).toUtf8()};
}

// Calls visit(index of a value's line) until it says false; all blocks of the key count.
template <typename Visit>
void HiveFile::EachValue(const QString& key, Visit visit) const
{
    bool inside = false;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        if (lines_[i].kind == Kind::Key)
            inside = SameHiveName(lines_[i].name, key);
        else if (inside && lines_[i].kind == Kind::Value && !visit(i))
            return;
    }
}

std::optional<HiveValue> HiveFile::Get(const QString& key, const QString& name) const
{
    std::optional<HiveValue> found;
    EachValue(key, [&](std::size_t i) {
        if (SameHiveName(lines_[i].name, name))
            found = lines_[i].value;
        return !found;
    });
    return found;
}

bool HiveFile::HasKey(const QString& key) const
{
    return std::ranges::any_of(lines_, [&](const Line& line) {
        return line.kind == Kind::Key &&
               (SameHiveName(line.name, key) || line.name.startsWith(key + u'\\', Qt::CaseInsensitive));
    });
}

QStringList HiveFile::Keys(const QString& key) const
{
    const QString front = key.isEmpty() ? QString() : key + u'\\';
    QStringList keys;
    for (const auto& line : lines_) {
        if (line.kind != Kind::Key || !line.name.startsWith(front, Qt::CaseInsensitive))
            continue;
        const QString child = line.name.sliced(front.size()).section(u'\\', 0, 0);
        if (!child.isEmpty() && !keys.contains(child, Qt::CaseInsensitive))
            keys += child;
    }
    return keys;
}

QStringList HiveFile::Values(const QString& key) const
{
    QStringList names;
    EachValue(key, [&](std::size_t i) {
        if (!names.contains(lines_[i].name, Qt::CaseInsensitive))
            names += lines_[i].name;
        return true;
    });
    return names;
}

void HiveFile::Set(const QString& key, const QString& name, const HiveValue& value)
{
    std::optional<std::size_t> same, last;
    EachValue(key, [&](std::size_t i) {
        if (SameHiveName(lines_[i].name, name))
            same = i;
        last = i;
        return !same;
    });
    if (same) {
        lines_[*same] = Make(lines_[*same].name, value);
        return;
    }
    if (!last) {
        const auto header = std::ranges::find_if(
            lines_, [&](const Line& line) { return line.kind == Kind::Key && SameHiveName(line.name, key); });
        last = std::size_t(header - lines_.begin());
        if (header == lines_.end()) {
            if (!lines_.empty())
                lines_.push_back({}), ++*last;
            lines_.push_back(Classify((u"["_s + key + u"]"_s).toUtf8()));
        }
    }
    lines_.insert(lines_.begin() + std::ptrdiff_t(*last + 1), Make(name, value));
}

void HiveFile::Remove(const QString& key, const QString& name)
{
    std::vector<std::size_t> gone;
    EachValue(key, [&](std::size_t i) {
        if (SameHiveName(lines_[i].name, name))
            gone.push_back(i);
        return true;
    });
    for (auto i = gone.rbegin(); i != gone.rend(); ++i)
        lines_.erase(lines_.begin() + std::ptrdiff_t(*i));
}

void HiveFile::RemoveKey(const QString& key)
{
    bool inside = false;
    std::erase_if(lines_, [&](const Line& line) {
        if (line.kind == Kind::Key)
            inside = SameHiveName(line.name, key);
        const bool foreign = line.kind == Kind::Other && !line.raw.trimmed().isEmpty();
        return inside && !foreign;
    });
}

} // namespace kestrune
