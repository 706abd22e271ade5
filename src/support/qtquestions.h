#pragma once

// Asks the user through dialogs of the toolkit. With no user nothing is shown: it goes to the log, and the answer
// is the one that does no harm.

#include <ports/questions.h>

#include <functional>

class QWidget;

namespace kestrune {

class QtQuestions : public Questions
{
public:
    // mainWindow: where dialogs without an owner of their own open; may give null.
    QtQuestions(bool hasUser, std::function<QWidget*()> mainWindow);

    bool HasUser() const override { return hasUser_; }
    int MsgBox(const MsgBoxRequest& request) override;
    std::optional<QString> OpenFile(const FileDialogRequest& request) override;
    std::optional<QString> SaveFile(const FileDialogRequest& request) override;
    void Beep() override;
    void Hourglass(bool on) override;
    ErrorChoice ShowError(const QString& report) override;

private:
    QWidget* Owner(quintptr handle) const;

    bool hasUser_;
    std::function<QWidget*()> mainWindow_;
};

// "Text (*.a,*.b)|*.a;*.b|All Files (*.*)|*.*" as the toolkit's file dialog wants it: "Text (*.a *.b)", "All Files
// (*)".
QStringList NameFilters(const QString& filter);

} // namespace kestrune
