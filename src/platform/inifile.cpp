#include "inifile.h"

#include <dispatch/failure.h>

#include <QCoreApplication>
#include <QSet>

#include <algorithm>
#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kNamePrefix = 4096; // enough of a line to find its "="; longer names take the long way

bool SameName(const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

bool EndsValue(QChar c) { return c == u'\r' || c == u'\n' || c.isNull(); }

QString UpToEnd(const QString& text)
{
    const auto end = std::ranges::find_if(text, EndsValue);
    return text.left(end - text.begin());
}

QString Unquoted(const QString& text)
{
    const bool quoted =
        text.size() > 1 && (text.front() == u'"' || text.front() == u'\'') && text.front() == text.back();
    return quoted ? text.sliced(1, text.size() - 2) : text;
}

// Cuts content into lines, each with its end: CR LF, LF or CR, mixed as they come. unit: bytes of a character.
std::vector<QByteArray> SplitLines(QByteArrayView content, int unit, bool littleEndian)
{
    const auto at = [&](qsizetype i) -> int {
        if (i + unit > content.size())
            return -1;
        const auto first = uchar(content[i]);
        if (unit == 1)
            return first;
        const auto second = uchar(content[i + 1]);
        return littleEndian ? first | second << 8 : first << 8 | second;
    };
    std::vector<QByteArray> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < content.size();) {
        const int c = at(i);
        i += unit;
        if (c != '\r' && c != '\n')
            continue;
        if (c == '\r' && at(i) == '\n')
            i += unit;
        lines.push_back(content.sliced(start, i - start).toByteArray());
        start = i;
    }
    if (start < content.size())
        lines.push_back(content.sliced(start).toByteArray());
    return lines;
}

QString CheckedName(const QString& name, bool isKey)
{
    QString trimmed = name.trimmed();
    const bool broken = std::ranges::any_of(trimmed, EndsValue);
    const bool misread =
        isKey && (trimmed.isEmpty() || trimmed.contains(u'=') || trimmed.startsWith(u';') || trimmed.startsWith(u'['));
    if (broken || misread)
        throw Failure(ErrorNumber::InvalidCall,
                      QCoreApplication::translate("IniDocument", "'%1' cannot be a name in a settings file.").arg(name),
                      u"IniDocument"_s);
    return trimmed;
}

} // namespace

IniDocument IniDocument::Parse(const QByteArray& content)
{
    IniDocument document;
    document.encoding_ = DetectEncoding(content);
    document.mark_ = MarkOf(document.encoding_);
    const bool littleEndian =
        document.encoding_ == TextEncoding::Utf16Le || document.encoding_ == TextEncoding::Utf16LeMark;
    const auto body = QByteArrayView(content).sliced(document.mark_.size());
    for (auto& raw : SplitLines(body, IsUtf16(document.encoding_) ? 2 : 1, littleEndian))
        document.lines_.push_back(document.Classify(std::move(raw)));

    // Files travel between systems; a new one gets the line end that every reader of such files knows.
    document.lineEnd_ = u"\r\n"_s;
    if (!document.lines_.empty()) {
        const QString first = DecodeText(document.lines_.front().raw.right(4), document.PlainEncoding());
        const auto end = first.lastIndexOf(u'\n');
        if (first.endsWith(u'\r'))
            document.lineEnd_ = u"\r"_s;
        else if (first.endsWith(u'\n') && (end == 0 || first.at(end - 1) != u'\r'))
            document.lineEnd_ = u"\n"_s;
    }
    return document;
}

QByteArray IniDocument::Serialise() const
{
    QByteArray content = mark_;
    for (const auto& line : lines_)
        content += line.raw;
    if (HasMark(encoding_) || encoding_ == DetectEncoding(content))
        return content;
    // Without a mark the next reader goes by content: what it would misread gets a mark. (A file that has become
    // plain ASCII reads the same either way.)
    if (DecodeText(content, DetectEncoding(content)) == DecodeText(content, encoding_))
        return content;
    IniDocument marked = *this;
    marked.Convert(TextEncoding::Utf16LeMark);
    return marked.Serialise();
}

// Lines are decoded one by one, so none of them carries the file's mark.
TextEncoding IniDocument::PlainEncoding() const
{
    switch (encoding_) {
    case TextEncoding::Utf8Mark:
        return TextEncoding::Utf8;
    case TextEncoding::Utf16LeMark:
        return TextEncoding::Utf16Le;
    case TextEncoding::Utf16BeMark:
        return TextEncoding::Utf16Be;
    case TextEncoding::Ansi:
    case TextEncoding::Utf8:
    case TextEncoding::Utf16Le:
    case TextEncoding::Utf16Be:
        break;
    }
    return encoding_;
}

