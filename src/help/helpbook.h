#pragma once

// The help pages as a book: contents, index and search, with no window. The pages are Markdown (data/help). A page
// begins with its title; a comment of the form <!-- index: paste; clipboard --> puts words of the heading above it
// into the index.

#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

namespace kestrune {

// A place in the book: a page, and the text of one of its headings; an empty heading is the page's top.
struct HelpPlace
{
    QString page;
    QString heading;

    bool operator==(const HelpPlace&) const = default;
};

struct HelpSection
{
    QString heading;
    QString text; // what a reader sees below it, without marks
};

struct HelpText
{
    QString name;
    QString title;
    QString markdown;                  // without the index comments
    std::vector<HelpSection> sections; // the first is the title's
};

struct HelpEntry
{
    QString word;
    HelpPlace place;
};

struct HelpHit
{
    HelpPlace place;
    QString title;   // of the page
    QString excerpt; // the words round the first one found
};

class HelpBook
{
public:
    HelpBook(); // the program's own pages

    const std::vector<HelpText>& Pages() const { return pages_; }
    const HelpText* Page(const QString& name) const;               // null: none
    const std::vector<HelpEntry>& Index() const { return index_; } // by word, without regard to case
    // The sections that hold every word of the query, those with all of them in the heading first.
    std::vector<HelpHit> Search(const QString& query) const;
    // Where a link of a page leads: "keys.md", "keys.md#Alt and the menus", "#..." within from. Empty page: nowhere.
    HelpPlace Target(const QString& link, const QString& from) const;

private:
    void Add(const QString& name, const QString& source);

    std::vector<HelpText> pages_;
    std::vector<HelpEntry> index_;
};

} // namespace kestrune
