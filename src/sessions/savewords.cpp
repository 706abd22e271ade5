#include <sessions/savewords.h>

#include <settings/filespec.h>

#include <QCoreApplication>

namespace kestrune {

Failure SaveFailure(const Failure& failure)
{
    switch (failure.Number()) {
    case ErrorNumber::PathNotFound:
        return Failure(ErrorNumber::FileNotFound, failure.Text(), failure.Source());
    case ErrorNumber::PermissionDenied:
        return Failure(ErrorNumber::PathAccess, failure.Text(), failure.Source());
    default:
        return failure;
    }
}

QString SaveFailureWords(const Failure& failure, SavedThing thing, const FileSpec& spec,
                         const QString& path)
{
    static constexpr const char* Context = "kestrune::SaveFailure";
    const QString name = thing == SavedThing::Session ? QCoreApplication::translate(Context, "session")
                                                      : QCoreApplication::translate(Context, "layout");
    QString reason;
    if (failure.Number() == ErrorNumber::FileNotFound)
        reason = QCoreApplication::translate(Context, "The folder or file name '%1' is not valid.").arg(path);
    else if (failure.Number() == ErrorNumber::PathAccess)
        reason = QCoreApplication::translate(Context, "'%1' is read-only.").arg(spec.GetFileNameExt(path));
    else
        return {};
    return reason + u' ' +
           QCoreApplication::translate(Context, "To save a copy, click OK, then give the %1 a new name in the Save As "
                                                "dialog box.")
               .arg(name);
}

} // namespace kestrune
