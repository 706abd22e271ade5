#pragma once

// The text of a hive's file: parse, change, serialise. UTF-8, one value on a line; lines that are not understood
// stay where they are.

#include <platform/hive.h>

#include <vector>

namespace kestrune {

class HiveFile
{
public:
    static QByteArray Heading(); // comment at the head of a new file
    static HiveFile Parse(const QByteArray& content);
    QByteArray Serialise() const;

    std::optional<HiveValue> Get(const QString& key, const QString& name) const;
    bool HasKey(const QString& key) const;
    QStringList Keys(const QString& key) const;
    QStringList Values(const QString& key) const;
    void Set(const QString& key, const QString& name, const HiveValue& value);
    void Remove(const QString& key, const QString& name);
    void RemoveKey(const QString& key);

private:
    enum class Kind
    {
        Other,
        Key,
        Value
    };
    struct Line
    {
        Kind kind = Kind::Other;
        QString name; // of the key or value
        HiveValue value;
        QByteArray raw; // without its line end
    };

    static Line Classify(const QByteArray& raw);
    static Line Make(const QString& name, const HiveValue& value);
    template <typename Visit>
    void EachValue(const QString& key, Visit visit) const;

    std::vector<Line> lines_;
};

} // namespace kestrune
