#pragma once

// The dialing properties: where the telephone stands, and what is dialled from there, shown while the user types.

#include <ports/dialingform.h>

#include <QDialog>

#include <functional>
#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace kestrune {

class Questions;

class frmDialingProperties : public QDialog
{
    Q_OBJECT

public:
    frmDialingProperties(DialingForm::Request request, QWidget* owner);

    void accept() override; // stays open, and says why, when it cannot be kept

private:
    DialingPlace Place() const;
    void ShowSample();

    DialingForm::Request request_;
    std::vector<QLineEdit*> edits_; // in the order of the rows
    QCheckBox* dialAreaCode_;
    QLabel* sample_;
    QLabel* trouble_;
};

class DialingDialog final : public DialingForm
{
public:
    // ask: knows whether there is a user; outlives it. mainWindow: may give null.
    DialingDialog(const Questions& ask, std::function<QWidget*()> mainWindow);
    bool Show(const Request& request) override;

private:
    const Questions& ask_;
    std::function<QWidget*()> mainWindow_;
};

} // namespace kestrune
