#include <app/commandline.h>

#include <QCoreApplication>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QString UsageText()
{
    return QCoreApplication::translate("CommandLine",
                                       "Usage: kestrune [FILE]\n"
                                       "Opens FILE: a session, a layout or a script. Without FILE the main window "
                                       "opens and offers what can be done.\n"
                                       "\n"
                                       "  /settings       only the settings\n"
                                       "  /migrate=MASK   takes over the settings of earlier releases\n"
                                       "  --help          this text\n"
                                       "  --version       the release\n"
                                       "  --              what follows is a file, even if it begins with dashes\n");
}

QString VersionText() { return QStringLiteral("Kestrune " KESTRUNE_RELEASE "\n"); }

QString Quoted(const QString& argument)
{
    return argument.contains(u' ') || argument.isEmpty() ? u'"' + argument + u'"' : argument;
}

} // namespace

CommandLine CommandLine::FromText(const QString& text)
{
    CommandLine line;
    line.text_ = text;
    return line;
}

CommandLine CommandLine::FromArguments(const QStringList& arguments)
{
    CommandLine line;
    QStringList rest = arguments;
    while (!rest.isEmpty() && rest.first().startsWith("--"_L1)) {
        const QString option = rest.takeFirst();
        if (option == "--"_L1)
            break;
        if (option == "--automation"_L1)
            continue; // how the process was started is the platform's affair
        if (option == "--help"_L1)
            line.immediate_ = {UsageText()};
        else if (option == "--version"_L1)
            line.immediate_ = {VersionText()};
        else
            line.immediate_ = {QCoreApplication::translate("CommandLine",
                                                           "kestrune: unknown option '%1'\n"
                                                           "Try 'kestrune --help'. A file of that name is opened by "
                                                           "'kestrune -- %1'.\n")
                                   .arg(option),
                               true};
        if (line.immediate_)
            return line;
    }
    if (!rest.isEmpty())
        line.first_ = rest.first();
    QStringList words;
    for (const QString& argument : rest)
        words.append(Quoted(argument));
    line.text_ = words.join(u' ');
    return line;
}

QString CommandLine::FirstArgument() const
{
    if (first_)
        return *first_;
    if (text_.startsWith(u'"')) {
        const qsizetype end = text_.indexOf(u'"', 1);
        return text_.mid(1, end < 0 ? -1 : end - 1);
    }
    return text_.section(u' ', 0, 0);
}

bool CommandLine::Is(const QString& word) const { return text_.trimmed().compare(word, Qt::CaseInsensitive) == 0; }

bool CommandLine::KeyIs(const QString& word) const
{
    return text_.trimmed().section(u'=', 0, 0).compare(word, Qt::CaseInsensitive) == 0;
}

QString CommandLine::Value() const
{
    const qsizetype at = text_.indexOf(u'=');
    return at < 0 ? QString() : text_.mid(at + 1);
}

} // namespace kestrune
