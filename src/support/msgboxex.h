#pragma once

// The program's message box: the toolkit's, with the platform's flags and answers, and a check box under the text
// when flag 128 asks for it.

#include <ports/questions.h>

#include <QMessageBox>

namespace kestrune {

class MsgBoxDialog : public QMessageBox
{
    Q_OBJECT

public:
    MsgBoxDialog(const MsgBoxRequest& request, QWidget* owner);
    int Answer() const; // after it has closed: a MsgResult, with MsgResult::Checked added

private:
    void AddInfo(const QString& text);

    int onClose_ = 0; // answer when it is closed by no button
};

// Modal. helpId and reserved stand for arguments that the platform's box has and this one does without.
int MsgBoxEx(const QString& text, int flags, const QString& title = {}, int helpId = 0, quintptr owner = 0,
             int reserved = 0);

// The answer of a box that cannot be shown: Cancel, else No, else Ok, the one that Escape would give.
int UnattendedAnswer(int flags);

} // namespace kestrune
