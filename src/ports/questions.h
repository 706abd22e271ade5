#pragma once

// Everything that asks or tells the user goes through here, so that a test answers and a process with no
// user never blocks. Three outcomes are kept apart: an answer, the user's refusal, nobody there.

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace kestrune {

// The platform's message box flags: buttons, icon, and 128 for the "do not show again" check box.
namespace MsgFlag {
inline constexpr int Ok = 0, OkCancel = 1, YesNoCancel = 3, YesNo = 4, RetryCancel = 5, YesNoYesToAll = 9;
inline constexpr int Stop = 16, Question = 32, Exclamation = 48, Information = 64;
inline constexpr int CheckBox = 128;
} // namespace MsgFlag

namespace MsgResult {
inline constexpr int Ok = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7, YesToAll = 14;
inline constexpr int Checked = 128; // added when the check box was ticked
} // namespace MsgResult

struct MsgBoxRequest
{
    QString text;
    int flags = MsgFlag::Ok;
    QString title; // empty: the program's caption
    quintptr owner = 0;
    QString info{}; // not empty: a button "Info" shows it beside the box, which stays
};

struct FileDialogRequest
{
    QString title;
    QString folder;
    QString name;
    QString filter; // "Kestrune Files (*.orcf)|*.orcf|All Files (*.*)|*.*"
    QString defaultExtension;
    int filterIndex = 1;
    int flags = 0;
};

class Questions
{
public:
    virtual ~Questions() = default;
    virtual bool HasUser() const = 0; // false: started for another program, nobody to ask

    // Modal. With no user: logged, and the answer is Cancel, No or Ok, whichever the box has first of these.
    virtual int MsgBox(const MsgBoxRequest& request) = 0;

    // Modal; nothing: cancelled or nobody there.
    virtual std::optional<QString> OpenFile(const FileDialogRequest& request) = 0;
    virtual std::optional<QString> SaveFile(const FileDialogRequest& request) = 0;

    virtual void Beep() = 0;
    virtual void Hourglass(bool on) = 0; // nests

    // Only for the central error handler: false for "end", see support/errors.h.
    enum class ErrorChoice
    {
        Retry,
        Next,
        End
    };
    virtual ErrorChoice ShowError(const QString& report) = 0;
};

} // namespace kestrune