IniDocument::Line IniDocument::Classify(QByteArray raw) const
{
    Line line;
    line.raw = std::move(raw);
    QString text = DecodeText(line.raw.left(kNamePrefix), PlainEncoding());
    const bool needsAll = line.raw.size() > kNamePrefix && (!text.contains(u'=') || text.trimmed().startsWith(u'['));
    if (needsAll)
        text = DecodeText(line.raw, PlainEncoding());
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.startsWith(u';'))
        return line;
    if (trimmed.startsWith(u'[')) {
        const auto end = trimmed.lastIndexOf(u']');
        if (end > 0) {
            line.kind = Kind::Section;
            line.name = trimmed.sliced(1, end - 1).trimmed();
        }
        return line;
    }
    line.kind = Kind::Entry;
    const auto equals = text.indexOf(u'=');
    line.name = (equals < 0 ? text : text.left(equals)).trimmed();
    line.value = equals + 1; // 0: a name alone, without a value
    return line;
}

QString IniDocument::TextOf(const Line& line) const
{
    QString text = DecodeText(line.raw, PlainEncoding());
    while (text.endsWith(u'\n') || text.endsWith(u'\r'))
        text.chop(1);
    return text;
}

IniDocument::Line IniDocument::Make(const QString& text) const
{
    return Classify(EncodeText(QString(text + lineEnd_), PlainEncoding()));
}

std::optional<IniDocument::Range> IniDocument::Find(const QString& section) const
{
    const auto isHeader = [](const Line& line) { return line.kind == Kind::Section; };
    const auto begin = std::find_if(lines_.begin(), lines_.end(), [&](const Line& line) {
        return isHeader(line) && SameName(line.name, section.trimmed());
    });
    if (begin == lines_.end())
        return std::nullopt;
    const auto end = std::find_if(begin + 1, lines_.end(), isHeader);
    return Range{std::size_t(begin - lines_.begin()), std::size_t(end - lines_.begin())};
}

IniDocument::Range IniDocument::FindOrAdd(const QString& section)
{
    if (const auto range = Find(section))
        return *range;
    EndLastLine();
    if (!lines_.empty() && !TextOf(lines_.back()).trimmed().isEmpty())
        lines_.push_back(Make({}));
    lines_.push_back(Make(u"["_s + section + u"]"_s));
    return {lines_.size() - 1, lines_.size()};
}

void IniDocument::EndLastLine()
{
    if (lines_.empty())
        return;
    Line& last = lines_.back();
    if (IsUtf16(encoding_) && last.raw.size() % 2 != 0)
        last.raw += '\0'; // half a character at the end of the file: what follows must not be shifted by it
    const QString text = DecodeText(last.raw.right(4), PlainEncoding());
    if (!text.endsWith(u'\n') && !text.endsWith(u'\r'))
        last.raw += EncodeText(lineEnd_, PlainEncoding());
}

std::optional<QString> IniDocument::Get(const QString& section, const QString& key) const
{
    const auto range = Find(section);
    if (!range)
        return std::nullopt;
    for (auto i = range->begin + 1; i < range->end; ++i) {
        const Line& line = lines_[i];
        if (line.kind == Kind::Entry && line.value > 0 && SameName(line.name, key.trimmed()))
            return Unquoted(UpToEnd(TextOf(line).sliced(line.value)).trimmed());
    }
    return std::nullopt;
}

QStringList IniDocument::Keys(const QString& section) const
{
    QStringList keys;
    QSet<QString> seen;
    if (const auto range = Find(section))
        for (auto i = range->begin + 1; i < range->end; ++i) {
            const Line& line = lines_[i];
            const QString folded = line.name.toCaseFolded();
            if (line.kind != Kind::Entry || line.name.isEmpty() || seen.contains(folded))
                continue;
            seen.insert(folded);
            keys += line.name;
        }
    return keys;
}

QStringList IniDocument::Sections() const
{
    QStringList sections;
    for (const auto& line : lines_)
        if (line.kind == Kind::Section && !sections.contains(line.name, Qt::CaseInsensitive))
            sections += line.name;
    return sections;
}

