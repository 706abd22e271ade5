#include <help/helpviewer.h>

#include <QAction>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QTabWidget>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocumentFragment>
#include <QTextTable>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kPageRole = Qt::UserRole;
constexpr int kHeadingRole = Qt::UserRole + 1;
constexpr QSize kUsualSize(900, 640);
constexpr int kSideWidth = 260;
constexpr int kLineHeight = 135; // per cent of the font's

template <typename Item>
HelpPlace PlaceOf(const Item& item)
{
    if constexpr (std::is_same_v<Item, QTreeWidgetItem>)
        return {item.data(0, kPageRole).toString(), item.data(0, kHeadingRole).toString()};
    else
        return {item.data(kPageRole).toString(), item.data(kHeadingRole).toString()};
}

QListWidgetItem* AddItem(QListWidget& list, const QString& text, const HelpPlace& place)
{
    auto* item = new QListWidgetItem(text, &list);
    item->setData(kPageRole, place.page);
    item->setData(kHeadingRole, place.heading);
    return item;
}

QTextBlock BlockOf(const QTextDocument& document, const QString& heading)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        if (block.blockFormat().headingLevel() > 0 && block.text() == heading)
            return block;
    return {};
}

// Room between lines, and lines round the cells of tables, which plain Markdown does not bring.
void Dress(QTextDocument& document, const QPalette& palette)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        QTextBlockFormat format;
        const int level = block.blockFormat().headingLevel();
        format.setLineHeight(level > 0 ? 100 : kLineHeight, QTextBlockFormat::ProportionalHeight);
        if (level > 1)
            format.setTopMargin(18);
        cursor.mergeBlockFormat(format);
    }
    for (QTextFrame* frame : document.rootFrame()->childFrames())
        if (auto* table = qobject_cast<QTextTable*>(frame)) {
            QTextTableFormat format = table->format();
            format.setBorderCollapse(true);
            format.setBorder(1);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(palette.brush(QPalette::Midlight));
            format.setCellPadding(5);
            format.setCellSpacing(0);
            format.setTopMargin(8);
            format.setBottomMargin(8);
            table->setFormat(format);
        }
}

} // namespace

HelpViewer::HelpViewer(Memory memory, QWidget* parent) : QWidget(parent, Qt::Window), memory_(std::move(memory))
{
    setWindowTitle(tr("Kestrune Help"));
    Build();
    Restore();
    UseStyle();
}

// --- parts

void HelpViewer::Build()
{
    sides_ = new QTabWidget;
    sides_->setDocumentMode(true);
    sides_->addTab(BuildContents(), tr("Contents"));
    sides_->addTab(BuildIndex(), tr("Index"));
    sides_->addTab(BuildSearch(), tr("Search"));

    page_ = new QTextBrowser;
    page_->setOpenLinks(false); // links lead to other pages, never out
    page_->setFrameShape(QFrame::NoFrame);
    page_->document()->setDocumentMargin(20);
    connect(page_, &QTextBrowser::anchorClicked, this,
            [this](const QUrl& link) { Go(book_.Target(link.toString(), place_.page)); });

    splitter_ = new QSplitter;
    splitter_->addWidget(sides_);
    splitter_->addWidget(page_);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({kSideWidth, kUsualSize.width() - kSideWidth});
    splitter_->setChildrenCollapsible(false);

    auto* bar = new QToolBar;
    back_ = bar->addAction(QIcon::fromTheme(u"go-previous"_s), tr("Back"));
    forward_ = bar->addAction(QIcon::fromTheme(u"go-next"_s), tr("Forward"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    back_->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Left));
    forward_->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Right));
    connect(back_, &QAction::triggered, this, [this] { Step(-1); });
    connect(forward_, &QAction::triggered, this, [this] { Step(1); });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] { Open(Side::Search); });

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(bar);
    column->addWidget(splitter_, 1);
}

