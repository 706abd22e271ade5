#include <menus/menufile.h>

#include <dispatch/conversion.h>
#include <settings/profile.h>
#include <support/errors.h>

#include <QHash>

#include <algorithm>
#include <optional>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int kDefaultDock = 1; // the reader's; the writer leaves out 0 instead, deliberately
constexpr int kMostBands = 10'000;
constexpr int kDeepestTool = 64;

[[noreturn]] void RaiseInvalid() { throw Failure(ErrorNumber::InvalidMenuFile, u"Invalid menu file!"_s); }

using Bag = QHash<QString, QString>; // values by their names in lower case

// One line of the section into the bag. The name stands as it is, blanks and all; a value in quotes loses one pair.
void TakeLine(QStringView line, Bag& bag)
{
    const qsizetype equals = line.indexOf(u'=');
    if (line.startsWith(u';') || equals < 1)
        return;
    QStringView value = line.mid(equals + 1);
    if (value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"'))
        value = value.mid(1, value.size() - 2);
    bag.insert(line.left(equals).toString().toLower(), value.toString());
}

// Lines end in CRLF. A line feed alone is taken too: that is what editors on Unix write.
Bag ReadBag(const QString& text)
{
    Bag bag;
    const auto header = "[Menu]"_L1;
    qsizetype at =
        text.startsWith(header, Qt::CaseInsensitive) ? 0 : text.indexOf("\n[Menu]"_L1, 0, Qt::CaseInsensitive);
    if (at < 0)
        return bag;
    at = text.indexOf(u']', at) + 1;
    while (at < text.size()) {
        qsizetype end = text.indexOf(u'\n', at);
        if (end < 0)
            end = text.size();
        QStringView line = QStringView(text).mid(at, end - at);
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.startsWith(u'['))
            break;
        TakeLine(line, bag);
        at = end + 1;
    }
    return bag;
}

// The values of the element with one running number; names are asked for in lower case.
class Element
{
public:
    Element(const Bag& bag, int number) : bag_(bag), suffix_(u'_' + QString::number(number)) {}

    QString Text(QLatin1StringView name) const { return bag_.value(name + suffix_); }
    // A number in front counts, the rest of the text does not.
    int Number(QLatin1StringView name, int fallback = 0) const
    {
        const auto at = bag_.find(name + suffix_);
        return at == bag_.end() ? fallback : Variant(*at).ToInteger();
    }
    qint16 Short(QLatin1StringView name, int fallback = 0) const
    {
        return Convert<qint16>::From(qint32(Number(name, fallback)));
    }
    bool Boolean(QLatin1StringView name) const
    {
        const auto at = bag_.find(name + suffix_);
        return at != bag_.end() && BooleanOf(Variant(*at));
    }

private:
    const Bag& bag_;
    QString suffix_;
};

constexpr ImageSource ImageOfFile(int source)
{
    return source == 1 ? ImageSource::Resource : source == 2 ? ImageSource::File : ImageSource::None;
}

constexpr int FileOfImage(ImageSource source)
{
    return source == ImageSource::Resource ? 1 : source == ImageSource::File ? 2 : 0;
}

int KeyOfTool(const QString& text)
{
    bool decimal = false;
    const int key = text.toInt(&decimal);
    if (!decimal || key <= 0)
        RaiseInvalid();
    return key;
}

MenuTool ReadTool(const Element& element)
{
    MenuTool tool;
    tool.key = KeyOfTool(element.Text("key"_L1));
    tool.type = static_cast<ToolType>(element.Short("type"_L1));
    tool.style = element.Short("style"_L1);
    tool.caption = element.Text("caption"_L1);
    tool.enabled = element.Boolean("enabled"_L1);
    tool.visible = element.Boolean("visible"_L1);
    tool.checked = element.Boolean("checked"_L1);
    tool.beginGroup = element.Boolean("begingroup"_L1);
    tool.isDefault = element.Boolean("default"_L1);
    tool.shortcut = element.Text("shortcut"_L1);
    tool.toolTipText = element.Text("tooltip"_L1);
    tool.imageSource = ImageOfFile(element.Number("imagesource"_L1));
    tool.normalImage = element.Text("normalimage"_L1);
    tool.checkedImage = element.Text("checkedimage"_L1);
    constexpr int widest = 0x7FFF;
    tool.width = std::clamp(element.Number("minwidth"_L1), 0, widest) * kTwipsPerPixel;
    tool.action = element.Text("action"_L1);
    return tool;
}

// counter: the running number; that of the band or tool whose tools these are on entry, that of the last on return.
void LoadMenuTools(int& counter, std::vector<MenuTool>& tools, const Bag& bag, int depth)
{
    if (depth > kDeepestTool)
        RaiseInvalid();
    const int count = Element(bag, counter).Number("itemcount"_L1);
    for (int i = 0; i < count; ++i) {
        ++counter;
        tools.push_back(ReadTool(Element(bag, counter)));
        LoadMenuTools(counter, tools.back().tools, bag, depth + 1);
    }
}

