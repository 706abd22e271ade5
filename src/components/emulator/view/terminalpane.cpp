#include "terminalpane.h"

#include "keymap.h"

#include <QKeyEvent>

namespace kestrune {

namespace {

// A modifier's own key is not yet, or still, in the modifiers of its event.
Qt::KeyboardModifiers ModifiersAfter(const QKeyEvent& event)
{
    Qt::KeyboardModifiers modifiers = event.modifiers();
    for (const auto& [key, modifier] :
         {std::pair{Qt::Key_Shift, Qt::ShiftModifier}, std::pair{Qt::Key_Control, Qt::ControlModifier},
          std::pair{Qt::Key_Alt, Qt::AltModifier}})
        if (event.key() == key)
            modifiers.setFlag(modifier, event.type() == QEvent::KeyPress);
    return modifiers;
}

} // namespace

TerminalPane::TerminalPane(ctlEmulator& emulator, QWidget* parent)
    : QWidget(parent), view_(new TerminalView(emulator, this)), bar_(new FunctionBar(emulator, this))
{
    setFocusProxy(view_);
    view_->installEventFilter(this);
    connect(&emulator, &ctlEmulator::FuncBarChanged, this, &TerminalPane::Arrange);
    Arrange();
}

QSize TerminalPane::sizeHint() const
{
    QSize size = view_->sizeHint();
    if (!bar_->IsWanted())
        return size;
    const bool upright = bar_->Edge() == Qt::LeftEdge || bar_->Edge() == Qt::RightEdge;
    return size + (upright ? QSize(bar_->Thickness(), 0) : QSize(0, bar_->Thickness()));
}

void TerminalPane::Arrange()
{
    const int room = bar_->IsWanted() ? bar_->Thickness() : 0;
    QRect bar = rect();
    QRect rest = rect();
    switch (bar_->Edge()) {
    case Qt::TopEdge:
        bar.setHeight(room);
        rest.setTop(room);
        break;
    case Qt::BottomEdge:
        bar.setTop(height() - room);
        rest.setHeight(height() - room);
        break;
    case Qt::LeftEdge:
        bar.setWidth(room);
        rest.setLeft(room);
        break;
    case Qt::RightEdge:
        bar.setLeft(width() - room);
        rest.setWidth(width() - room);
        break;
    }
    bar_->setVisible(bar_->IsWanted());
    bar_->setGeometry(bar);
    view_->setGeometry(rest);
    updateGeometry();
}

void TerminalPane::resizeEvent(QResizeEvent*) { Arrange(); }

bool TerminalPane::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == view_ && (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease))
        bar_->SetModifiers(MapModifiers(ModifiersAfter(*static_cast<QKeyEvent*>(event))));
    if (watched == view_ && event->type() == QEvent::FocusOut)
        bar_->SetModifiers(emu::Modifier::None); // their release goes elsewhere
    return QWidget::eventFilter(watched, event);
}

} // namespace kestrune
