#pragma once

// The files recently opened, the latest first, for the File menu. Positions count from 1. Knows of no store: the
// application object loads and saves it.

#include <QString>
#include <QStringList>

namespace kestrune {

class clsRecentList
{
public:
    int ListSize() const { return listSize_; } // how many entries are kept, 4 at first
    void SetListSize(int size);                // a smaller size cuts the list
    int ListCount() const { return static_cast<int>(items_.size()); }
    QString ListItem(int index) const;                // Failure 381 outside 1 to ListCount
    void SetListItem(int index, const QString& name); // the same
    void AddItem(const QString& name);                // to the top; names compare without regard to case
    void RemoveItem(const QString& name);             // unknown: nothing
    void Load(const QStringList& names);              // from the store: cut to ListSize, empty names left out
    void Clear() { items_.clear(); }
    int MaxListSize() const { return maxListSize_; } // the largest ListSize that a setting may ask for
    void SetMaxListSize(int size);                   // 0 or less: ignored

private:
    qsizetype Find(const QString& name) const;

    QStringList items_;
    int listSize_ = 4;
    int maxListSize_ = 30;
};

} // namespace kestrune
