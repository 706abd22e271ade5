#include "textfile.h"

#include "orxfile.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstring>
#include <map>
#include <memory>
#include <mutex>

namespace kestrune::textfile {

using namespace Qt::StringLiterals;

namespace {

struct Listing
{
    QFileInfoList entries;
    qsizetype current = 0;
};

// Handles are the process's, as those of the system are: this is the one place that knows them.
template <typename T>
class HandleTable
{
public:
    explicit HandleTable(OrxHandle first) : next_(first) {}

    OrxHandle Add(std::shared_ptr<T> object)
    {
        const std::scoped_lock guard(lock_);
        const OrxHandle handle = next_++;
        open_.emplace(handle, std::move(object));
        return handle;
    }
    std::shared_ptr<T> Find(OrxHandle handle)
    {
        const std::scoped_lock guard(lock_);
        const auto at = open_.find(handle);
        return at == open_.end() ? nullptr : at->second;
    }
    std::shared_ptr<T> Take(OrxHandle handle)
    {
        const std::scoped_lock guard(lock_);
        const auto node = open_.extract(handle);
        return node.empty() ? nullptr : node.mapped();
    }

private:
    std::mutex lock_;
    std::map<OrxHandle, std::shared_ptr<T>> open_;
    OrxHandle next_;
};

HandleTable<OrxFile>& Files()
{
    static HandleTable<OrxFile> files(1);
    return files;
}

HandleTable<Listing>& Listings()
{
    static HandleTable<Listing> listings(0x40000000); // apart from files, so that a mix-up finds nothing
    return listings;
}

QString FromAnsi(const char* text)
{
    return DecodeText(QByteArrayView(text, qsizetype(std::strlen(text))), TextEncoding::Ansi);
}

OrxHandle OpenAt(const QString& path, std::uint32_t access, std::uint32_t share, std::uint32_t disposition)
{
    auto file = std::make_shared<OrxFile>(path);
    return file->Open(access, share, disposition) ? Files().Add(std::move(file)) : 0;
}

std::uint32_t AttributesOf(const QFileInfo& info)
{
    const std::uint32_t attributes = (info.isWritable() ? 0 : OrxAttributeReadOnly) |
                                     (info.isHidden() ? OrxAttributeHidden : 0) |
                                     (info.isDir() ? OrxAttributeFolder : 0);
    return attributes == 0 ? OrxAttributeNormal : attributes;
}

// "*" any characters, "?" one; "*.*" is everything, with or without a dot.
QRegularExpression PatternOf(const QString& pattern)
{
    QString expression = QRegularExpression::escape(pattern == u"*.*"_s ? u"*"_s : pattern);
    expression.replace(u"\\*"_s, u".*"_s).replace(u"\\?"_s, u"."_s);
    return QRegularExpression(QRegularExpression::anchoredPattern(expression),
                              QRegularExpression::CaseInsensitiveOption |
                                  QRegularExpression::DotMatchesEverythingOption);
}

bool FillRecord(const std::shared_ptr<Listing>& listing, OrxFindRecord* record)
{
    if (!listing || listing->current >= listing->entries.size())
        return false;
    const auto& info = listing->entries[listing->current];
    if (record)
        *record = {info.fileName(), AttributesOf(info), info.size(), info.lastModified().toMSecsSinceEpoch()};
    return true;
}

OrxHandle FindFirst(const QString& pattern, OrxFindRecord* record)
{
    const QFileInfo where(pattern);
    const auto matching = PatternOf(where.fileName());
    auto listing = std::make_shared<Listing>();
    const auto filters = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const auto& info : where.dir().entryInfoList(filters, QDir::Name))
        if (matching.match(info.fileName()).hasMatch())
            listing->entries += info;
    return FillRecord(listing, record) ? Listings().Add(std::move(listing)) : 0;
}

} // namespace

OrxHandle orxOpenFileW(const char16_t* path, std::uint32_t access, std::uint32_t share, std::uint32_t disposition)
{
    return OpenAt(QString::fromUtf16(path), access, share, disposition);
}

OrxHandle orxOpenFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t disposition)
{
    return OpenAt(FromAnsi(path), access, share, disposition);
}

bool orxCloseFile(OrxHandle file)
{
    const auto open = Files().Take(file);
    return open && open->Close();
}

