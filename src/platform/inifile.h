#pragma once

// A document of sections and "key=value" lines, as the system's INI calls see it, with everything else in the file
// kept byte for byte: order, comments, blank lines, unknown sections and keys, encoding, line ends.
//
// The reader's rules: names without regard to case; of two equal names the first counts; blanks round names and
// values are dropped; one pair of double or single quotes round a value is dropped; a line that begins with ";" is
// a comment. Values end at a line break or a NUL, which no INI file can hold.

#include <platform/textcodec.h>

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace kestrune {

class IniDocument
{
public:
    // Never fails; any bytes are a document.
    static IniDocument Parse(const QByteArray& content);

    QByteArray Serialise() const;

    std::optional<QString> Get(const QString& section, const QString& key) const;
    QStringList Keys(const QString& section) const; // in file order; with no regard to case each once
    QStringList Sections() const;
    QStringList SectionLines(const QString& section) const; // "key=value" as they stand, without comments

    // Puts the value where the key stands, else behind the section's last key, else makes the section at the end.
    // The value is written as given: quotes are the caller's. Raises Failure 5 for a name no INI file can hold.
    // A document that cannot hold the text in its encoding becomes UTF-16 with a mark.
    void Set(const QString& section, const QString& key, const QString& value);
    bool Remove(const QString& section, const QString& key); // every line of that name; false: there was none
    bool RemoveSection(const QString& section);
    void ReplaceSection(const QString& section, const QStringList& lines);

    TextEncoding Encoding() const { return encoding_; }
    void Convert(TextEncoding encoding); // the whole document

private:
    enum class Kind
    {
        Other, // blank lines, comments, what stands before the first section
        Section,
        Entry
    };
    struct Line
    {
        Kind kind = Kind::Other;
        QString name;        // section or key, trimmed
        qsizetype value = 0; // characters in front of the value; 0: it has none
        QByteArray raw;      // with its line end
    };
    struct Range // lines of a section, its header included
    {
        std::size_t begin;
        std::size_t end;
    };

    Line Classify(QByteArray raw) const;
    QString TextOf(const Line& line) const;
    Line Make(const QString& text) const;
    TextEncoding PlainEncoding() const;
    std::optional<Range> Find(const QString& section) const;
    Range FindOrAdd(const QString& section);
    void EndLastLine();
    void ReplaceValue(Line& line, const QString& value);
    void MakeRoomFor(const QString& text);

    TextEncoding encoding_ = TextEncoding::Ansi;
    QByteArray mark_;
    QString lineEnd_;
    std::vector<Line> lines_;
};

} // namespace kestrune