QWidget* HelpViewer::BuildContents()
{
    contents_ = new QTreeWidget;
    contents_->setHeaderHidden(true);
    contents_->setFrameShape(QFrame::NoFrame);
    for (const HelpText& page : book_.Pages()) {
        auto* top = new QTreeWidgetItem(contents_, {page.title});
        top->setData(0, kPageRole, page.name);
        for (std::size_t i = 1; i < page.sections.size(); ++i) {
            auto* item = new QTreeWidgetItem(top, {page.sections[i].heading});
            item->setData(0, kPageRole, page.name);
            item->setData(0, kHeadingRole, page.sections[i].heading);
        }
    }
    connect(contents_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item != nullptr)
            Go(PlaceOf(*item));
    });
    return contents_;
}

QWidget* HelpViewer::BuildIndex()
{
    indexFilter_ = new QLineEdit;
    indexFilter_->setPlaceholderText(tr("Look for a word"));
    indexFilter_->setClearButtonEnabled(true);
    index_ = new QListWidget;
    index_->setFrameShape(QFrame::NoFrame);
    for (const HelpEntry& entry : book_.Index())
        AddItem(*index_, entry.word, entry.place);
    connect(indexFilter_, &QLineEdit::textChanged, this, &HelpViewer::FilterIndex);
    connect(indexFilter_, &QLineEdit::returnPressed, this, [this] {
        if (const QListWidgetItem* item = index_->currentItem())
            Go(PlaceOf(*item));
    });
    connect(index_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { Go(PlaceOf(*item)); });
    connect(index_, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) { Go(PlaceOf(*item)); });
    auto* side = new QWidget;
    auto* column = new QVBoxLayout(side);
    column->addWidget(indexFilter_);
    column->addWidget(index_, 1);
    return side;
}

QWidget* HelpViewer::BuildSearch()
{
    query_ = new QLineEdit;
    query_->setPlaceholderText(tr("Search all pages"));
    query_->setClearButtonEnabled(true);
    hits_ = new QListWidget;
    hits_->setFrameShape(QFrame::NoFrame);
    hits_->setWordWrap(true);
    hits_->setSpacing(3);
    connect(query_, &QLineEdit::textChanged, this, &HelpViewer::RunSearch);
    connect(query_, &QLineEdit::returnPressed, this, [this] {
        if (const QListWidgetItem* item = hits_->item(0); item != nullptr && hits_->currentItem() == nullptr)
            Go(PlaceOf(*item));
    });
    connect(hits_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item != nullptr && item->data(kPageRole).isValid())
            Go(PlaceOf(*item));
    });
    auto* side = new QWidget;
    auto* column = new QVBoxLayout(side);
    column->addWidget(query_);
    column->addWidget(hits_, 1);
    return side;
}

// --- showing

void HelpViewer::Open(Side side)
{
    ShowInFront();
    sides_->setCurrentIndex(static_cast<int>(side));
    if (side == Side::Index)
        indexFilter_->setFocus();
    else if (side == Side::Search)
        query_->setFocus();
    else
        contents_->setFocus();
}

void HelpViewer::Open(const HelpPlace& place)
{
    Go(place);
    ShowInFront();
    page_->setFocus();
}

