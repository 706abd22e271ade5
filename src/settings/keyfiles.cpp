#include "keyfiles.h"

#include <settings/profile.h>

#include <utility>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// One section of a document; writes go to the group, and to nothing when there is none.
class SectionKeys : public KeyFile
{
public:
    SectionKeys(const IniDocument& document, QString section, ProfileGroup* group = nullptr)
        : document_(document), section_(std::move(section)), group_(group)
    {}

    QString GetString(const QString& key, const QString& fallback) const override
    {
        const QString text = document_.Get(section_, key).value_or(QString());
        return text.isEmpty() ? fallback : text;
    }
    int GetInt(const QString& key, int fallback) const override
    {
        const QString text = GetString(key, {});
        return text.isEmpty() ? fallback : ParseNumber(text);
    }
    bool GetBool(const QString& key, bool fallback) const override
    {
        const QString text = GetString(key, {});
        return text.isEmpty() ? fallback : ParseBool(text);
    }
    QStringList Keys() const override { return document_.Keys(section_); }
    bool Contains(const QString& key) const override { return document_.Get(section_, key).has_value(); }

    void SetString(const QString& key, const QString& value, const QString& fallback) override
    {
        Put(key, value, !value.isEmpty() && value != fallback);
    }
    void SetInt(const QString& key, int value, int fallback) override
    {
        Put(key, QString::number(value), value != fallback);
    }
    void SetBool(const QString& key, bool value, bool fallback) override
    {
        Put(key, value ? u"True"_s : u"False"_s, value != fallback);
    }
    void Remove(const QString& key) override { Put(key, {}, false); }

private:
    void Put(const QString& key, const QString& value, bool store)
    {
        if (group_ && store)
            group_->Set(section_, key, value);
        else if (group_)
            group_->Remove(section_, key);
    }

    const IniDocument& document_;
    QString section_;
    ProfileGroup* group_;
};

} // namespace

void ProfileKeyFiles::Read(const QString& path, const QString& section, const std::function<void(const KeyFile&)>& use)
{
    const IniDocument document = profile_.ReadDocument(path);
    use(SectionKeys(document, section));
}

void ProfileKeyFiles::Change(const QString& path, const QString& section, const std::function<void(KeyFile&)>& use)
{
    ProfileGroup group(profile_, path);
    SectionKeys keys(group.Document(), section, &group);
    use(keys);
    group.Commit();
}

} // namespace kestrune