QStringList IniDocument::SectionLines(const QString& section) const
{
    QStringList texts;
    if (const auto range = Find(section))
        for (auto i = range->begin + 1; i < range->end; ++i)
            if (lines_[i].kind == Kind::Entry)
                texts += TextOf(lines_[i]).trimmed();
    return texts;
}

void IniDocument::Set(const QString& section, const QString& key, const QString& value)
{
    const QString sectionName = CheckedName(section, false);
    const QString keyName = CheckedName(key, true);
    const QString text = UpToEnd(value);
    MakeRoomFor(sectionName + keyName + text);
    const Range range = FindOrAdd(sectionName);
    auto behind = range.begin + 1;
    for (auto i = range.begin + 1; i < range.end; ++i) {
        Line& line = lines_[i];
        if (line.kind != Kind::Entry)
            continue;
        behind = i + 1;
        if (SameName(line.name, keyName)) {
            ReplaceValue(line, text);
            return;
        }
    }
    if (behind == lines_.size())
        EndLastLine();
    lines_.insert(lines_.begin() + std::ptrdiff_t(behind), Make(keyName + u"="_s + text));
}

// Keeps what stands in front of the value (the name's spelling, blanks) and the line's own end.
void IniDocument::ReplaceValue(Line& line, const QString& value)
{
    const QString old = DecodeText(line.raw, PlainEncoding());
    const QString bare = TextOf(line);
    QString front = line.value > 0 ? bare.left(line.value) : bare + u"="_s;
    for (auto i = front.size(); i < bare.size() && bare.at(i).isSpace(); ++i)
        front += bare.at(i);
    line = Classify(EncodeText(QString(front + value + old.sliced(bare.size())), PlainEncoding()));
}

bool IniDocument::Remove(const QString& section, const QString& key)
{
    const auto range = Find(section);
    if (!range)
        return false;
    const auto begin = lines_.begin() + std::ptrdiff_t(range->begin + 1);
    const auto end = lines_.begin() + std::ptrdiff_t(range->end);
    const auto kept = std::remove_if(
        begin, end, [&](const Line& line) { return line.kind == Kind::Entry && SameName(line.name, key.trimmed()); });
    const bool any = kept != end;
    lines_.erase(kept, end);
    return any;
}

// Comments right above the next section's header belong to that one and stay. All sections of the name go, or a
// second one would come to light.
bool IniDocument::RemoveSection(const QString& section)
{
    bool any = false;
    while (const auto range = Find(section)) {
        auto end = range->end;
        const auto isComment = [&](const Line& line) {
            return line.kind == Kind::Other && !TextOf(line).trimmed().isEmpty();
        };
        if (end < lines_.size())
            while (end > range->begin + 1 && isComment(lines_[end - 1]))
                --end;
        lines_.erase(lines_.begin() + std::ptrdiff_t(range->begin), lines_.begin() + std::ptrdiff_t(end));
        any = true;
    }
    return any;
}

void IniDocument::ReplaceSection(const QString& section, const QStringList& lines)
{
    const QString name = CheckedName(section, false);
    for (const auto& text : lines)
        MakeRoomFor(text);
    MakeRoomFor(name);
    const Range range = FindOrAdd(name);
    if (range.end == lines_.size())
        EndLastLine();
    std::vector<Line> fresh;
    for (const auto& text : lines)
        fresh.push_back(Make(UpToEnd(text)));
    const auto begin = lines_.begin() + std::ptrdiff_t(range.begin + 1);
    const auto end = lines_.begin() + std::ptrdiff_t(range.end);
    const auto kept = std::remove_if(begin, end, [](const Line& line) { return line.kind == Kind::Entry; });
    lines_.erase(kept, end);
    lines_.insert(lines_.begin() + std::ptrdiff_t(range.begin + 1), fresh.begin(), fresh.end());
}

void IniDocument::MakeRoomFor(const QString& text)
{
    if (!CanEncode(text, encoding_))
        Convert(TextEncoding::Utf16LeMark);
}

void IniDocument::Convert(TextEncoding encoding)
{
    if (encoding == encoding_)
        return;
    std::vector<QString> texts;
    for (const auto& line : lines_)
        texts.push_back(DecodeText(line.raw, PlainEncoding()));
    encoding_ = encoding;
    mark_ = MarkOf(encoding);
    for (std::size_t i = 0; i < lines_.size(); ++i)
        lines_[i] = Classify(EncodeText(texts[i], PlainEncoding()));
}

} // namespace kestrune
