#pragma once

// One open file of the library: conversion between bytes on disk and the caller's form of text.

#include <platform/textcodec.h>

#include <QFile>
#include <QStringDecoder>
#include <QStringEncoder>

#include <cstdint>
#include <optional>

namespace kestrune::textfile {

class OrxFile
{
public:
    explicit OrxFile(const QString& path) : file_(path) {}

    bool Open(std::uint32_t access, std::uint32_t share, std::uint32_t disposition);
    bool Close();

    std::optional<QString> ReadLine();
    QString ReadText(qsizetype length);
    qint64 ReadBytes(char* buffer, qint64 length);
    bool WriteText(QStringView text);
    qint64 WriteBytes(const char* buffer, qint64 length);
    qint64 Seek(qint64 offset, std::int32_t origin);
    bool AtEnd();
    qint64 Size() const { return file_.size(); }

    bool SetEncoding(std::int32_t number);
    std::int32_t EncodingNumber() const;
    std::int32_t Charset() const { return charset_; }
    void SetCharset(std::int32_t charset) { charset_ = charset; }
    bool IsBinary() const { return binary_; }
    void SetBinary(bool on) { binary_ = on; }

private:
    bool Fill(); // false: nothing more to come
    QStringView Unread() const { return QStringView(text_).sliced(next_); }
    void Restart();
    TextEncoding MarkInFile();
    QString Decode(QByteArrayView bytes);

    QFile file_;
    TextEncoding encoding_ = TextEncoding::Ansi;
    std::int32_t charset_ = 2;
    bool binary_ = false;

    QString text_; // decoded and, from next_ on, not yet read
    qsizetype next_ = 0;
    QStringDecoder decoder_;
    QStringEncoder encoder_;
    bool started_ = false; // past the mark, decoder_ in use
    bool ended_ = false;
};

} // namespace kestrune::textfile
