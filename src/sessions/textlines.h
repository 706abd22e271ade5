#pragma once

// The lines of a text file of any encoding, for the length of a scope.

#include <textfile/textfile.h>

#include <QString>

namespace kestrune {

class TextLines
{
public:
    explicit TextLines(const QString& path)
        : file_(textfile::orxOpenFileW(reinterpret_cast<const char16_t*>(path.utf16()), textfile::OrxRead,
                                       textfile::OrxShareRead, textfile::OrxOpenExisting))
    {
        if (file_ == 0)
            return;
        textfile::orxSetFileEncoding(file_, textfile::OrxDetect);
        textfile::orxSetTransferCharset(file_, textfile::OrxCharsetUtf16);
    }
    ~TextLines()
    {
        if (file_ != 0)
            textfile::orxCloseFile(file_);
    }
    TextLines(const TextLines&) = delete;
    TextLines& operator=(const TextLines&) = delete;

    bool IsOpen() const { return file_ != 0; }
    bool Next(QString& line) { return file_ != 0 && textfile::orxReadLineW(file_, &line); }

private:
    textfile::OrxHandle file_;
};

} // namespace kestrune
