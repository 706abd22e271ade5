#include <help/helpbook.h>

#include <help/helppages.h>

#include <QRegularExpression>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// The words of a line as they are read: links by their text, cells of tables apart, no marks.
QString WithoutMarks(const QString& line)
{
    static const QRegularExpression link(u"\\[([^\\]]*)\\]\\([^)]*\\)"_s);
    static const QRegularExpression rule(u"^\\|[-|]+\\|$"_s);
    if (rule.match(line).hasMatch())
        return {};
    QString text = line;
    text.replace(link, u"\\1"_s);
    text.remove(u'`').remove(u'*').replace(u'|', u' ');
    return text.simplified();
}

QString Excerpt(const QString& text, qsizetype at)
{
    constexpr qsizetype before = 30;
    constexpr qsizetype most = 110;
    qsizetype from = at <= before ? 0 : text.lastIndexOf(u' ', at - before) + 1;
    QString part = text.mid(from, most);
    if (from + most < text.size())
        part = part.left(part.lastIndexOf(u' ')) + u" \u2026"_s;
    return from > 0 ? u"\u2026 "_s + part : part;
}

bool HasAll(const QString& text, const QStringList& words)
{
    return std::all_of(words.begin(), words.end(),
                       [&](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}

} // namespace

HelpBook::HelpBook()
{
    for (const HelpSource& source : HelpSources())
        Add(QString::fromLatin1(source.name), QString::fromUtf8(source.text));
    std::stable_sort(index_.begin(), index_.end(), [](const HelpEntry& one, const HelpEntry& other) {
        return one.word.compare(other.word, Qt::CaseInsensitive) < 0;
    });
}

void HelpBook::Add(const QString& name, const QString& source)
{
    const auto index = "<!-- index:"_L1;
    HelpText page{name, {}, {}, {}};
    for (const QString& line : source.split(u'\n')) {
        if (line.startsWith(index)) {
            const QString heading = page.sections.size() > 1 ? page.sections.back().heading : QString();
            for (const QString& word : line.mid(index.size()).section(u"-->"_s, 0, 0).split(u';'))
                index_.push_back({word.trimmed(), {name, heading}});
            continue;
        }
        page.markdown += line + u'\n';
        const qsizetype marks =
            std::find_if(line.begin(), line.end(), [](QChar c) { return c != u'#'; }) - line.begin();
        if (marks > 0 && line.mid(marks).startsWith(u' '))
            page.sections.push_back({WithoutMarks(line.mid(marks)), {}});
        else if (const QString text = WithoutMarks(line); !text.isEmpty() && !page.sections.empty())
            page.sections.back().text += text + u' ';
    }
    page.title = page.sections.empty() ? name : page.sections.front().heading;
    pages_.push_back(std::move(page));
}

const HelpText* HelpBook::Page(const QString& name) const
{
    const auto at = std::find_if(pages_.begin(), pages_.end(), [&](const HelpText& page) { return page.name == name; });
    return at != pages_.end() ? &*at : nullptr;
}

std::vector<HelpHit> HelpBook::Search(const QString& query) const
{
    const QStringList words = query.split(u' ', Qt::SkipEmptyParts);
    std::vector<HelpHit> hits;
    if (words.isEmpty())
        return hits;
    std::vector<HelpHit> inText;
    for (const HelpText& page : pages_)
        for (const HelpSection& section : page.sections) {
            const bool isTop = &section == &page.sections.front();
            const bool inHeading = HasAll(section.heading, words);
            if (!inHeading && !HasAll(section.heading + u' ' + section.text, words))
                continue;
            const qsizetype at = std::max<qsizetype>(section.text.indexOf(words.first(), 0, Qt::CaseInsensitive), 0);
            (inHeading ? hits : inText)
                .push_back({{page.name, isTop ? QString() : section.heading}, page.title, Excerpt(section.text, at)});
        }
    hits.insert(hits.end(), inText.begin(), inText.end());
    return hits;
}

HelpPlace HelpBook::Target(const QString& link, const QString& from) const
{
    QString page = link.section(u'#', 0, 0);
    if (page.endsWith(".md"_L1))
        page.chop(3);
    if (page.isEmpty())
        page = from;
    return Page(page) != nullptr ? HelpPlace{page, link.section(u'#', 1)} : HelpPlace();
}

} // namespace kestrune
