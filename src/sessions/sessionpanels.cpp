#include "sessionpanels.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QEvent>
#include <QFormLayout>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QWhatsThis>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int PanelWidth = 560; // at most, in pixels: two lines of a fingerprint's length
constexpr int PanelMargin = 16; // to the window's edge and inside
constexpr int ButtonGap = 10;   // 150 twips, above the buttons and below

// The style's own frame cannot be told from a dark terminal.
class PanelFrame final : public QFrame
{
public:
    using QFrame::QFrame;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QColor edge = palette().color(QPalette::WindowText);
        edge.setAlphaF(0.35F);
        QPainter painter(this);
        painter.setPen(edge);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
};

} // namespace

SessionPanels::SessionPanels(QWidget& window, QWidget& terminal)
    : QObject(&window), window_(window), terminal_(terminal),
      reconnect_(MakePanel(u"pnlReconnect"_s, u"lbReconnect"_s)), confirm_(MakePanel(u"pnlConfirm"_s, u"lbConfirm"_s)),
      secrets_(MakePanel(u"pnlSecrets"_s, u"lbSecrets"_s))
{
    resumeButton_ =
        AddButton(reconnect_, u"cmdReconnectResume"_s, tr("&Reconnect and resume"), LineButton::ReconnectResume);
    reconnectButton_ = AddButton(reconnect_, u"cmdOKRecon"_s, tr("&Reconnect"), LineButton::Reconnect);
    AddButton(reconnect_, u"cmdCloseRecon"_s, tr("&Close"), LineButton::CloseSession);
    cancelButton_ = AddButton(reconnect_, u"cmdCancelRecon"_s, tr("Cancel"), LineButton::CancelReconnect);
    AddButton(reconnect_, u"cmdInfoRecon"_s, tr("&Info"), LineButton::Info);
    SetCanResume(false);
    AddButton(confirm_, u"cmdConfirmUpdate"_s, tr("&Update host key"), LineButton::ConfirmUpdate);
    AddButton(confirm_, u"cmdConfirmContinue"_s, tr("C&ontinue anyway"), LineButton::ConfirmContinue);
    confirmCancel_ = AddButton(confirm_, u"cmdConfirmCancel"_s, tr("&Cancel"), LineButton::ConfirmCancel);
    BuildSecrets();
    terminal_.installEventFilter(this);
}

SessionPanels::Panel SessionPanels::MakePanel(const QString& name, const QString& labelName)
{
    Panel panel;
    panel.frame = new PanelFrame(&window_);
    panel.frame->setObjectName(name);
    panel.frame->setAutoFillBackground(true);
    panel.frame->hide();
    panel.text = new QLabel(panel.frame);
    panel.text->setObjectName(labelName);
    panel.text->setWordWrap(true);
    panel.text->setTextFormat(Qt::PlainText); // hosts have a say in it
    panel.text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    panel.buttons = new QHBoxLayout;
    panel.buttons->addStretch();
    auto* column = new QVBoxLayout(panel.frame);
    column->setContentsMargins(PanelMargin, PanelMargin, PanelMargin, ButtonGap);
    column->setSpacing(ButtonGap);
    column->addWidget(panel.text);
    column->addLayout(panel.buttons);
    return panel;
}

QPushButton* SessionPanels::AddButton(const Panel& panel, const QString& name, const QString& text, LineButton button)
{
    auto* made = new QPushButton(text, panel.frame);
    made->setObjectName(name);
    made->setAutoDefault(true); // Enter presses the one with the focus
    panel.buttons->addWidget(made);
    connect(made, &QPushButton::clicked, this, [this, button] { emit Pressed(button); });
    made->installEventFilter(this);
    return made;
}

void SessionPanels::BuildSecrets()
{
    auto* column = static_cast<QVBoxLayout*>(secrets_.frame->layout());
    secretsTitle_ = new QLabel(secrets_.frame);
    secretsTitle_->setObjectName(u"lbSecretsTitle"_s);
    secretsTitle_->setTextFormat(Qt::PlainText);
    QFont bold = secretsTitle_->font();
    bold.setBold(true);
    secretsTitle_->setFont(bold);
    column->insertWidget(0, secretsTitle_);
    fields_ = new QFormLayout;
    fields_->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    column->insertLayout(2, fields_);
    remember_ = new QCheckBox(tr("Keep it in the &desktop's password store"), secrets_.frame);
    remember_->setObjectName(u"chkRemember"_s);
    remember_->hide();
    column->insertWidget(3, remember_);
    noStore_ = new QLabel(tr("This desktop has no password store, so it is asked for each time."), secrets_.frame);
    noStore_->setObjectName(u"lbNoStore"_s);
    noStore_->setWordWrap(true);
    noStore_->hide();
    column->insertWidget(4, noStore_);
    auto* submit = new QPushButton(tr("&Log in"), secrets_.frame);
    submit->setObjectName(u"cmdSecretsOK"_s);
    submit->setAutoDefault(true);
    secrets_.buttons->addWidget(submit);
    connect(submit, &QPushButton::clicked, this, &SessionPanels::SubmitSecrets);
    AddButton(secrets_, u"cmdSecretsCancel"_s, tr("Cancel"), LineButton::CancelSecrets);
}

// --- what is up

void SessionPanels::ShowReconnect(const QString& text)
{
    reconnect_.text->setText(text);
    Show(LinePanel::Reconnect);
}

void SessionPanels::ShowConfirm(const QString& text)
{
    confirm_.text->setText(text);
    Show(LinePanel::Confirm);
}

