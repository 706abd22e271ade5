#include "textfiles.h"

#include "textfile.h"

#include <dispatch/failure.h>
#include <platform/files.h>
#include <platform/textcodec.h>

#include <algorithm>
#include <array>

namespace kestrune::textfile {

using namespace Qt::StringLiterals;

namespace {

struct CodeRow
{
    TextCode code;
    std::int32_t library; // encoding number
    TextEncoding encoding;
};

constexpr std::array kCodes = {
    CodeRow{TextCode::Ansi, OrxAnsi, TextEncoding::Ansi},
    CodeRow{TextCode::Utf8, OrxUtf8, TextEncoding::Utf8Mark},
    CodeRow{TextCode::Utf16, OrxUtf16, TextEncoding::Utf16LeMark},
    CodeRow{TextCode::Utf8NoMark, OrxUtf8 + OrxNoMark, TextEncoding::Utf8},
    CodeRow{TextCode::Utf16NoMark, OrxUtf16 + OrxNoMark, TextEncoding::Utf16Le},
};

const CodeRow& RowOf(TextCode code) { return *std::ranges::find(kCodes, code, &CodeRow::code); }

// A file that the library found without a mark is told apart, so that it is written back as it was.
TextCode Found(std::int32_t library)
{
    const auto row = std::ranges::find(kCodes, library, &CodeRow::library);
    return row == kCodes.end() ? TextCode::Ansi : row->code;
}

QString ReadAll(OrxHandle file, bool binary)
{
    constexpr std::uint32_t kReadBlock = 2048;
    QString text;
    if (binary) {
        std::array<char, kReadBlock> block;
        while (const auto got = orxReadFile(file, block.data(), kReadBlock))
            text += QString::fromLatin1(block.data(), qsizetype(got));
    } else {
        std::array<char16_t, kReadBlock> block;
        while (const auto got = orxReadFile(file, block.data(), kReadBlock))
            text += QStringView(block.data(), qsizetype(got));
    }
    return text;
}

// Plain: nothing above 255, and the next reader, who goes by content, takes the bytes for what they are.
TextEncoding ByContent(const QString& text)
{
    const bool plain = !IsWideText(text) && CanEncode(text, TextEncoding::Ansi) &&
                       DetectEncoding(EncodeText(text, TextEncoding::Ansi)) == TextEncoding::Ansi;
    return plain ? TextEncoding::Ansi : TextEncoding::Utf16LeMark;
}

QByteArray Encoded(const QString& text, TextCode code)
{
    if (code == TextCode::Binary)
        return text.toLatin1();
    return EncodeText(text, code == TextCode::ByContent ? ByContent(text) : RowOf(code).encoding);
}

template <typename Operation>
bool Done(bool quiet, Operation operation)
{
    try {
        operation();
        return true;
    } catch (const Failure&) {
        if (!quiet)
            throw;
        return false;
    }
}

QString FreeNameBeside(const FileSystem& files, const QString& path)
{
    QString name;
    for (int i = 1; i == 1 || files.Kind(name) != PathKind::Missing; ++i)
        name = path + u".old%1"_s.arg(i);
    return name;
}

} // namespace

QString ReadTextFile(const QString& path, TextCode& code)
{
    const auto file = orxOpenFileW(path.toStdU16String().c_str(), OrxRead, OrxShareRead, OrxOpenExisting);
    if (file == 0)
        return {};
    if (code == TextCode::Binary) {
        orxSetFileBinary(file, -1);
    } else if (code == TextCode::ByContent) {
        orxSetFileEncoding(file, OrxDetect);
        code = Found(orxGetFileEncoding(file, 0));
    } else {
        orxSetFileEncoding(file, RowOf(code).library);
    }
    orxSetTransferCharset(file, OrxCharsetUtf16);
    QString text = ReadAll(file, code == TextCode::Binary);
    orxCloseFile(file);
    return text;
}

void WriteTextFile(FileSystem& files, const QString& path, const QString& text, TextCode code)
{
    files.Replace(path, Encoded(text, code));
}

void EnsureUnicodeFile(FileSystem& files, const QString& path, const QString& text)
{
    if (!HasWideChars(text, false))
        return;
    files.Edit(path, [](const std::optional<QByteArray>& old) -> std::optional<QByteArray> {
        const QByteArray content = old.value_or(QByteArray());
        if (content.startsWith(MarkOf(TextEncoding::Utf16LeMark)))
            return std::nullopt;
        return EncodeText(DecodeText(content, DetectEncoding(content)), TextEncoding::Utf16LeMark);
    });
}

bool HasWideChars(const QString& text, bool exemptMarkers)
{
    return std::ranges::any_of(text, [exemptMarkers](QChar c) {
        const bool marker = c.unicode() >= 0xF8FC && c.unicode() <= 0xF8FE;
        return c.unicode() > 0xFF && !(exemptMarkers && marker);
    });
}

bool IsWideText(const QString& text) { return HasWideChars(text, false); }

// The new text goes in whole in one step, so the old file need not step aside: a copy of it waits beside to become
// the backup, and at no instant is there neither.
bool ReplaceFile(FileSystem& files, const QString& path, const QString& text, TextCode code, const QString& backupName)
{
    const bool keepsOld = !backupName.isEmpty() && IsExistingFile(files, path);
    const QString aside = keepsOld ? FreeNameBeside(files, path) : QString();
    const bool copied = !keepsOld || Done(true, [&] { files.Copy(path, aside); });
    const bool written = copied && Done(true, [&] { WriteTextFile(files, path, text, code); });
    if (!keepsOld)
        return written;
    if (!written) {
        DeleteFileAt(files, aside, true);
        return false;
    }
    DeleteFileAt(files, backupName, true);
    RenameFileAt(files, aside, backupName, true);
    return true;
}

bool PathIsDirectory(const FileSystem& files, const QString& path) { return files.Kind(path) == PathKind::Folder; }

bool PathFileExists(const FileSystem& files, const QString& path) { return files.Kind(path) != PathKind::Missing; }

bool IsExistingFile(const FileSystem& files, const QString& path) { return files.Kind(path) == PathKind::File; }

bool IsWritableFile(FileSystem& files, const QString& path)
{
    return !files.IsReadOnly(path) && Done(true, [&] { files.ProbeWrite(path); });
}

bool DeleteFileAt(FileSystem& files, const QString& path, bool quiet)
{
    return Done(quiet, [&] { files.Remove(path); });
}

bool RenameFileAt(FileSystem& files, const QString& from, const QString& to, bool quiet)
{
    return Done(quiet, [&] { files.Rename(from, to); });
}

bool CopyFileTo(FileSystem& files, const QString& from, const QString& to, bool quiet)
{
    return Done(quiet, [&] { files.Copy(from, to); });
}

bool CreateFolderAt(FileSystem& files, const QString& path, bool quiet)
{
    return Done(quiet, [&] { files.MakeFolder(path); });
}

} // namespace kestrune::textfile
