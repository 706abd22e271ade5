#include <support/errors.h>

#include <ports/questions.h>
#include <support/log.h>

#include <QCoreApplication>

#include <new>
#include <system_error>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString kErrorModuleUnknown = QStringLiteral("unknown");

// What a catch block holds, in the one form that the report and automation clients know.
Failure CurrentFailure()
{
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return {ErrorNumber::OutOfMemory, QCoreApplication::translate("Errors", "Out of memory")};
    } catch (const std::exception& other) {
        return {ErrorNumber::InvalidCall, QString::fromUtf8(other.what()), kErrorModuleUnknown};
    }
}

} // namespace

QString ErrorReport(const ErrorPlace& place, const Failure& failure, const QString& action)
{
    const auto number = static_cast<quint32>(failure.Number());
    const auto line = [](QLatin1StringView label, const QString& value) { return label + u' ' + value + u"\r\n"_s; };
    return line("Procedure:"_L1, u"%1 %2 line %3"_s.arg(place.procedure, place.module).arg(place.line)) +
           line("Error:"_L1, u"%1 0x%2"_s.arg(static_cast<qint32>(number)).arg(QString::number(number, 16).toUpper())) +
           line("Description:"_L1, failure.Text()) + line("Source:"_L1, failure.Source()) + line("Action:"_L1, action);
}

ErrorAction ErrHndlr(Questions& ask, const QString& procedure, const QString& module, int line)
{
    if (SilentErrors::Depth() > 0)
        return ErrorAction::Next;
    const ErrorPlace place{procedure, module, line};
    const Failure failure = CurrentFailure();
    if (!ask.HasUser()) {
        WriteLog(u"Kestrune - unanticipated error\r\n"_s + ErrorReport(place, failure, u"unrecoverable"_s));
        throw failure;
    }

    struct Row
    {
        Questions::ErrorChoice choice;
        ErrorAction action;
        QString word;
    };
    const Row rows[] = {{Questions::ErrorChoice::Retry, ErrorAction::Retry, u"Retry"_s},
                        {Questions::ErrorChoice::Next, ErrorAction::Next, u"Ignore"_s},
                        {Questions::ErrorChoice::End, ErrorAction::End, u"Fail"_s}};
    // The action is not chosen yet while the user reads the report; the log gets it with the choice.
    const auto choice = ask.ShowError(ErrorReport(place, failure, QString()));
    for (const Row& row : rows)
        if (row.choice == choice) {
            WriteLog(u"Kestrune - unanticipated error\r\n"_s + ErrorReport(place, failure, row.word));
            return row.action;
        }
    return ErrorAction::Next;
}

QString GetSystemMessageText(int number)
{
    if (number == 0)
        return u"unknown error (0)"_s;
    constexpr qsizetype limit = 160;
    QString text = QString::fromLocal8Bit(std::system_category().message(number)).left(limit);
    if (text.endsWith("\r\n"_L1))
        text.chop(1); // the carriage return stays, as callers have always seen it
    // The C library has no "no such text" answer; it makes one up with the number at its end.
    if (text.isEmpty() || text.endsWith(u"Unknown error "_s + QString::number(number)))
        return QString::number(number) + u" (no error message available)"_s;
    return text;
}

} // namespace kestrune
