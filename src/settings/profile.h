#pragma once

// The INI layer: typed reads and writes on any INI file, with an optional second file as fallback, and the rule
// that a value equal to its default is not stored. Reads never fail, they give the default; single writes are
// silent. A caller that must know what became of its changes gathers them in a ProfileGroup.

#include <platform/inifile.h>

#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace kestrune {

class FileSystem;

// True when the text's number is not 0, or when it begins with "T" in either case.
bool ParseBool(const QString& text);
// The number at the start of a text, as whole number; 0 when there is none.
int ParseNumber(const QString& text);

class Profile
{
public:
    explicit Profile(FileSystem& files);
    ~Profile();
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    FileSystem& Files() const { return files_; }

    // Every read looks in `file`, and in `fallback` when that found nothing and a fallback is named.
    QString ProfileGetString(const QString& section, const QString& key, const QString& defaultValue,
                             const QString& file, const QString& fallback = {}) const;
    int ProfileGetInt(const QString& section, const QString& key, int defaultValue, const QString& file,
                      const QString& fallback = {}) const;
    bool ProfileGetBool(const QString& section, const QString& key, bool defaultValue, const QString& file,
                        const QString& fallback = {}) const;
    // "True" gives -1.
    int ProfileGetIntOrBool(const QString& section, const QString& key, int defaultValue, const QString& file,
                            const QString& fallback = {}) const;
    // What fits 4096 characters, in file order.
    QStringList ProfileGetKeys(const QString& section, const QString& file, const QString& fallback = {}) const;
    QStringList ProfileGetSections(const QString& file) const;
    // The whole file, changes of an open group included. Raises Failure when it cannot be read (53, 75, ...).
    IniDocument ReadDocument(const QString& file) const;

    void ProfileSetString(const QString& section, const QString& key, const QString& value, const QString& defaultValue,
                          const QString& file, const QString& fallback = {});
    void ProfileSetInt(const QString& section, const QString& key, int value, int defaultValue, const QString& file,
                       const QString& fallback = {});
    void ProfileSetBool(const QString& section, const QString& key, bool value, bool defaultValue, const QString& file,
                        const QString& fallback = {});
    void ProfileDeleteSection(const QString& section, const QString& file);
    // lines: "key=value" as they are to stand
    void ProfileReplaceSection(const QString& section, const QStringList& lines, const QString& file);

private:
    friend class ProfileGroup;
    struct Pending;
    using Op = std::function<void(IniDocument&)>;

    std::shared_ptr<Pending> PendingOf(const QString& file) const; // null: no group is open
    QString Find(const QString& section, const QString& key, qsizetype buffer, const QString& file) const;
    QString Find(const QString& section, const QString& key, qsizetype buffer, const QString& file,
                 const QString& fallback) const;
    void Apply(const QString& file, const Op& op);
    void StoreText(const QString& section, const QString& key, const QString& value, bool store, const QString& file);

    FileSystem& files_;
    std::map<QString, std::weak_ptr<Pending>> pending_; // open groups, by the file's identity
};

// While a group is open, all changes of its file made through the same Profile are gathered, and reads see them.
// Commit puts them in place whole, on top of what other processes have written meanwhile. A group inside another
// group of the same file joins it: its Commit hands its changes to the outer one. A group that ends without
// Commit takes its changes back.
class ProfileGroup
{
public:
    ProfileGroup(Profile& profile, const QString& file);
    ~ProfileGroup();
    ProfileGroup(const ProfileGroup&) = delete;
    ProfileGroup& operator=(const ProfileGroup&) = delete;

    // Raises Failure (53, 61, 70, 75, 76, ...) with a text for people; then the file is as it was.
    void Commit();

    // The document with the group's changes so far, and changes without the rule about defaults.
    const IniDocument& Document() const;
    void Set(const QString& section, const QString& key, const QString& value);
    void Remove(const QString& section, const QString& key);

private:
    Profile& profile_;
    std::shared_ptr<Profile::Pending> pending_;
    QString file_;
    QString identity_; // of the outermost
    bool outermost_ = false;
    bool committed_ = false;
    std::size_t firstOp_ = 0;
};

} // namespace kestrune
