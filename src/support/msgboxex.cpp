#include <support/msgboxex.h>

#include <QCheckBox>
#include <QPushButton>
#include <QWhatsThis>

#include <algorithm>

namespace kestrune {

namespace {

struct BoxButton
{
    QMessageBox::StandardButton button = QMessageBox::NoButton;
    int answer = 0;
};

constexpr BoxButton kOk{QMessageBox::Ok, MsgResult::Ok};
constexpr BoxButton kCancel{QMessageBox::Cancel, MsgResult::Cancel};
constexpr BoxButton kYes{QMessageBox::Yes, MsgResult::Yes};
constexpr BoxButton kNo{QMessageBox::No, MsgResult::No};
constexpr BoxButton kRetry{QMessageBox::Retry, MsgResult::Retry};
constexpr BoxButton kYesToAll{QMessageBox::YesToAll, MsgResult::YesToAll};

struct BoxStyle
{
    int flags; // low four bits
    BoxButton buttons[3];
    int onClose; // answer of Escape and of the window's close box
};

constexpr BoxStyle kBoxStyles[] = {
    {MsgFlag::Ok, {kOk}, MsgResult::Ok},
    {MsgFlag::OkCancel, {kOk, kCancel}, MsgResult::Cancel},
    {MsgFlag::YesNoCancel, {kYes, kNo, kCancel}, MsgResult::Cancel},
    {MsgFlag::YesNo, {kYes, kNo}, MsgResult::No},
    {MsgFlag::RetryCancel, {kRetry, kCancel}, MsgResult::Cancel},
    {MsgFlag::YesNoYesToAll, {kYes, kNo, kYesToAll}, MsgResult::No},
};

struct BoxIcon
{
    int flags; // bits 4 to 6
    QMessageBox::Icon icon;
};

constexpr BoxIcon kBoxIcons[] = {{MsgFlag::Stop, QMessageBox::Critical},
                                 {MsgFlag::Question, QMessageBox::Question},
                                 {MsgFlag::Exclamation, QMessageBox::Warning},
                                 {MsgFlag::Information, QMessageBox::Information}};

const BoxStyle& StyleOf(int flags)
{
    const auto* at = std::find_if(std::begin(kBoxStyles), std::end(kBoxStyles),
                                  [flags](const BoxStyle& style) { return style.flags == (flags & 0x0F); });
    return at == std::end(kBoxStyles) ? kBoxStyles[0] : *at;
}

QMessageBox::Icon IconOf(int flags)
{
    const auto* at = std::find_if(std::begin(kBoxIcons), std::end(kBoxIcons),
                                  [flags](const BoxIcon& icon) { return icon.flags == (flags & 0x70); });
    return at == std::end(kBoxIcons) ? QMessageBox::NoIcon : at->icon;
}

} // namespace

MsgBoxDialog::MsgBoxDialog(const MsgBoxRequest& request, QWidget* owner)
    : QMessageBox(owner), onClose_(StyleOf(request.flags).onClose)
{
    setWindowTitle(request.title.isEmpty() ? QStringLiteral("Kestrune") : request.title);
    setTextFormat(Qt::PlainText); // texts hold names that users and hosts chose
    setText(QString(request.text).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    setIcon(IconOf(request.flags));
    for (const BoxButton& button : StyleOf(request.flags).buttons) {
        if (button.button == NoButton)
            continue;
        addButton(button.button);
        if (button.answer == onClose_)
            setEscapeButton(button.button);
    }
    if ((request.flags & MsgFlag::CheckBox) != 0)
        setCheckBox(new QCheckBox(tr("Do not show this &warning again")));
    if (!request.info.isEmpty())
        AddInfo(request.info);
}

void MsgBoxDialog::AddInfo(const QString& text)
{
    QPushButton* button = addButton(tr("&Info"), HelpRole);
    button->setObjectName(QStringLiteral("cmdInfo"));
    button->disconnect(); // the toolkit's box is done at any button
    connect(button, &QPushButton::clicked, this,
            [button, text] { QWhatsThis::showText(button->mapToGlobal(QPoint(0, 0)), text.toHtmlEscaped(), button); });
}

int MsgBoxDialog::Answer() const
{
    int answer = onClose_;
    for (const BoxStyle& style : kBoxStyles)
        for (const BoxButton& button : style.buttons)
            if (button.button != NoButton && clickedButton() != nullptr &&
                this->button(button.button) == clickedButton())
                answer = button.answer;
    return answer | (checkBox() != nullptr && checkBox()->isChecked() ? MsgResult::Checked : 0);
}

int MsgBoxEx(const QString& text, int flags, const QString& title, int /*helpId*/, quintptr owner, int /*reserved*/)
{
    MsgBoxDialog box({text, flags, title, owner}, owner != 0 ? QWidget::find(static_cast<WId>(owner)) : nullptr);
    box.exec();
    return box.Answer();
}

int UnattendedAnswer(int flags) { return StyleOf(flags).onClose; }

} // namespace kestrune
