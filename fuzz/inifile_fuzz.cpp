// Any bytes as an INI file: reading and writing back changes nothing, a changed value is read back, and no other
// line of the file is touched.

#include <platform/inifile.h>

#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using kestrune::IniDocument;
    const QByteArray content(reinterpret_cast<const char*>(data), qsizetype(size));
    auto document = IniDocument::Parse(content);
    Require(document.Serialise() == content);

    const QString section = QStringLiteral("Kestrune"), key = QStringLiteral("fuzzed key");
    const auto sections = document.Sections();
    const auto others = sections.isEmpty() ? QStringList() : document.Keys(sections.front());
    QStringList values;
    for (const auto& other : others)
        values += document.Get(sections.front(), other).value_or(QString());

    // Half a character at the end of UTF-16 becomes a whole one once something is written behind it.
    const bool halved = IsUtf16(document.Encoding()) && content.size() % 2 != 0;
    const QString value = QStringLiteral("v\u00e9\u20ac");
    document.Set(section, key, value);
    const auto again = IniDocument::Parse(document.Serialise());
    Require(again.Get(section, key) == value);
    const bool comparable = !halved && !others.contains(key, Qt::CaseInsensitive);
    for (qsizetype i = 0; i < others.size() && comparable; ++i)
        Require(again.Get(sections.front(), others[i]).value_or(QString()) == values[i]);

    document.Remove(section, key);
    Require(!document.Get(section, key));
    document.RemoveSection(section);
    Require(!document.Sections().contains(section, Qt::CaseInsensitive));
    return 0;
}
