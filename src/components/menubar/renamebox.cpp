#include "renamebox.h"

#include <QFocusEvent>
#include <QKeyEvent>

#include <algorithm>

namespace kestrune {

namespace {

constexpr int LeastWidth = 134, LeastHeight = 16; // 2000 by 240 twips, in pixels
constexpr int Margin = 6;                         // between the box and its text, in pixels

} // namespace

RenameBox::RenameBox(const QString& text, QWidget* over, const QRect& place) : QLineEdit(text, over)
{
    setObjectName(QStringLiteral("frmRename"));
    setAccessibleName(tr("Session name"));
    setFrame(false);
    setTextMargins(Margin, 0, Margin, 0);
    const int width = std::max(place.width(), LeastWidth);
    setGeometry(std::clamp(place.left(), 0, std::max(0, over->width() - width)), place.top(), width,
                std::max(place.height(), LeastHeight));
    selectAll();
    show();
    setFocus(Qt::OtherFocusReason);
}

void RenameBox::End()
{
    if (std::exchange(ended_, true))
        return;
    hide();
    deleteLater();
    emit Ended();
}

void RenameBox::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        End();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!text().trimmed().isEmpty()) // a tab without a name could not be read: as if cancelled
            emit Confirmed(text());
        End();
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void RenameBox::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) // its own context menu
        End();
}

} // namespace kestrune
