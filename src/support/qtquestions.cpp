#include <support/qtquestions.h>

#include <support/errhndlr.h>
#include <support/log.h>
#include <support/msgboxex.h>

#include <QApplication>
#include <QFileDialog>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

std::optional<QString> AskForFile(const FileDialogRequest& request, QWidget* owner, QFileDialog::AcceptMode mode,
                                  QFileDialog::FileMode files)
{
    QFileDialog dialog(owner, request.title, request.folder);
    dialog.setAcceptMode(mode);
    dialog.setFileMode(files);
    const QStringList filters = NameFilters(request.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        dialog.selectNameFilter(filters.value(request.filterIndex - 1, filters.first()));
    }
    dialog.setDefaultSuffix(request.defaultExtension);
    if (!request.name.isEmpty())
        dialog.selectFile(request.name);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().first();
}

} // namespace

QtQuestions::QtQuestions(bool hasUser, std::function<QWidget*()> mainWindow)
    : hasUser_(hasUser), mainWindow_(std::move(mainWindow))
{}

QWidget* QtQuestions::Owner(quintptr handle) const
{
    QWidget* given = handle != 0 ? QWidget::find(static_cast<WId>(handle)) : nullptr;
    if (given != nullptr)
        return given->window();
    return QApplication::activeModalWidget() != nullptr ? QApplication::activeModalWidget() : mainWindow_();
}

int QtQuestions::MsgBox(const MsgBoxRequest& request)
{
    if (!hasUser_) {
        WriteLog(request.text);
        return UnattendedAnswer(request.flags);
    }
    MsgBoxDialog box(request, Owner(request.owner));
    box.exec();
    return box.Answer();
}

std::optional<QString> QtQuestions::OpenFile(const FileDialogRequest& request)
{
    if (!hasUser_)
        return std::nullopt;
    constexpr int fileMustExist = 0x1000;
    return AskForFile(request, Owner(0), QFileDialog::AcceptOpen,
                      (request.flags & fileMustExist) != 0 ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
}

std::optional<QString> QtQuestions::SaveFile(const FileDialogRequest& request)
{
    if (!hasUser_)
        return std::nullopt;
    return AskForFile(request, Owner(0), QFileDialog::AcceptSave, QFileDialog::AnyFile);
}

void QtQuestions::Beep() { QApplication::beep(); }

void QtQuestions::Hourglass(bool on)
{
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

Questions::ErrorChoice QtQuestions::ShowError(const QString& report)
{
    frmErrHndlr form(report, Owner(0));
    form.exec();
    return form.Choice();
}

QStringList NameFilters(const QString& filter)
{
    QStringList result;
    const QStringList parts = filter.split(u'|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString text = parts[i];
        if (const qsizetype bracket = text.lastIndexOf(u'('); bracket > 0)
            text = text.left(bracket).trimmed();
        QStringList patterns = parts[i + 1].split(u';', Qt::SkipEmptyParts);
        patterns.replaceInStrings(u"*.*"_s, u"*"_s); // here a name needs no dot
        result.append(text + u" ("_s + patterns.join(u' ') + u')');
    }
    return result;
}

} // namespace kestrune
