#pragma once

// Bytes of a host as text for the macro recorder and for programs, whatever pieces they come in.

#include <emulator/engine/terminal.h>

#include <QString>
#include <QStringDecoder>

#include <string_view>

namespace kestrune {

class HostText
{
public:
    void SetCharset(emu::HostCharset charset)
    {
        // The PC sets agree with Latin-1 in the letters that prompts are made of.
        encoding_ = charset == emu::HostCharset::Utf8 ? QStringDecoder::Utf8 : QStringDecoder::Latin1;
        decoder_ = QStringDecoder(encoding_);
    }
    QString Decode(std::string_view bytes)
    {
        return decoder_.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    }
    // A text that stands for itself, beside the stream.
    QString DecodeWhole(std::string_view bytes) const
    {
        return QStringDecoder(encoding_).decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    }

private:
    QStringDecoder::Encoding encoding_ = QStringDecoder::Latin1;
    QStringDecoder decoder_{QStringDecoder::Latin1};
};

} // namespace kestrune
