#include "findbar.h"

#include <emulator/control/contrast.h>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kDistance = 6; // from the corner
constexpr int kTextWidth = 200;
constexpr Rgb kWrong = MakeRgb(0xC0, 0x30, 0x30);

} // namespace

FindBar::FindBar(QWidget* parent)
    : QFrame(parent), text_(new QLineEdit(this)), state_(new QLabel(this)),
      matchCase_(AddButton(u"Aa"_s, tr("Match case"), true)), wholeWord_(AddButton(u"W"_s, tr("Whole words"), true)),
      regularExpression_(AddButton(u".*"_s, tr("Regular expression"), true))
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setCursor(Qt::ArrowCursor);
    setAccessibleName(tr("Find"));
    text_->setPlaceholderText(tr("Find"));
    text_->setAccessibleName(tr("Text to find"));
    text_->setClearButtonEnabled(true);
    text_->setFixedWidth(kTextWidth);
    text_->installEventFilter(this);
    setFocusProxy(text_);
    QToolButton* older = AddButton(u"▲"_s, tr("Older (Enter)"), false);
    QToolButton* newer = AddButton(u"▼"_s, tr("Newer (Shift+Enter)"), false);
    QToolButton* close = AddButton(u"✕"_s, tr("Close (Esc)"), false);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(6, 4, 4, 4);
    row->setSpacing(2);
    row->addWidget(text_);
    for (QToolButton* option : {matchCase_, wholeWord_, regularExpression_}) {
        row->addWidget(option);
        connect(option, &QToolButton::toggled, this, &FindBar::QueryChanged);
    }
    state_->setMinimumWidth(state_->fontMetrics().horizontalAdvance(u"100000 / 100000+"_s));
    state_->setAlignment(Qt::AlignCenter);
    row->addWidget(state_);
    for (QToolButton* button : {older, newer, close})
        row->addWidget(button);
    connect(text_, &QLineEdit::textChanged, this, &FindBar::QueryChanged);
    connect(older, &QToolButton::clicked, this, &FindBar::OlderWanted);
    connect(newer, &QToolButton::clicked, this, &FindBar::NewerWanted);
    connect(close, &QToolButton::clicked, this, &FindBar::Closed);
    hide();
}

QToolButton* FindBar::AddButton(const QString& text, const QString& tip, bool checkable)
{
    auto* button = new QToolButton(this);
    button->setText(text);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setCheckable(checkable);
    button->setAutoRaise(true);
    return button;
}

void FindBar::Ask(const QString& text)
{
    if (!text.isEmpty())
        text_->setText(text);
    show();
    raise();
    text_->setFocus(Qt::ShortcutFocusReason);
    text_->selectAll();
}

SearchQuery FindBar::Query() const
{
    return {text_->text(), matchCase_->isChecked(), wholeWord_->isChecked(), regularExpression_->isChecked()};
}

void FindBar::ShowState(const QString& text, bool wrong)
{
    state_->setText(text);
    state_->setToolTip(text);
    QPalette shown = palette();
    if (wrong)
        shown.setColor(QPalette::Text, LegibleOn(shown.color(QPalette::Base).rgb(), kWrong));
    text_->setPalette(shown);
}

void FindBar::KeepPlace(int rightEdge)
{
    adjustSize();
    move(std::max(0, rightEdge - width() - kDistance), kDistance);
}

bool FindBar::focusNextPrevChild(bool next)
{
    QList<QWidget*> stops = findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    stops.removeIf([](const QWidget* child) { return (child->focusPolicy() & Qt::TabFocus) == 0; });
    const auto at = stops.indexOf(focusWidget());
    stops[(at + (next ? 1 : stops.size() - 1)) % stops.size()]->setFocus(Qt::TabFocusReason);
    return true;
}

bool FindBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool shift = key->modifiers().testFlag(Qt::ShiftModifier);
        switch (key->key()) {
        case Qt::Key_Escape:
            emit Closed();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_F3:
            shift ? emit NewerWanted() : emit OlderWanted();
            return true;
        case Qt::Key_Up:
            emit OlderWanted();
            return true;
        case Qt::Key_Down:
            emit NewerWanted();
            return true;
        default:
            break;
        }
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace kestrune
