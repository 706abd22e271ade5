#pragma once

// Whole text files: read, replaced, made Unicode. Over the library (textfile.h) and the file system's whole-or-not
// replacement, so that a reader never meets half a file.

#include <QString>

namespace kestrune {

class FileSystem;

namespace textfile {

// How a file is read or written.
enum class TextCode : int
{
    Binary = -1, // no conversion: each byte a character of the same number
    ByContent = 0,
    Ansi = 1,
    Utf8 = 2,  // with byte-order mark
    Utf16 = 3, // little endian with byte-order mark
    Utf8NoMark = 4,
    Utf16NoMark = 5
};

// The file's text; empty when there is none or it cannot be read. code: how to read it; ByContent: find out, and
// tell what was found.
QString ReadTextFile(const QString& path, TextCode& code);
// ByContent: Ansi when the text is plain, else Utf16. Raises Failure; then the old content stands.
void WriteTextFile(FileSystem& files, const QString& path, const QString& text, TextCode code);

// Makes sure that the file can hold `text`: one with a character above 255 turns a file that is not UTF-16 into
// UTF-16 with its mark. Other texts leave the file alone. Raises Failure; then the old content stands.
void EnsureUnicodeFile(FileSystem& files, const QString& path, const QString& text);

// A character above 255. exemptMarkers: U+F8FC, U+F8FD and U+F8FE, the emulator's own delimiters, do not count.
bool HasWideChars(const QString& text, bool exemptMarkers);
bool IsWideText(const QString& text);

// A safe update: the new text goes in whole, and the old file becomes the backup (backupName; empty: none is kept),
// in place of an older backup. False: it could not be written, and file and backup are as they were.
bool ReplaceFile(FileSystem& files, const QString& path, const QString& text, TextCode code, const QString& backupName);

// --- Thin file helpers. quiet: a failure gives false; otherwise it is raised with the system's text.
bool PathIsDirectory(const FileSystem& files, const QString& path);
bool PathFileExists(const FileSystem& files, const QString& path); // a file or a folder
bool IsExistingFile(const FileSystem& files, const QString& path); // exists and is no folder
bool IsWritableFile(FileSystem& files, const QString& path);
bool DeleteFileAt(FileSystem& files, const QString& path, bool quiet);
bool RenameFileAt(FileSystem& files, const QString& from, const QString& to, bool quiet);
bool CopyFileTo(FileSystem& files, const QString& from, const QString& to, bool quiet);
bool CreateFolderAt(FileSystem& files, const QString& path, bool quiet);

} // namespace textfile
} // namespace kestrune
