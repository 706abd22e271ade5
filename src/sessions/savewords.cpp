#include <sessions/savewords.h>

#include <settings/filespec.h>

#include <QCoreApplication>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr const char* SaveContext = "kestrune::SaveFailure";
constexpr int SaveDialogFlags = 0x20080E;

QString SaveTr(const char* text) { return QCoreApplication::translate(SaveContext, text); }

} // namespace

FileDialogRequest SaveAsDialog(SavedThing thing, const QString& folder, const QString& name)
{
    const bool session = thing == SavedThing::Session;
    FileDialogRequest request;
    request.title = SaveTr("Save As");
    request.folder = folder;
    request.name = name;
    request.filter = session ? SaveTr("Kestrune Session (.orcf)|*.orcf|Old Kestrune Session (cfg)|*.cfg")
                             : SaveTr("Kestrune Layout (.orly)|*.orly|Old Kestrune Layout (.lyt)|*.lyt");
    request.defaultExtension = session ? u"orcf"_s : u"orly"_s;
    request.filterIndex = 1;
    request.flags = SaveDialogFlags;
    return request;
}

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

QString SaveFailureWords(const Failure& failure, SavedThing thing, const FileSpec& spec, const QString& path)
{
    const QString name = thing == SavedThing::Session ? SaveTr("session") : SaveTr("layout");
    QString reason;
    if (failure.Number() == ErrorNumber::FileNotFound)
        reason = SaveTr("The folder or file name '%1' is not valid.").arg(path);
    else if (failure.Number() == ErrorNumber::PathAccess)
        reason = SaveTr("'%1' is read-only.").arg(spec.GetFileNameExt(path));
    else
        return {};
    return reason + u' ' +
           SaveTr("To save a copy, click OK, then give the %1 a new name in the Save As dialog box.").arg(name);
}

} // namespace kestrune
