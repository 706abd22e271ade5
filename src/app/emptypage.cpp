#include <app/emptypage.h>

#include <menubar/icons.h>

#include <QCommandLinkButton>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kShownRecent = 6;

QLabel* Heading(const QString& text, double scale, QPalette::ColorRole role)
{
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    if (scale > 1.5)
        font.setWeight(QFont::Light);
    label->setFont(font);
    label->setForegroundRole(role);
    return label;
}

QToolButton* Choice(const QString& text, const QString& picture)
{
    auto* button = new QToolButton;
    button->setText(text);
    button->setIcon(LineIcon(picture));
    button->setIconSize(QSize(28, 28));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    button->setMinimumHeight(44);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

} // namespace

EmptyPage::EmptyPage(QWidget* parent) : QWidget(parent), recent_(new QVBoxLayout)
{
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);

    auto* column = new QVBoxLayout;
    column->setSpacing(2);
    column->addWidget(Heading(u"Kestrune"_s, 2.6, QPalette::Text));
    column->addWidget(Heading(tr("Create a new session or open an existing one"), 1.0, QPalette::PlaceholderText));
    column->addSpacing(18);
    struct Row
    {
        QString text;
        QString picture;
        int id;
    };
    const Row rows[] = {{tr("New session"), u"session"_s, 101}, {tr("Open a session or layout…"), u"open"_s, 103}};
    for (const Row& row : rows) {
        QToolButton* button = Choice(row.text, row.picture);
        connect(button, &QToolButton::clicked, this, [this, id = row.id] { emit CommandWanted(id); });
        column->addWidget(button);
    }
    column->addSpacing(18);
    recent_->setSpacing(0);
    column->addLayout(recent_);

    auto* inner = new QWidget;
    inner->setLayout(column);
    inner->setFixedWidth(fontMetrics().averageCharWidth() * 62);
    auto* page = new QVBoxLayout(this);
    page->addStretch(2);
    page->addWidget(inner, 0, Qt::AlignHCenter);
    page->addStretch(3);
}

void EmptyPage::SetRecentFiles(const QStringList& shown, const QStringList& fullNames)
{
    while (const QLayoutItem* item = recent_->takeAt(0)) {
        if (item->widget() != nullptr)
            item->widget()->deleteLater(); // may be the one that was clicked
        delete item;
    }
    if (shown.isEmpty())
        return;
    recent_->addWidget(Heading(tr("Recent"), 1.0, QPalette::PlaceholderText));
    for (int i = 0; i < shown.size() && i < kShownRecent; ++i) {
        auto* button = Choice(
            fontMetrics().elidedText(shown[i], Qt::ElideMiddle, fontMetrics().averageCharWidth() * 56), QString());
        button->setMinimumHeight(0);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setToolTip(fullNames.value(i));
        connect(button, &QToolButton::clicked, this, [this, i] { emit RecentWanted(i + 1); });
        recent_->addWidget(button);
    }
}

} // namespace kestrune
