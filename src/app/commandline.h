#pragma once

// What the program was started with. Options of the common form ("--help") are the system's; whatever else stands
// there is one text, "the whole command line", of which the start looks at the first argument alone.

#include <QString>
#include <QStringList>

#include <optional>

namespace kestrune {

class CommandLine
{
public:
    static CommandLine FromText(const QString& text); // as a platform hands it over that has only one text
    // Without the program's name. Arguments with blanks get double quotes in Text(). "--" ends the options.
    static CommandLine FromArguments(const QStringList& arguments);

    const QString& Text() const { return text_; } // raw, with surrounding blanks
    // From the raw text: between the first two double quotes if it begins with one, else up to the first blank.
    QString FirstArgument() const;

    bool Is(const QString& word) const;    // the whole of it, without regard to case or surrounding blanks
    bool KeyIs(const QString& word) const; // likewise, of what stands ahead of the first "="
    QString Value() const;                 // behind the first "="

    // An answer that needs no display and ends the program.
    struct Answer
    {
        QString text;
        bool isError = false; // to be told on the error stream, with a non-zero exit code
    };
    const std::optional<Answer>& Immediate() const { return immediate_; }

private:
    QString text_;
    std::optional<QString> first_; // exact, where the platform gives arguments apart
    std::optional<Answer> immediate_;
};

} // namespace kestrune
