#include "functionbar.h"

#include <emulator/control/colorscheme.h>
#include <emulator/control/functionkeys.h>

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

enum class BarStyle
{
    SideBySide = 0,
    Stacked = 1,
    LabelOnly = 2
};

constexpr int kGap = 4;      // between buttons and round them
constexpr int kGroupGap = 8; // more after F4 and F8, where keyboards have a gap too
constexpr int kPadding = 6;  // in a button, beside the text
constexpr int kUprightEm = 11;
constexpr int kNamedBanks = 4; // banks that can have labels: those without Alt

BarStyle StyleOf(const ctlEmulator& emulator)
{
    const int style = emulator.FuncBarStyle();
    return style == 1 ? BarStyle::Stacked : style == 2 ? BarStyle::LabelOnly : BarStyle::SideBySide;
}

QColor RoleColorOf(const ctlEmulator& emulator, int role)
{
    ColorScheme scheme;
    scheme.Load(emulator.Settings(), emulator.DesktopGround());
    return QColor(scheme.Role(role));
}

// The terminal's own colours, mixed: the bar belongs to the screen, dark or light.
QColor Shade(const ctlEmulator& emulator, double ink)
{
    const QColor paper = RoleColorOf(emulator, PaletteRole::Background);
    const QColor text = RoleColorOf(emulator, PaletteRole::Foreground);
    const auto mix = [ink](int from, int to) { return int(from + (to - from) * ink); };
    return {mix(paper.red(), text.red()), mix(paper.green(), text.green()), mix(paper.blue(), text.blue())};
}

} // namespace

class FunctionBarButton : public QAbstractButton
{
public:
    FunctionBarButton(const ctlEmulator& emulator, QWidget* parent) : QAbstractButton(parent), emulator_(emulator)
    {
        setFocusPolicy(Qt::NoFocus); // typing goes on in the terminal
        setAttribute(Qt::WA_Hover);
    }

    void Show(const QString& key, const QString& label)
    {
        setText(label.isEmpty() ? key : key + u' ' + label);
        setToolTip(text());
        key_ = key;
        label_ = label;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Shade(emulator_, isDown() ? 0.34 : underMouse() ? 0.24 : 0.15));
        painter.drawRoundedRect(rect(), 4, 4);
        PaintText(painter, rect().adjusted(kPadding, 0, -kPadding, 0));
    }

private:
    void PaintText(QPainter& painter, const QRect& room) const
    {
        const BarStyle style = StyleOf(emulator_);
        const QColor faint = Shade(emulator_, 0.62);
        const QColor clear = Shade(emulator_, 1);
        if (label_.isEmpty() || style == BarStyle::LabelOnly) {
            Text(painter, room, label_.isEmpty() ? faint : clear, label_.isEmpty() ? key_ : label_, Qt::AlignCenter);
        } else if (style == BarStyle::Stacked) {
            const int half = room.height() / 2;
            Text(painter, room.adjusted(0, 1, 0, -half), faint, key_, Qt::AlignCenter);
            Text(painter, room.adjusted(0, half, 0, -1), clear, label_, Qt::AlignCenter);
        } else {
            const int keyWidth = fontMetrics().horizontalAdvance(u"F12"_s) + kPadding;
            Text(painter, room, faint, key_, Qt::AlignLeft | Qt::AlignVCenter);
            Text(painter, room.adjusted(keyWidth, 0, 0, 0), clear, label_, Qt::AlignLeft | Qt::AlignVCenter);
        }
    }

    void Text(QPainter& painter, const QRect& room, const QColor& color, const QString& text, int flags) const
    {
        painter.setPen(color);
        painter.drawText(room, flags | Qt::TextSingleLine,
                         fontMetrics().elidedText(text, Qt::ElideRight, std::max(0, room.width())));
    }

    const ctlEmulator& emulator_;
    QString key_;
    QString label_;
};

