// The screen as the giver of numbers: styles, clusters and links that cells name, and the sweep that takes back
// what no cell names any more.

#include "linewrapper.h"
#include "screen.h"

namespace kestrune::emu {
namespace {

// A sweep that found nearly everything in use is not tried again for so many wishes.
constexpr uint32_t kSweepPause = 16384;

} // namespace

StyleId Screen::StyleIdFor(const Style& style)
{
    uint32_t id = styles_.Intern(style);
    if (styles_.WantsSweep() && id != StyleTable::Full) {
        newestStyle_ = StyleId(id);
        Sweep();
    }
    if (id == StyleTable::Full && refusalsUntilSweep_-- == 0) {
        Sweep();
        id = styles_.Intern(style);
    }
    if (id == StyleTable::Full) { // more looks on one screen than there are numbers: colours go, text stays
        Style plain;
        plain.attributes = style.attributes;
        id = styles_.Intern(plain);
    }
    return id == StyleTable::Full ? StyleId(0) : StyleId(id);
}

uint32_t Screen::ClusterFor(std::u32string_view points)
{
    uint32_t text = clusters_.Intern(points);
    if (text == ClusterTable::Full && refusalsUntilSweep_-- == 0) {
        Sweep();
        text = clusters_.Intern(points);
    }
    return text == ClusterTable::Full ? uint32_t(points.front()) : text;
}

uint16_t Screen::LinkFor(std::string_view target, std::string_view hostId)
{
    const uint16_t link = links_.Intern(target, hostId);
    if (link != 0 || !links_.IsFull() || refusalsUntilSweep_-- != 0)
        return link;
    Sweep();
    return links_.Intern(target, hostId);
}

void Screen::MarkRow(const Row& row, std::vector<bool>& styles, std::vector<bool>& clusters) const
{
    for (const Cell& cell : row.Used()) {
        styles[cell.style] = true;
        if (cell.text & Cell::ClusterBit)
            clusters[cell.text & ~Cell::ClusterBit] = true;
    }
}

void Screen::Sweep()
{
    std::vector<bool> styles(styles_.Size(), false);
    std::vector<bool> clusters(clusters_.Size(), false);
    std::vector<bool> links(LinkTable::Max + 1, false);
    std::vector<const Page*> pages{main_.get(), alternate_.get(), status_.get()};
    for (const auto& page : others_)
        pages.push_back(page.get());
    for (const Page* page : pages)
        for (int row = 0; page != nullptr && row < page->Extent().rows; ++row)
            MarkRow(page->At(row), styles, clusters);
    if (wrapper_ != nullptr) {
        MarkRow(wrapper_->Underway(), styles, clusters);
        wrapper_->Target().ForgetNumbers();
    }
    history_.VisitLooks([&](const Row& row) { MarkRow(row, styles, clusters); });
    styles[penId_] = true;
    styles[blankId_] = true;
    styles[newestStyle_] = true;

    for (size_t id = 0; id < styles.size(); ++id)
        if (styles[id])
            links[styles_.At(StyleId(id)).link] = true;
    history_.VisitStyles([&](const Style& style) { links[style.link] = true; });
    for (const CursorState* state : {&cursor_, &aside_.cursor, &saved_[0], &saved_[1], &saved_[2]})
        links[state->pen.link] = true;

    styles_.Keep(styles);
    clusters_.Keep(clusters);
    links_.Keep(links);
    history_.ForgetNumbers();
    const bool crowded = styles_.Live() > StyleTable::Max / 8 * 7 || clusters_.Live() > ClusterTable::Max / 8 * 7 ||
                         links_.Live() > LinkTable::Max / 8 * 7;
    refusalsUntilSweep_ = crowded ? kSweepPause : 0;
}

} // namespace kestrune::emu
