#pragma once

// frmRename: the edit box without a frame that lies over a session's tab while it is renamed. It is gone when the
// user has confirmed, cancelled, or turned to something else.

#include <QLineEdit>

namespace kestrune {

class RenameBox : public QLineEdit
{
    Q_OBJECT

public:
    RenameBox(const QString& text, QWidget* over, const QRect& place);

signals:
    void Confirmed(const QString& text);
    void Ended();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void End();

    bool ended_ = false;
};

} // namespace kestrune