bool orxReadLineW(OrxHandle file, QString* line)
{
    const auto open = Files().Find(file);
    if (!open)
        return false;
    auto found = open->ReadLine();
    if (found)
        *line = std::move(*found);
    return found.has_value();
}

std::uint32_t orxReadFile(OrxHandle file, void* buffer, std::uint32_t length)
{
    const auto open = Files().Find(file);
    if (!open)
        return 0;
    if (open->IsBinary())
        return std::uint32_t(open->ReadBytes(static_cast<char*>(buffer), length));
    const QString text = open->ReadText(length);
    if (open->Charset() == OrxCharsetUtf16)
        std::memcpy(buffer, text.utf16(), std::size_t(text.size()) * sizeof(char16_t));
    else
        std::memcpy(buffer, EncodeText(text, TextEncoding::Ansi).constData(), std::size_t(text.size()));
    return std::uint32_t(text.size());
}

std::uint32_t orxWriteFile(OrxHandle file, const void* buffer, std::uint32_t length)
{
    const auto open = Files().Find(file);
    if (!open)
        return 0;
    if (open->IsBinary())
        return std::uint32_t(open->WriteBytes(static_cast<const char*>(buffer), length));
    if (open->Charset() == OrxCharsetUtf16)
        return open->WriteText(QStringView(static_cast<const char16_t*>(buffer), qsizetype(length))) ? length : 0;
    const QByteArrayView bytes(static_cast<const char*>(buffer), qsizetype(length));
    return open->WriteText(DecodeText(bytes, TextEncoding::Ansi)) ? length : 0;
}

std::int64_t orxSetFilePointer(OrxHandle file, std::int64_t offset, std::int32_t origin)
{
    const auto open = Files().Find(file);
    return open ? open->Seek(offset, origin) : -1;
}

bool orxFileAtEOF(OrxHandle file)
{
    const auto open = Files().Find(file);
    return !open || open->AtEnd();
}

std::int64_t orxGetFileSize(OrxHandle file)
{
    const auto open = Files().Find(file);
    return open ? open->Size() : -1;
}

bool orxSetFileEncoding(OrxHandle file, std::int32_t encoding)
{
    const auto open = Files().Find(file);
    return open && open->SetEncoding(encoding);
}

std::int32_t orxGetFileEncoding(OrxHandle file, std::int32_t)
{
    const auto open = Files().Find(file);
    return open ? open->EncodingNumber() : 0;
}

bool orxSetTransferCharset(OrxHandle file, std::int32_t charset)
{
    const auto open = Files().Find(file);
    if (!open || (charset != OrxCharset8Bit && charset != OrxCharsetUtf16))
        return false;
    open->SetCharset(charset);
    return true;
}

std::int32_t orxGetTransferCharset(OrxHandle file)
{
    const auto open = Files().Find(file);
    return open ? open->Charset() : 0;
}

bool orxSetFileBinary(OrxHandle file, std::int32_t on)
{
    const auto open = Files().Find(file);
    if (open)
        open->SetBinary(on != 0);
    return open != nullptr;
}

OrxHandle orxFindFirstFileW(const char16_t* pattern, OrxFindRecord* record)
{
    return FindFirst(QString::fromUtf16(pattern), record);
}

OrxHandle orxFindFirstFileA(const char* pattern, OrxFindRecord* record) { return FindFirst(FromAnsi(pattern), record); }

bool orxFindNextFileW(OrxHandle find, OrxFindRecord* record)
{
    const auto listing = Listings().Find(find);
    if (!listing || listing->current >= listing->entries.size())
        return false;
    ++listing->current;
    return FillRecord(listing, record);
}

bool orxFindNextFileA(OrxHandle find, OrxFindRecord* record) { return orxFindNextFileW(find, record); }

std::uint32_t orxFindAttributes(OrxHandle find)
{
    OrxFindRecord record;
    return FillRecord(Listings().Find(find), &record) ? record.attributes : 0;
}

bool orxFindClose(OrxHandle find) { return Listings().Take(find) != nullptr; }

bool orxDeleteFileW(const char16_t* path) { return QFile::remove(QString::fromUtf16(path)); }

bool orxDeleteFileA(const char* path) { return QFile::remove(FromAnsi(path)); }

} // namespace kestrune::textfile