void HelpViewer::ShowInFront()
{
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void HelpViewer::Go(const HelpPlace& place)
{
    if (book_.Page(place.page) == nullptr || place == place_)
        return;
    visited_.resize(visited_.empty() ? 0 : at_ + 1);
    visited_.push_back(place);
    at_ = visited_.size() - 1;
    Show(place);
}

void HelpViewer::Step(int by)
{
    const auto wanted = static_cast<qsizetype>(at_) + by;
    if (wanted < 0 || wanted >= static_cast<qsizetype>(visited_.size()))
        return;
    at_ = static_cast<std::size_t>(wanted);
    Show(visited_[at_]);
}

void HelpViewer::Show(const HelpPlace& place)
{
    if (place.page != place_.page || page_->document()->isEmpty()) {
        page_->document()->setMarkdown(book_.Page(place.page)->markdown);
        Dress(*page_->document(), palette());
    }
    place_ = place;
    const QTextBlock block = place.heading.isEmpty() ? QTextBlock() : BlockOf(*page_->document(), place.heading);
    QTextCursor cursor(page_->document());
    if (block.isValid())
        cursor.setPosition(block.position());
    page_->setTextCursor(cursor);
    const int top = block.isValid() ? page_->cursorRect(cursor).top() + page_->verticalScrollBar()->value() : 0;
    page_->verticalScrollBar()->setValue(top - fontMetrics().height());
    back_->setEnabled(at_ > 0);
    forward_->setEnabled(at_ + 1 < visited_.size());
    for (int i = 0; i < contents_->topLevelItemCount(); ++i)
        if (QTreeWidgetItem* item = contents_->topLevelItem(i); PlaceOf(*item).page == place.page) {
            const QSignalBlocker quiet(contents_);
            const QTreeWidgetItem* now = contents_->currentItem();
            item->setExpanded(true);
            if (now == nullptr || PlaceOf(*now).page != place.page)
                contents_->setCurrentItem(item);
        }
}

void HelpViewer::FilterIndex(const QString& text)
{
    QListWidgetItem* first = nullptr;
    for (int i = 0; i < index_->count(); ++i) {
        QListWidgetItem* item = index_->item(i);
        item->setHidden(!item->text().contains(text, Qt::CaseInsensitive));
        if (first == nullptr && !item->isHidden())
            first = item;
    }
    index_->setCurrentItem(first);
}

void HelpViewer::RunSearch(const QString& query)
{
    const QSignalBlocker quiet(hits_);
    hits_->clear();
    for (const HelpHit& hit : book_.Search(query)) {
        const QString where = hit.place.heading.isEmpty() ? hit.title : hit.title + u" \u203a "_s + hit.place.heading;
        AddItem(*hits_, where + u'\n' + hit.excerpt, hit.place);
    }
    if (hits_->count() == 0 && !query.trimmed().isEmpty())
        (new QListWidgetItem(tr("Nothing found"), hits_))->setFlags(Qt::NoItemFlags);
}

// --- what stays from one run to the next

// "left,top,width,height;page"
void HelpViewer::Keep()
{
    const QRect place = isMaximized() ? normalGeometry() : geometry();
    memory_.write(
        u"%1,%2,%3,%4;%5"_s.arg(place.left()).arg(place.top()).arg(place.width()).arg(place.height()).arg(place_.page));
}

void HelpViewer::Restore()
{
    const QString kept = memory_.read();
    const QStringList numbers = kept.section(u';', 0, 0).split(u',');
    const QRect place(numbers.value(0).toInt(), numbers.value(1).toInt(), numbers.value(2).toInt(),
                      numbers.value(3).toInt());
    // A screen that has gone since, or a file that somebody has edited: the usual place.
    const QScreen* screen = QGuiApplication::screenAt(place.center());
    if (place.width() >= 300 && place.height() >= 200 && screen != nullptr)
        setGeometry(place.intersected(screen->availableGeometry()));
    else
        resize(kUsualSize);
    Go({kept.section(u';', 1, 1), {}});
    if (place_.page.isEmpty())
        Go({book_.Pages().front().name, {}});
}

void HelpViewer::closeEvent(QCloseEvent* event)
{
    Keep();
    event->accept();
}

void HelpViewer::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && page_ != nullptr)
        UseStyle();
}

void HelpViewer::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void HelpViewer::UseStyle()
{
    QPalette paper = palette();
    paper.setColor(QPalette::Window, paper.color(QPalette::Base));
    page_->setPalette(paper);
    Dress(*page_->document(), palette());
}

} // namespace kestrune
