#include "systemfailure.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace kestrune {

namespace {

struct SystemErrorRow
{
    int systemError;
    int file;   // platform error number when a file was meant
    int folder; // the same for a folder
    ErrorNumber raised;
};

// What a caller of a file operation is told follows the BASIC language: what may not be changed is 75, what is
// busy is 70. A name that can be no file (a part of it is a file, it is too long, it goes in circles) is 53.
constexpr std::array kSystemErrors = {
    SystemErrorRow{ENOENT, 2, 3, ErrorNumber::FileNotFound},
    SystemErrorRow{ENOTDIR, 3, 3, ErrorNumber::FileNotFound},
    SystemErrorRow{ENAMETOOLONG, 206, 206, ErrorNumber::FileNotFound},
    SystemErrorRow{ELOOP, 1921, 1921, ErrorNumber::FileNotFound},
    SystemErrorRow{EILSEQ, 123, 123, ErrorNumber::FileNotFound},
    SystemErrorRow{EACCES, 5, 5, ErrorNumber::PathAccess},
    SystemErrorRow{EPERM, 5, 5, ErrorNumber::PathAccess},
    SystemErrorRow{EROFS, 19, 19, ErrorNumber::PathAccess},
    SystemErrorRow{EISDIR, 5, 5, ErrorNumber::PathAccess},
    SystemErrorRow{ENOTEMPTY, 145, 145, ErrorNumber::PathAccess},
    SystemErrorRow{EBUSY, 32, 16, ErrorNumber::PermissionDenied},
    SystemErrorRow{ETXTBSY, 32, 32, ErrorNumber::PermissionDenied},
    SystemErrorRow{EAGAIN, 32, 32, ErrorNumber::PermissionDenied},
    SystemErrorRow{EEXIST, 80, 183, ErrorNumber::FileExists},
    SystemErrorRow{ENOSPC, 112, 112, ErrorNumber::DiskFull},
    SystemErrorRow{EDQUOT, 112, 112, ErrorNumber::DiskFull},
    SystemErrorRow{EFBIG, 112, 112, ErrorNumber::DiskFull},
    SystemErrorRow{EMFILE, 4, 4, ErrorNumber::TooManyFiles},
    SystemErrorRow{ENFILE, 4, 4, ErrorNumber::TooManyFiles},
    SystemErrorRow{ENOMEM, 8, 8, ErrorNumber::OutOfMemory},
    SystemErrorRow{EBADF, 6, 6, ErrorNumber::BadFileHandle},
    SystemErrorRow{ENODEV, 15, 15, ErrorNumber::DeviceUnavailable},
    SystemErrorRow{ENXIO, 15, 15, ErrorNumber::DeviceUnavailable},
    SystemErrorRow{EIO, 1117, 1117, ErrorNumber::DeviceUnavailable},
    SystemErrorRow{EXDEV, 17, 17, ErrorNumber::RenameAcrossDevices},
};

struct ShellNumberRow
{
    int platformError;
    ErrorNumber number;
};

constexpr std::array kShellNumbers = {
    ShellNumberRow{2, ErrorNumber::FileNotFound},         ShellNumberRow{3, ErrorNumber::PathNotFound},
    ShellNumberRow{4, ErrorNumber::TooManyFiles},         ShellNumberRow{5, ErrorNumber::InvalidCall},
    ShellNumberRow{6, ErrorNumber::BadFileHandle},        ShellNumberRow{8, ErrorNumber::OutOfMemory},
    ShellNumberRow{15, ErrorNumber::DeviceUnavailable},   ShellNumberRow{16, ErrorNumber::PathAccess},
    ShellNumberRow{17, ErrorNumber::RenameAcrossDevices}, ShellNumberRow{32, ErrorNumber::PermissionDenied},
    ShellNumberRow{80, ErrorNumber::FileExists},          ShellNumberRow{112, ErrorNumber::DiskFull},
    ShellNumberRow{145, ErrorNumber::PathAccess},         ShellNumberRow{183, ErrorNumber::FileExists},
};

const SystemErrorRow* RowOf(int systemError)
{
    const auto* row = std::ranges::find(kSystemErrors, systemError, &SystemErrorRow::systemError);
    return row == kSystemErrors.end() ? nullptr : row;
}

// A missing folder is a path that is not found; everything else is the same for files and folders.
ErrorNumber RaisedNumber(int systemError, Subject subject)
{
    const auto* row = RowOf(systemError);
    if (!row)
        return ErrorNumber::InvalidCall;
    return subject == Subject::Folder && row->folder == 3 ? ErrorNumber::PathNotFound : row->raised;
}

} // namespace

int PlatformError(int systemError, Subject subject)
{
    const auto* row = RowOf(systemError);
    if (!row)
        return -1;
    return subject == Subject::File ? row->file : row->folder;
}

ErrorNumber ShellErrorNumber(int platformError)
{
    const auto* row = std::ranges::find(kShellNumbers, platformError, &ShellNumberRow::platformError);
    return row == kShellNumbers.end() ? ErrorNumber::InvalidCall : row->number;
}

QString SystemErrorText(int systemError)
{
    return QString::fromLocal8Bit(std::generic_category().message(systemError));
}

SystemFailure::SystemFailure(int systemError, Subject subject, const QString& action)
    : Failure(RaisedNumber(systemError, subject),
              QCoreApplication::translate("SystemFailure", "%1: %2.").arg(action, SystemErrorText(systemError))),
      systemError_(systemError)
{}

} // namespace kestrune
