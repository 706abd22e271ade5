#include "profile.h"

#include "quietly.h"

#include <dispatch/variant.h>
#include <platform/files.h>

#include <algorithm>
#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Characters that the INI calls' buffers take, terminator included.
constexpr qsizetype kTextBuffer = 4096;
constexpr qsizetype kNumberBuffer = 1024;

// The INI reader strips quotes and blanks at the ends; what has its own goes inside a pair that may be stripped.
QString QuotedForReader(const QString& value)
{
    const auto isStripped = [](QChar c) { return c == u'"' || c == u'\'' || c.isSpace(); };
    const bool needsPair = !value.isEmpty() && (isStripped(value.front()) || isStripped(value.back()));
    return needsPair ? u'"' + value + u'"' : value;
}

// A character above 255 turns a file without a byte-order mark into UTF-16 with one.
void SetText(IniDocument& document, const QString& section, const QString& key, const QString& value)
{
    const bool wide = std::ranges::any_of(value, [](QChar c) { return c.unicode() > 0xFF; });
    if (wide && !HasMark(document.Encoding()))
        document.Convert(TextEncoding::Utf16LeMark);
    document.Set(section, key, QuotedForReader(value));
}

// Whole names only, each with its terminator and one more behind the last.
QStringList CutToBuffer(const QStringList& names)
{
    QStringList fitting;
    qsizetype used = 1;
    for (const auto& name : names) {
        used += name.size() + 1;
        if (used > kTextBuffer)
            break;
        fitting += name;
    }
    return fitting;
}

QString BoolText(bool value) { return value ? u"True"_s : u"False"_s; }

} // namespace

int ParseNumber(const QString& text) { return Variant(text).ToInteger(); }

bool ParseBool(const QString& text)
{
    return Variant(text).ToDouble() != 0 || text.startsWith(u't', Qt::CaseInsensitive);
}

// The changes of an open group: `view` is the file as it was read, with all of `ops` done.
struct Profile::Pending
{
    QByteArray read;
    IniDocument view;
    std::vector<Op> ops;

    void Do(const Op& op)
    {
        op(view);
        ops.push_back(op);
    }
    void TakeBack(std::size_t count)
    {
        if (ops.size() == count)
            return;
        ops.resize(count);
        view = IniDocument::Parse(read);
        for (const auto& op : ops)
            op(view);
    }
};

Profile::Profile(FileSystem& files) : files_(files) {}

Profile::~Profile() = default;

std::shared_ptr<Profile::Pending> Profile::PendingOf(const QString& file) const
{
    if (pending_.empty())
        return nullptr;
    const auto at = pending_.find(files_.Identity(file));
    return at == pending_.end() ? nullptr : at->second.lock();
}

IniDocument Profile::ReadDocument(const QString& file) const
{
    if (const auto group = PendingOf(file))
        return group->view;
    return IniDocument::Parse(files_.Read(file));
}

QString Profile::Find(const QString& section, const QString& key, qsizetype buffer, const QString& file) const
{
    QString text;
    Quietly([&] { text = ReadDocument(file).Get(section, key).value_or(QString()); });
    return text.left(buffer - 1);
}

QString Profile::Find(const QString& section, const QString& key, qsizetype buffer, const QString& file,
                      const QString& fallback) const
{
    const QString text = Find(section, key, buffer, file);
    return text.isEmpty() && !fallback.isEmpty() ? Find(section, key, buffer, fallback) : text;
}

QString Profile::ProfileGetString(const QString& section, const QString& key, const QString& defaultValue,
                                  const QString& file, const QString& fallback) const
{
    const QString text = Find(section, key, kTextBuffer, file, fallback);
    return text.isEmpty() ? defaultValue : text;
}

int Profile::ProfileGetInt(const QString& section, const QString& key, int defaultValue, const QString& file,
                           const QString& fallback) const
{
    const QString text = Find(section, key, kNumberBuffer, file, fallback);
    return text.isEmpty() ? defaultValue : ParseNumber(text);
}

bool Profile::ProfileGetBool(const QString& section, const QString& key, bool defaultValue, const QString& file,
                             const QString& fallback) const
{
    const QString text = Find(section, key, kNumberBuffer, file, fallback);
    return text.isEmpty() ? defaultValue : ParseBool(text);
}

int Profile::ProfileGetIntOrBool(const QString& section, const QString& key, int defaultValue, const QString& file,
                                 const QString& fallback) const
{
    const QString text = Find(section, key, kNumberBuffer, file, fallback);
    if (text.isEmpty())
        return defaultValue;
    const int number = ParseNumber(text);
    return number != 0 ? number : ParseBool(text) ? -1 : 0;
}

QStringList Profile::ProfileGetKeys(const QString& section, const QString& file, const QString& fallback) const
{
    QStringList keys;
    Quietly([&] { keys = CutToBuffer(ReadDocument(file).Keys(section)); });
    return keys.isEmpty() && !fallback.isEmpty() ? ProfileGetKeys(section, fallback) : keys;
}

