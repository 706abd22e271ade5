#pragma once

// The window with the help pages: contents, index and search on the left, the page on the right. It shows what the
// program brings along and fetches nothing.

#include <help/helpbook.h>

#include <QWidget>

#include <functional>
#include <vector>

class QAction;
class QLineEdit;
class QListWidget;
class QSplitter;
class QTabWidget;
class QTextBrowser;
class QTreeWidget;

namespace kestrune {

class HelpViewer : public QWidget
{
    Q_OBJECT

public:
    // Where the window stands and what it shows, as one text that its owner keeps from one run to the next.
    struct Memory
    {
        std::function<QString()> read;
        std::function<void(const QString&)> write;
    };

    explicit HelpViewer(Memory memory, QWidget* parent = nullptr);

    enum class Side
    {
        Contents,
        Index,
        Search
    };
    // Shows the window in front, with this side.
    void Open(Side side);
    // Likewise, at a page; one that is not there is passed over.
    void Open(const HelpPlace& place);

    HelpPlace Place() const { return place_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Build();
    QWidget* BuildContents();
    QWidget* BuildIndex();
    QWidget* BuildSearch();
    void Restore();
    void Keep();
    void ShowInFront();
    void Go(const HelpPlace& place); // a step that Back undoes
    void Show(const HelpPlace& place);
    void Step(int by);
    void FilterIndex(const QString& text);
    void RunSearch(const QString& query);
    void UseStyle();

    HelpBook book_;
    Memory memory_;
    HelpPlace place_;
    std::vector<HelpPlace> visited_;
    std::size_t at_ = 0; // in visited_

    QTabWidget* sides_ = nullptr; // child widgets all
    QSplitter* splitter_ = nullptr;
    QTreeWidget* contents_ = nullptr;
    QLineEdit* indexFilter_ = nullptr;
    QListWidget* index_ = nullptr;
    QLineEdit* query_ = nullptr;
    QListWidget* hits_ = nullptr;
    QTextBrowser* page_ = nullptr;
    QAction* back_ = nullptr;
    QAction* forward_ = nullptr;
};

} // namespace kestrune
