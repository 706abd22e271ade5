#pragma once

// Bytes of a host as text for the macro recorder, whatever pieces they come in.

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
        decoder_ = QStringDecoder(charset == emu::HostCharset::Utf8 ? QStringDecoder::Utf8 : QStringDecoder::Latin1);
    }
    QString Decode(std::string_view bytes)
    {
        return decoder_.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    }

private:
    QStringDecoder decoder_{QStringDecoder::Latin1};
};

} // namespace kestrune
