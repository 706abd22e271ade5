#pragma once

// A failure that the caller must see. It carries what an automation client is told: the system's error
// number, a text for people, and the source (the class or module that failed). Failures that are to be
// ignored are swallowed under a visible SilentErrors scope (support), never by an empty catch.

#include <QString>

#include <exception>

namespace kestrune {

// Numbers that the outside world sees. The low ones are those of the BASIC language.
enum class ErrorNumber : quint32
{
    InvalidCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    TypeMismatch = 13,
    BadFileHandle = 52,
    FileNotFound = 53,
    FileExists = 58,
    DiskFull = 61,
    TooManyFiles = 67,
    DeviceUnavailable = 68,
    PermissionDenied = 70,
    RenameAcrossDevices = 74,
    PathAccess = 75,
    PathNotFound = 76,
    ObjectNotSet = 91,
    InvalidUseOfNull = 94,
    BadIndex = 381,
    ModalDialogUp = 401,
    ObjectRequired = 424,
    NoSuchMember = 438,
    NoSuchArgument = 448,
    ArgumentNotOptional = 449,
    TooManyArguments = 450,
    NotACollection = 451,
    InvalidMenuFile = 32767,
    ReadOnlyProperty = 0x800A017F,
    BadRecentListSize = 0x800407D1,
    NotImplemented = 0x80004001,
};

class Failure : public std::exception
{
public:
    Failure(ErrorNumber number, QString text, QString source = {});

    ErrorNumber Number() const { return number_; }
    const QString& Text() const { return text_; }
    const QString& Source() const { return source_; }
    const char* what() const noexcept override { return utf8_.constData(); }

private:
    ErrorNumber number_;
    QString text_;
    QString source_;
    QByteArray utf8_;
};

} // namespace kestrune
