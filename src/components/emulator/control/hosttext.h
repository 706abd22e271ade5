#pragma once

// Bytes of a host as text for the macro recorder and for programs, whatever pieces they come in.

#include <emulator/engine/hostcharsets.h>
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
        charset_ = charset;
        decoder_ = QStringDecoder(QStringDecoder::Utf8);
    }
    QString Decode(std::string_view bytes)
    {
        return charset_ == emu::HostCharset::Utf8 ? QString(decoder_.decode(ViewOf(bytes))) : InCharset(bytes);
    }
    // A text that stands for itself, beside the stream.
    QString DecodeWhole(std::string_view bytes) const
    {
        return charset_ == emu::HostCharset::Utf8 ? QString::fromUtf8(ViewOf(bytes)) : InCharset(bytes);
    }

private:
    static QByteArrayView ViewOf(std::string_view bytes) { return {bytes.data(), qsizetype(bytes.size())}; }
    QString InCharset(std::string_view bytes) const
    {
        QString text;
        text.reserve(qsizetype(bytes.size()));
        for (const char byte : bytes)
            text += QChar(char16_t(emu::HostPoint(charset_, uint8_t(byte))));
        return text;
    }

    emu::HostCharset charset_ = emu::HostCharset::Latin1;
    QStringDecoder decoder_{QStringDecoder::Utf8};
};

} // namespace kestrune