QStringList Profile::ProfileGetSections(const QString& file) const
{
    QStringList sections;
    Quietly([&] { sections = CutToBuffer(ReadDocument(file).Sections()); });
    return sections;
}

// In an open group the change waits for its Commit, and a name that no file can hold is raised at once. On its own
// it is written here and now, silently.
void Profile::Apply(const QString& file, const Op& op)
{
    if (const auto group = PendingOf(file)) {
        group->Do(op);
        return;
    }
    Quietly([&] {
        files_.Edit(file, [&](const std::optional<QByteArray>& old) -> std::optional<QByteArray> {
            auto document = IniDocument::Parse(old.value_or(QByteArray()));
            op(document);
            const QByteArray content = document.Serialise();
            return !old && content.isEmpty() ? std::nullopt : std::optional(content);
        });
    });
}

void Profile::StoreText(const QString& section, const QString& key, const QString& value, bool store,
                        const QString& file)
{
    Apply(file, [=](IniDocument& document) {
        if (store)
            SetText(document, section, key, value);
        else
            document.Remove(section, key);
    });
}

void Profile::ProfileSetString(const QString& section, const QString& key, const QString& value,
                               const QString& defaultValue, const QString& file, const QString& fallback)
{
    const QString unstored = fallback.isEmpty() ? defaultValue : Find(section, key, kTextBuffer, fallback);
    StoreText(section, key, value, !value.isEmpty() && value != unstored, file);
}

// The rules of numbers and booleans differ when there is no fallback file, deliberately: a default of 0 stores every
// number, even a 0, while a boolean is left out only when value and default are both false.
void Profile::ProfileSetInt(const QString& section, const QString& key, int value, int defaultValue,
                            const QString& file, const QString& fallback)
{
    const QString inFallback = fallback.isEmpty() ? QString() : Find(section, key, kNumberBuffer, fallback);
    const bool store = fallback.isEmpty() ? defaultValue == 0 || value != defaultValue
                                          : inFallback.isEmpty() || value != ParseNumber(inFallback);
    StoreText(section, key, QString::number(value), store, file);
}

void Profile::ProfileSetBool(const QString& section, const QString& key, bool value, bool defaultValue,
                             const QString& file, const QString& fallback)
{
    const QString inFallback = fallback.isEmpty() ? QString() : Find(section, key, kNumberBuffer, fallback);
    const bool store =
        fallback.isEmpty() ? defaultValue || value : inFallback.isEmpty() || value != ParseBool(inFallback);
    StoreText(section, key, BoolText(value), store, file);
}

void Profile::ProfileDeleteSection(const QString& section, const QString& file)
{
    Apply(file, [=](IniDocument& document) { document.RemoveSection(section); });
}

void Profile::ProfileReplaceSection(const QString& section, const QStringList& lines, const QString& file)
{
    Apply(file, [=](IniDocument& document) { document.ReplaceSection(section, lines); });
}

ProfileGroup::ProfileGroup(Profile& profile, const QString& file)
    : profile_(profile), pending_(profile.PendingOf(file)), file_(file)
{
    if (pending_) {
        firstOp_ = pending_->ops.size();
        return;
    }
    outermost_ = true;
    pending_ = std::make_shared<Profile::Pending>();
    Quietly([&] { pending_->read = profile_.files_.Read(file_); }); // what cannot be read is raised by Commit
    pending_->view = IniDocument::Parse(pending_->read);
    identity_ = profile_.files_.Identity(file_);
    profile_.pending_[identity_] = pending_;
}

ProfileGroup::~ProfileGroup()
{
    if (outermost_)
        profile_.pending_.erase(identity_);
    else if (!committed_)
        pending_->TakeBack(firstOp_);
}

void ProfileGroup::Commit()
{
    if (outermost_ && !pending_->ops.empty()) {
        profile_.files_.Edit(file_, [&](const std::optional<QByteArray>& old) -> std::optional<QByteArray> {
            IniDocument document = pending_->view;
            if (old.value_or(QByteArray()) !=
                pending_->read) { // others wrote meanwhile: theirs stays, ours goes on top
                document = IniDocument::Parse(old.value_or(QByteArray()));
                for (const auto& op : pending_->ops)
                    op(document);
            }
            const QByteArray content = document.Serialise();
            return !old && content.isEmpty() ? std::nullopt : std::optional(content);
        });
        pending_->ops.clear();
        pending_->read = pending_->view.Serialise();
    }
    committed_ = true;
}

const IniDocument& ProfileGroup::Document() const { return pending_->view; }

void ProfileGroup::Set(const QString& section, const QString& key, const QString& value)
{
    pending_->Do([=](IniDocument& document) { SetText(document, section, key, value); });
}

void ProfileGroup::Remove(const QString& section, const QString& key)
{
    pending_->Do([=](IniDocument& document) { document.Remove(section, key); });
}

} // namespace kestrune
