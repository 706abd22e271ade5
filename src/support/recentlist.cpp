#include <support/recentlist.h>

#include <dispatch/failure.h>

#include <algorithm>

namespace kestrune {

namespace {

void CheckRecentIndex(int index, int count)
{
    if (index < 1 || index > count)
        throw Failure(ErrorNumber::BadIndex, QStringLiteral("Invalid property array index"),
                      QStringLiteral("clsRecentList"));
}

} // namespace

qsizetype clsRecentList::Find(const QString& name) const
{
    const auto same = [&](const QString& item) { return item.compare(name, Qt::CaseInsensitive) == 0; };
    const auto found = std::find_if(items_.begin(), items_.end(), same);
    return found == items_.end() ? -1 : found - items_.begin();
}

void clsRecentList::SetListSize(int size)
{
    listSize_ = std::max(size, 0);
    Load(items_);
}

QString clsRecentList::ListItem(int index) const
{
    CheckRecentIndex(index, ListCount());
    return items_.at(index - 1);
}

void clsRecentList::SetListItem(int index, const QString& name)
{
    CheckRecentIndex(index, ListCount());
    items_[index - 1] = name;
}

void clsRecentList::AddItem(const QString& name)
{
    if (const auto at = Find(name); at >= 0)
        items_.removeAt(at); // the new spelling replaces the old
    items_.prepend(name);
    Load(items_);
}

void clsRecentList::RemoveItem(const QString& name)
{
    if (const auto at = Find(name); at >= 0)
        items_.removeAt(at);
}

void clsRecentList::Load(const QStringList& names)
{
    QStringList kept;
    for (const QString& name : names)
        if (!name.isEmpty() && kept.size() < listSize_)
            kept.append(name);
    items_ = kept;
}

void clsRecentList::SetMaxListSize(int size)
{
    if (size > 0)
        maxListSize_ = size;
}

} // namespace kestrune
