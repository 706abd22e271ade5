#include <support/errhndlr.h>

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kestrune {

frmErrHndlr::frmErrHndlr(const QString& report, QWidget* owner)
    : QDialog(owner),
      txDetails_(new QPlainTextEdit(QString(report).replace(QLatin1String("\r\n"), QLatin1String("\n")))),
      lblReturn_(new QLabel(tr("An operation failed in a way that was not foreseen. Your sessions are still there. "
                               "Continue goes on without it."))),
      cmdResume_(new QPushButton(tr("&Retry"))), cmdResumeNext_(new QPushButton(tr("&Continue"))),
      cmdEnd_(new QPushButton(tr("&End program")))
{
    setWindowTitle(tr("Kestrune unanticipated error"));
    txDetails_->setReadOnly(true);
    txDetails_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txDetails_->setAccessibleName(tr("Error report"));
    lblReturn_->setWordWrap(true);

    auto* buttons = new QDialogButtonBox;
    buttons->addButton(cmdResumeNext_, QDialogButtonBox::AcceptRole);
    buttons->addButton(cmdResume_, QDialogButtonBox::ActionRole);
    buttons->addButton(cmdEnd_, QDialogButtonBox::DestructiveRole);
    cmdResumeNext_->setDefault(true);
    Choose(cmdResume_, Questions::ErrorChoice::Retry);
    Choose(cmdResumeNext_, Questions::ErrorChoice::Next);
    Choose(cmdEnd_, Questions::ErrorChoice::End);

    auto* column = new QVBoxLayout(this);
    column->addWidget(lblReturn_);
    column->addWidget(txDetails_);
    column->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 14);
}

void frmErrHndlr::Choose(QPushButton* button, Questions::ErrorChoice choice)
{
    connect(button, &QPushButton::clicked, this, [this, choice] {
        choice_ = choice;
        accept();
    });
}

} // namespace kestrune