FunctionBar::FunctionBar(ctlEmulator& emulator, QWidget* parent)
    : QWidget(parent), emulator_(emulator), bank_(new FunctionBarButton(emulator, this))
{
    static_assert(std::tuple_size_v<decltype(keys_)> == FunctionKeyCount);
    connect(bank_, &QAbstractButton::clicked, this, &FunctionBar::NextBank);
    for (size_t i = 0; i < keys_.size(); ++i) {
        const int number = int(i) + 1;
        keys_[i] = new FunctionBarButton(emulator, this);
        connect(keys_[i], &QAbstractButton::clicked, this, [this, number] {
            emulator_.TypeKey(FunctionKey(number, ShownBank()), FunctionKeyCode(number, ShownBank()));
        });
    }
    connect(&emulator, &ctlEmulator::FuncBarChanged, this, [this] {
        FillButtons();
        PlaceButtons();
    });
    connect(&emulator, &ctlEmulator::LookChanged, this, qOverload<>(&QWidget::update));
    connect(&emulator.Settings(), &EmulatorSettings::FKeysChanged, this, &FunctionBar::FillButtons);
    FillButtons();
}

Qt::Edge FunctionBar::Edge() const
{
    static constexpr std::array edges{Qt::BottomEdge, Qt::TopEdge, Qt::LeftEdge, Qt::RightEdge};
    const int pos = emulator_.FuncBarPos();
    return pos >= 0 && pos < int(edges.size()) ? edges[size_t(pos)] : Qt::BottomEdge;
}

bool FunctionBar::IsUpright() const { return Edge() == Qt::LeftEdge || Edge() == Qt::RightEdge; }

int FunctionBar::Thickness() const
{
    const int line = fontMetrics().height();
    if (IsUpright())
        return kUprightEm * line + 2 * kGap;
    return (StyleOf(emulator_) == BarStyle::Stacked ? 2 * line + 2 : line + kPadding) + 2 * kGap;
}

int FunctionBar::ShownBank() const
{
    if (emulator_.TrackKeyboardState() && modifiers_ != 0)
        return FunctionBankOf(modifiers_);
    const int bank = emulator_.FuncBarBank();
    return bank >= 1 && bank <= FunctionBankCount ? bank : 1;
}

void FunctionBar::SetModifiers(uint8_t modifiers)
{
    modifiers_ = modifiers;
    FillButtons();
}

void FunctionBar::NextBank() { emulator_.SetFuncBarBank(ShownBank() % kNamedBanks + 1); }

void FunctionBar::FillButtons()
{
    const int bank = ShownBank();
    const QString name = FunctionBankName(bank);
    bank_->Show(name.isEmpty() ? tr("Keys") : name, {});
    bank_->setToolTip(tr("Next bank of function keys"));
    for (int number = 1; number <= FunctionKeyCount; ++number)
        keys_[size_t(number) - 1]->Show(u'F' + QString::number(number),
                                        FunctionLabel(emulator_.Settings(), number, bank));
}

void FunctionBar::PlaceButtons()
{
    const bool upright = IsUpright();
    const int across = (upright ? width() : height()) - 2 * kGap;
    const int bank = upright ? fontMetrics().height() + kPadding
                             : fontMetrics().horizontalAdvance(FunctionBankName(4)) + 2 * kPadding;
    const int gaps = kGap * (FunctionKeyCount + 2) + 2 * kGroupGap;
    const double each = double((upright ? height() : width()) - gaps - bank) / FunctionKeyCount;
    const auto place = [&](QWidget* button, double at, double length) {
        const QRect along(int(at), kGap, std::max(1, int(at + length) - int(at)), across);
        button->setGeometry(upright ? QRect(along.y(), along.x(), along.height(), along.width()) : along);
    };
    place(bank_, kGap, bank);
    double at = bank + 2 * kGap;
    for (size_t i = 0; i < keys_.size(); ++i) {
        at += i == 4 || i == 8 ? kGroupGap : 0;
        place(keys_[i], at, each);
        at += each + kGap;
    }
}

void FunctionBar::resizeEvent(QResizeEvent*) { PlaceButtons(); }

void FunctionBar::paintEvent(QPaintEvent*) { QPainter(this).fillRect(rect(), Shade(emulator_, 0.06)); }

void FunctionBar::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange)
        emit emulator_.FuncBarChanged(); // it needs another room
    QWidget::changeEvent(event);
}

void FunctionBar::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (int bank = 1; bank <= FunctionBankCount; ++bank) {
        const QString name = FunctionBankName(bank);
        auto* choice = menu->addAction(name.isEmpty() ? tr("Function Keys") : tr("With %1").arg(name), this,
                                       [this, bank] { emulator_.SetFuncBarBank(bank); });
        choice->setCheckable(true);
        choice->setChecked(bank == ShownBank());
    }
    menu->popup(event->globalPos());
}

} // namespace kestrune
