#include <help/helpbook.h>

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

bool Leads(const HelpBook& book, const HelpPlace& place)
{
    const HelpText* page = book.Page(place.page);
    return page != nullptr && (place.heading.isEmpty() ||
                               std::any_of(page->sections.begin(), page->sections.end(),
                                           [&](const HelpSection& each) { return each.heading == place.heading; }));
}

// What a page promises its reader: a title of its own, links that lead somewhere, nothing that needs a network.
TEST(HelpBook, PagesAreWhole)
{
    const HelpBook book;
    ASSERT_GE(book.Pages().size(), 13u);
    QStringList titles;
    for (const HelpText& page : book.Pages()) {
        const std::string name = page.name.toStdString();
        EXPECT_TRUE(page.markdown.startsWith(u"# "_s + page.title)) << name;
        EXPECT_FALSE(titles.contains(page.title)) << name;
        titles.append(page.title);
        EXPECT_FALSE(page.markdown.contains(u"<!--"_s)) << name;
        EXPECT_FALSE(page.markdown.contains(u"://"_s)) << name;
        static const QRegularExpression link(u"\\]\\(([^)]*)\\)"_s);
        for (auto links = link.globalMatch(page.markdown); links.hasNext();) {
            const QString to = links.next().captured(1);
            EXPECT_TRUE(Leads(book, book.Target(to, page.name))) << name << ": " << to.toStdString();
        }
    }
}

TEST(HelpBook, IndexIsSortedAndLeadsSomewhere)
{
    const HelpBook book;
    ASSERT_GE(book.Index().size(), 60u);
    QString before;
    for (const HelpEntry& entry : book.Index()) {
        EXPECT_FALSE(entry.word.isEmpty());
        EXPECT_LE(before.compare(entry.word, Qt::CaseInsensitive), 0) << entry.word.toStdString();
        EXPECT_TRUE(Leads(book, entry.place)) << entry.word.toStdString();
        before = entry.word;
    }
}

TEST(HelpBook, SearchTakesEveryWordAndHeadingsFirst)
{
    const HelpBook book;
    struct Row
    {
        const char16_t* query;
        HelpPlace first; // no page: nothing is found
    };
    const Row rows[] = {
        {u"capture", {u"capture"_s, {}}},
        {u"ALT menus", {u"keys"_s, u"Alt and the menus"_s}},
        {u"kestrune-rebind --install", {u"resume"_s, u"Going on where you were"_s}},
        {u"ScreenPrinterName", {u"printing"_s, u"Where it goes"_s}},
        {u"zebra", {}},
        {u"   ", {}},
        {u"", {}},
    };
    for (const Row& row : rows) {
        const std::vector<HelpHit> hits = book.Search(QString::fromUtf16(row.query));
        const HelpPlace first = hits.empty() ? HelpPlace() : hits.front().place;
        EXPECT_EQ(first.page.toStdString() + '#' + first.heading.toStdString(),
                  row.first.page.toStdString() + '#' + row.first.heading.toStdString());
        for (const HelpHit& hit : hits)
            EXPECT_FALSE(hit.excerpt.contains(u'`') || hit.excerpt.contains(u'|')) << hit.excerpt.toStdString();
    }
}

TEST(HelpBook, LinksLeadWithinTheBookOnly)
{
    const HelpBook book;
    EXPECT_EQ(book.Target(u"keys.md"_s, u"start"_s), (HelpPlace{u"keys"_s, {}}));
    EXPECT_EQ(book.Target(u"#Links"_s, u"mouse"_s), (HelpPlace{u"mouse"_s, u"Links"_s}));
    for (const QString& out : {u"https://example.com/"_s, u"file:///etc/passwd"_s, u"nothing.md"_s})
        EXPECT_EQ(book.Target(out, u"start"_s).page, QString()) << out.toStdString();
}

} // namespace

} // namespace kestrune