void SessionPanels::ShowSecrets(const LineQuestion& question, bool mayKeep)
{
    ClearSecrets();
    secretsTitle_->setText(question.title);
    secrets_.text->setText(question.text);
    secrets_.text->setVisible(!question.text.isEmpty());
    remember_->setChecked(false);
    remember_->setVisible(mayKeep);
    const bool isLasting = question.fields.size() == 1 && question.fields[0].mayBeRemembered;
    noStore_->setVisible(isLasting && !question.place.isEmpty() && !mayKeep);
    for (const LineQuestion::Field& field : question.fields) {
        auto* edit = new QLineEdit(secrets_.frame);
        edit->setEchoMode(field.echo ? QLineEdit::Normal : QLineEdit::Password);
        edit->installEventFilter(this);
        auto* label = new QLabel(field.label, secrets_.frame);
        label->setTextFormat(Qt::PlainText);
        label->setBuddy(edit);
        edit->setAccessibleName(field.label);
        fields_->addRow(label, edit);
        edits_.push_back(edit);
    }
    Show(LinePanel::Secrets);
}

void SessionPanels::SetCanResume(bool on)
{
    resumeButton_->setVisible(on);
    reconnectButton_->setVisible(!on);
}

QFrame* SessionPanels::ShownFrame() const
{
    switch (shown_) {
    case LinePanel::Reconnect:
        return reconnect_.frame;
    case LinePanel::Confirm:
        return confirm_.frame;
    case LinePanel::Secrets:
        return secrets_.frame;
    case LinePanel::None:
        break;
    }
    return nullptr;
}

void SessionPanels::Show(LinePanel which)
{
    if (shown_ == LinePanel::Secrets && which != LinePanel::Secrets)
        ClearSecrets();
    shown_ = which;
    reconnect_.frame->setVisible(which == LinePanel::Reconnect);
    confirm_.frame->setVisible(which == LinePanel::Confirm);
    secrets_.frame->setVisible(which == LinePanel::Secrets);
    terminal_.setEnabled(which == LinePanel::None);
    Place();
}

void SessionPanels::Hide() { Show(LinePanel::None); }

void SessionPanels::Place()
{
    QFrame* frame = ShownFrame();
    if (!frame)
        return;
    const QRect area = terminal_.geometry();
    const int width = std::min(PanelWidth, std::max(area.width() - 2 * PanelMargin, frame->minimumSizeHint().width()));
    const int height =
        frame->layout()->hasHeightForWidth() ? frame->layout()->totalHeightForWidth(width) : frame->sizeHint().height();
    frame->setGeometry(area.x() + (area.width() - width) / 2, area.y() + std::max(0, (area.height() - height) / 3),
                       width, height);
    frame->raise();
}

void SessionPanels::TakeFocus()
{
    QWidget* first = nullptr;
    if (shown_ == LinePanel::Reconnect)
        first = resumeButton_->isHidden() ? reconnectButton_ : resumeButton_;
    else if (shown_ == LinePanel::Confirm)
        first = confirmCancel_;
    else if (shown_ == LinePanel::Secrets && !edits_.empty())
        first = edits_.front();
    // A field that is being typed into keeps the focus.
    if (first && !ShownFrame()->isAncestorOf(QApplication::focusWidget()))
        first->setFocus(Qt::OtherFocusReason);
}

void SessionPanels::ShowHelp(const QString& text)
{
    QWhatsThis::showText(cancelButton_->mapToGlobal(QPoint(0, 0)), text, cancelButton_);
}

// --- secrets

// What was typed is in the fields' own memory until they go; they are emptied before. A field may be in the middle of
// its key press.
void SessionPanels::ClearSecrets()
{
    for (QLineEdit* edit : edits_)
        edit->clear();
    edits_.clear();
    while (fields_->rowCount() > 0) {
        const QFormLayout::TakeRowResult row = fields_->takeRow(0);
        for (QLayoutItem* item : {row.labelItem, row.fieldItem}) {
            item->widget()->hide();
            item->widget()->deleteLater();
            delete item;
        }
    }
}

void SessionPanels::SubmitSecrets()
{
    emit SecretsTyped(
        [this] {
            std::vector<Secret> values;
            for (const QLineEdit* edit : edits_)
                values.push_back(Secret::From(edit->text()));
            return values;
        },
        remember_->isChecked());
}

// --- keys and place

bool SessionPanels::KeyPressed(const QObject* on, int key)
{
    const QString name = on->objectName();
    if (key == Qt::Key_Escape) {
        if (shown_ == LinePanel::None)
            return false;
        emit Pressed(shown_ == LinePanel::Reconnect ? LineButton::CancelReconnect
                     : shown_ == LinePanel::Confirm ? LineButton::ConfirmCancel
                                                    : LineButton::CancelSecrets);
        return true;
    }
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && qobject_cast<const QLineEdit*>(on)) {
        // The next field first; in the last one it is the answer.
        const auto here = std::find(edits_.begin(), edits_.end(), on);
        if (here != edits_.end() && here + 1 != edits_.end())
            (*(here + 1))->setFocus(Qt::TabFocusReason);
        else
            SubmitSecrets();
        return true;
    }
    const bool resume = name == u"cmdReconnectResume"_s;
    const bool other = name == u"cmdOKRecon"_s || name == u"cmdCancelRecon"_s || name == u"cmdCloseRecon"_s;
    if (!resume && !other)
        return false;
    if (key == Qt::Key_C)
        emit Pressed(LineButton::CloseSession);
    else if (key == Qt::Key_R)
        emit Pressed(resume ? LineButton::ReconnectResume : LineButton::Reconnect);
    else
        return false;
    return true;
}

bool SessionPanels::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &terminal_) {
        if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
            Place();
        return false;
    }
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto& press = *static_cast<QKeyEvent*>(event);
    return !(press.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) && KeyPressed(watched, press.key());
}

} // namespace kestrune
