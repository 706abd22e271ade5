#pragma once

// The library of text file functions with conversion of character sets. A file is a 32-bit handle, 0 is failure.
// The names and numbers are those of the library's own interface, so that code written against it reads the same.
// Handles may be used from any thread, one call at a time for each handle.

#include <QString>

#include <cstdint>

namespace kestrune::textfile {

using OrxHandle = std::uint32_t;

// access of orxOpenFileW
inline constexpr std::uint32_t OrxRead = 0x80000000;
inline constexpr std::uint32_t OrxWrite = 0x40000000;
// share: what others may do meanwhile; 0 on a file opened for writing keeps a second writer out
inline constexpr std::uint32_t OrxShareNone = 0;
inline constexpr std::uint32_t OrxShareRead = 1;
// disposition
inline constexpr std::uint32_t OrxCreateNew = 1;    // fails if it is there
inline constexpr std::uint32_t OrxCreateAlways = 2; // empties what is there
inline constexpr std::uint32_t OrxOpenExisting = 3;
inline constexpr std::uint32_t OrxOpenAlways = 4;
inline constexpr std::uint32_t OrxTruncateExisting = 5;
// encoding
inline constexpr std::int32_t OrxDetect = -1;
inline constexpr std::int32_t OrxAnsi = 1;
inline constexpr std::int32_t OrxUtf16 = 2;
inline constexpr std::int32_t OrxUtf8 = 3;
inline constexpr std::int32_t OrxNoMark = 128;
// the caller's form of text
inline constexpr std::int32_t OrxCharset8Bit = 1; // Windows-1252
inline constexpr std::int32_t OrxCharsetUtf16 = 2;

OrxHandle orxOpenFileW(const char16_t* path, std::uint32_t access, std::uint32_t share, std::uint32_t disposition);
OrxHandle orxOpenFileA(const char* path, std::uint32_t access, std::uint32_t share, std::uint32_t disposition);
bool orxCloseFile(OrxHandle file); // false also when buffered text could not be written

// One line without its end (CR LF, LF or CR, mixed as they come); false when there was none left.
bool orxReadLineW(OrxHandle file, QString* line);
// length and result count characters of the caller's form (16-bit units, or bytes of the 8-bit form and of a
// binary file). Returns what was read; 0 at the end or on failure.
std::uint32_t orxReadFile(OrxHandle file, void* buffer, std::uint32_t length);
// Counts as orxReadFile does. The first write to an empty file puts the byte-order mark in front.
std::uint32_t orxWriteFile(OrxHandle file, const void* buffer, std::uint32_t length);
// offset in bytes; origin 0 start, 1 here, 2 end. The new place in the file, -1 on failure.
std::int64_t orxSetFilePointer(OrxHandle file, std::int64_t offset, std::int32_t origin);
bool orxFileAtEOF(OrxHandle file);
std::int64_t orxGetFileSize(OrxHandle file); // bytes; -1 on failure

// Before the first read or write. OrxDetect looks into the file at once.
bool orxSetFileEncoding(OrxHandle file, std::int32_t encoding);
std::int32_t orxGetFileEncoding(OrxHandle file, std::int32_t reserved); // in force, after detection
bool orxSetTransferCharset(OrxHandle file, std::int32_t charset);
std::int32_t orxGetTransferCharset(OrxHandle file);
bool orxSetFileBinary(OrxHandle file, std::int32_t on); // -1: no conversion

// One entry of a listing.
struct OrxFindRecord
{
    QString name;
    std::uint32_t attributes = 0;
    std::int64_t size = 0;     // bytes
    std::int64_t modified = 0; // milliseconds since 1970, UTC
};
inline constexpr std::uint32_t OrxAttributeReadOnly = 0x01;
inline constexpr std::uint32_t OrxAttributeHidden = 0x02;
inline constexpr std::uint32_t OrxAttributeFolder = 0x10;
inline constexpr std::uint32_t OrxAttributeNormal = 0x80; // none of the others

// pattern: a folder and a last part with "*" and "?". 0: nothing matches.
OrxHandle orxFindFirstFileW(const char16_t* pattern, OrxFindRecord* record);
OrxHandle orxFindFirstFileA(const char* pattern, OrxFindRecord* record);
bool orxFindNextFileW(OrxHandle find, OrxFindRecord* record);
bool orxFindNextFileA(OrxHandle find, OrxFindRecord* record);
std::uint32_t orxFindAttributes(OrxHandle find); // of the current entry
bool orxFindClose(OrxHandle find);

bool orxDeleteFileW(const char16_t* path);
bool orxDeleteFileA(const char* path);

} // namespace kestrune::textfile
