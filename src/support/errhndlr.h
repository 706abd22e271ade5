#pragma once

// The dialog of the central error handler: the report, and the three ways to go on.

#include <ports/questions.h>

#include <QDialog>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace kestrune {

class frmErrHndlr : public QDialog
{
    Q_OBJECT

public:
    frmErrHndlr(const QString& report, QWidget* owner);
    Questions::ErrorChoice Choice() const { return choice_; } // Next when it was closed by no button

private:
    void Choose(QPushButton* button, Questions::ErrorChoice choice);

    QPlainTextEdit* txDetails_;
    QLabel* lblReturn_;
    QPushButton* cmdResume_;
    QPushButton* cmdResumeNext_;
    QPushButton* cmdEnd_;
    Questions::ErrorChoice choice_ = Questions::ErrorChoice::Next;
};

} // namespace kestrune
