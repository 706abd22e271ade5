#pragma once

// The shortcuts of all tools that a window shows, one listener for each key, wherever the tools stand.

#include <menubar/tamenubar.h>

#include <QHash>
#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QSet>

#include <map>
#include <vector>

class QShortcut;
class QWidget;

namespace kestrune {

class ShortcutKeys : public QObject
{
    Q_OBJECT

public:
    explicit ShortcutKeys(QWidget& window); // owned by it

    void Show(taMenuBar& model);
    void Refresh(const QSet<int>& keys);      // the tools of these keys have changed
    bool Has(const QKeySequence& keys) const; // and a tool that can be used listens

private:
    struct Place
    {
        QString band;
        int key;
    };
    struct Entry
    {
        QShortcut* listener = nullptr;
        std::vector<Place> places; // the first that can be used is run
    };

    void Collect(const QString& band, const std::vector<MenuTool>& tools);
    void Enable(Entry& entry) const;
    const MenuTool* Usable(const Place& place) const;
    void Run(const QKeySequence& keys);

    QWidget& window_;
    QPointer<taMenuBar> model_;
    std::map<QKeySequence, Entry> entries_;
    QHash<QString, QKeySequence> read_; // texts seen before
};

} // namespace kestrune