// Nothing: the band cannot be added to those that stand.
std::optional<MenuBand> ReadBand(const Element& element, const std::vector<MenuBand>& standing)
{
    MenuBand band;
    band.key = element.Text("key"_L1);
    band.type = static_cast<BandType>(element.Short("type"_L1)); // what cannot be this fails the whole file
    try {
        band.style = element.Short("style"_L1);
        band.title = element.Text("title"_L1);
        band.dock = static_cast<BandDock>(element.Short("dock"_L1, kDefaultDock));
        band.locked = element.Boolean("locked"_L1);
        band.icons = element.Boolean("largeicons"_L1) ? IconSize::Large : IconSize::Small;
        band.enabled = element.Boolean("enabled"_L1);
        band.visible = element.Boolean("visible"_L1);
    } catch (const Failure&) { // only hand-edited files come here, and the rest of the menu is worth having
        return std::nullopt;
    }
    const bool taken = std::any_of(standing.begin(), standing.end(),
                                   [&](const MenuBand& other) { return SameBandKey(other.key, band.key); });
    return band.key.isEmpty() || taken ? std::nullopt : std::optional(std::move(band));
}

// --- writing

class Lines
{
public:
    explicit Lines(QStringList& lines) : lines_(lines) {}
    void SetNumber(int number) { suffix_ = u'_' + QString::number(number); }

    void Always(QLatin1StringView name, const QString& value) { lines_.append(name + suffix_ + u'=' + OneLine(value)); }
    void Text(QLatin1StringView name, const QString& value)
    {
        if (!value.isEmpty())
            Always(name, value);
    }
    void Number(QLatin1StringView name, int value)
    {
        if (value != 0)
            Always(name, QString::number(value));
    }
    void Boolean(QLatin1StringView name, bool value)
    {
        if (value)
            Always(name, u"True"_s);
    }

private:
    static QString OneLine(QString value)
    {
        for (QChar& c : value)
            if (c == u'\r' || c == u'\n' || c == u'\0')
                c = u' ';
        const bool losesQuotes = value.size() >= 2 && value.startsWith(u'"') && value.endsWith(u'"');
        return losesQuotes ? u'"' + value + u'"' : value;
    }

    QStringList& lines_;
    QString suffix_;
};

void WriteTools(Lines& lines, int& counter, const std::vector<MenuTool>& tools)
{
    for (const MenuTool& tool : tools) {
        lines.SetNumber(++counter);
        lines.Always("key"_L1, QString::number(tool.key));
        lines.Number("type"_L1, static_cast<int>(tool.type));
        lines.Number("style"_L1, tool.style);
        lines.Text("caption"_L1, tool.caption);
        lines.Boolean("enabled"_L1, tool.enabled);
        lines.Boolean("visible"_L1, tool.visible);
        lines.Boolean("checked"_L1, tool.checked);
        lines.Boolean("begingroup"_L1, tool.beginGroup);
        lines.Boolean("default"_L1, tool.isDefault);
        lines.Text("shortcut"_L1, tool.shortcut);
        lines.Text("tooltip"_L1, tool.toolTipText);
        lines.Number("imagesource"_L1, FileOfImage(tool.imageSource));
        lines.Text("normalimage"_L1, tool.normalImage);
        lines.Text("checkedimage"_L1, tool.checkedImage);
        lines.Number("minwidth"_L1, tool.width / kTwipsPerPixel);
        lines.Text("action"_L1, tool.action);
        lines.Number("ITEMCOUNT"_L1, static_cast<int>(tool.tools.size()));
        WriteTools(lines, counter, tool.tools);
    }
}

} // namespace

std::vector<MenuBand> LoadMenuBag(const QString& text)
{
    const Bag bag = ReadBag(text);
    const int count = Variant(bag.value(u"bandcount"_s, u"-1"_s)).ToInteger();
    if (count < 0)
        RaiseInvalid();
    std::vector<MenuBand> bands;
    int counter = 0;
    for (int i = 0; i < std::min(count, kMostBands); ++i) {
        ++counter;
        // Deliberately the number does not move past the tools of a band that is left out.
        if (auto band = ReadBand(Element(bag, counter), bands)) {
            LoadMenuTools(counter, band->tools, bag, 0);
            bands.push_back(*std::move(band));
        }
    }
    return bands;
}

QStringList MenuFileLines(const std::vector<MenuBand>& bands)
{
    constexpr int version = 3;
    QStringList text{u"Version=%1"_s.arg(version), u"BandCount=%1"_s.arg(bands.size())};
    Lines lines(text);
    int counter = 0;
    for (const MenuBand& band : bands) {
        lines.SetNumber(++counter);
        lines.Always("KEY"_L1, band.key);
        lines.Always("TYPE"_L1, QString::number(static_cast<int>(band.type)));
        lines.Number("STYLE"_L1, band.style);
        lines.Text("TITLE"_L1, band.title);
        lines.Number("DOCK"_L1, static_cast<int>(band.dock));
        lines.Boolean("LOCKED"_L1, band.locked);
        lines.Boolean("LARGEICONS"_L1, band.icons == IconSize::Large);
        lines.Boolean("ENABLED"_L1, band.enabled);
        lines.Boolean("VISIBLE"_L1, band.visible);
        lines.Number("ITEMCOUNT"_L1, static_cast<int>(band.tools.size()));
        WriteTools(lines, counter, band.tools);
    }
    return text;
}

void WriteMenuFile(Profile& profile, const QString& file, const std::vector<MenuBand>& bands, bool overrideUserMenu)
{
    ProfileGroup group(profile, file);
    profile.ProfileReplaceSection(u"Menu"_s, MenuFileLines(bands), file);
    profile.ProfileSetBool(u"Menu"_s, u"OverrideUserMenu"_s, overrideUserMenu, false, file);
    group.Commit();
}

} // namespace kestrune
