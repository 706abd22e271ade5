#pragma once

// A file system in memory. In Windows style it has drives, UNC names, working folders for each drive, names without
// regard to case, and backslashes, so that the path rules can be tried to the letter on any machine. It refuses what
// a real one would refuse.

#include <platform/files.h>
#include <platform/systemfailure.h>

#include <cerrno>
#include <map>

namespace kestrune {

class MemoryFileSystem : public FileSystem
{
public:
    enum class Style
    {
        Native,
        Windows
    };

    explicit MemoryFileSystem(Style style = Style::Native) : windows_(style == Style::Windows)
    {
        if (!windows_)
            AddFolder(QString(Separator()));
    }

    // --- for tests
    void AddFolder(const QString& path) // with all above it
    {
        const QString name = Trimmed(path);
        if (name.isEmpty() || Find(name))
            return;
        AddFolder(Parent(name));
        nodes_[Key(name)] = {name, std::nullopt, false};
    }
    void AddFile(const QString& path, const QByteArray& content = {})
    {
        AddFolder(Parent(path));
        nodes_[Key(path)] = {path, content, false};
    }
    void SetReadOnly(const QString& path) { nodes_.at(Key(path)).readOnly = true; }
    QByteArray Content(const QString& path) const { return nodes_.at(Key(path)).content.value(); }

    QString workingFolder;
    std::map<QString, QString> workingFolders; // of the other drives, "D:" and the folder
    bool full = false;                         // no more space: every write fails

    // --- FileSystem
    PathKind Kind(const QString& path) const override
    {
        const auto* node = Find(Trimmed(path));
        return !node ? PathKind::Missing : node->content ? PathKind::File : PathKind::Folder;
    }
    bool IsReadOnly(const QString& path) const override
    {
        const auto* node = Find(path);
        return node && node->readOnly;
    }
    QString Identity(const QString& path) const override { return Key(path); }
    QString WorkingFolder(const QString& drive) const override
    {
        const auto at = workingFolders.find(drive.toUpper());
        return drive.isEmpty() ? workingFolder : at == workingFolders.end() ? drive + QChar(u'\\') : at->second;
    }
    QStringList List(const QString& folder) const override
    {
        QStringList names;
        for (const auto& [key, node] : nodes_)
            if (Key(Parent(node.name)) == Key(Trimmed(folder)))
                names += node.name.section(Separator(), -1);
        return names;
    }
    QByteArray Read(const QString& path) const override
    {
        const auto* node = Find(path);
        if (!node)
            Raise(ENOENT, path);
        if (!node->content)
            Raise(EISDIR, path);
        return *node->content;
    }
    void Edit(const QString& path, const Change& change) override
    {
        if (Kind(Parent(path)) != PathKind::Folder)
            Raise(ENOENT, path);
        const auto* node = Find(path);
        if (node && !node->content)
            Raise(EISDIR, path);
        const auto content = change(node ? node->content : std::nullopt);
        if (!content || (node && content == node->content))
            return;
        if (node && node->readOnly)
            Raise(EACCES, path);
        if (full)
            Raise(ENOSPC, path);
        nodes_[Key(path)] = {node ? node->name : path, content, false};
    }
    void MakeFolder(const QString& path) override
    {
        const QString name = Trimmed(path);
        if (Find(name))
            Raise(EEXIST, path, Subject::Folder);
        if (Kind(Parent(name)) != PathKind::Folder)
            Raise(ENOENT, path, Subject::Folder);
        if (full)
            Raise(ENOSPC, path, Subject::Folder);
        AddFolder(name);
    }
    void Remove(const QString& path) override
    {
        if (Kind(path) != PathKind::File)
            Raise(Kind(path) == PathKind::Missing ? ENOENT : EISDIR, path);
        nodes_.erase(Key(path));
    }
    void RemoveFolder(const QString& path) override
    {
        if (Kind(path) != PathKind::Folder)
            Raise(ENOENT, path, Subject::Folder);
        if (!List(path).isEmpty())
            Raise(ENOTEMPTY, path, Subject::Folder);
        nodes_.erase(Key(Trimmed(path)));
    }
    void Rename(const QString& from, const QString& to) override
    {
        if (Kind(from) != PathKind::File)
            Raise(ENOENT, from);
        if (Kind(to) != PathKind::Missing)
            Raise(EEXIST, from);
        auto node = nodes_.extract(Key(from));
        node.key() = Key(to);
        node.mapped().name = to;
        nodes_.insert(std::move(node));
    }
    void Copy(const QString& from, const QString& to) override { Replace(to, Read(from)); }
    void ProbeWrite(const QString& path) override
    {
        if (Kind(path) == PathKind::Folder || IsReadOnly(path))
            Raise(EACCES, path);
        if (Kind(Parent(path)) != PathKind::Folder)
            Raise(ENOENT, path);
    }

private:
    struct Node
    {
        QString name;
        std::optional<QByteArray> content; // nothing: a folder
        bool readOnly = false;
    };

    QChar Separator() const { return windows_ ? QChar(u'\\') : QChar(u'/'); }
    QString Key(const QString& path) const { return windows_ ? path.toCaseFolded() : path; }
    // Without the last separator, but a root keeps its own: "C:\", "/".
    QString Trimmed(const QString& path) const
    {
        const bool root = path.size() == 1 || (windows_ && path.size() == 3 && path.at(1) == u':');
        return path.endsWith(Separator()) && !root ? path.chopped(1) : path;
    }
    QString Parent(const QString& path) const
    {
        const auto last = path.lastIndexOf(Separator());
        const bool isRoot = Trimmed(path).endsWith(Separator());
        return last <= 0 || isRoot         ? (last == 0 && path.size() > 1 ? QString(Separator()) : QString())
               : path.at(last - 1) == u':' ? path.left(last + 1)
                                           : path.left(last);
    }
    const Node* Find(const QString& path) const
    {
        const auto at = nodes_.find(Key(path));
        return at == nodes_.end() ? nullptr : &at->second;
    }
    [[noreturn]] static void Raise(int systemError, const QString& path, Subject subject = Subject::File)
    {
        throw SystemFailure(systemError, subject, path);
    }

    bool windows_;
    std::map<QString, Node> nodes_;
};

} // namespace kestrune
