#pragma once

// A clipboard of the test's own.

#include <ports/clipboard.h>
#include <ports/textfiles.h>

#include <dispatch/failure.h>

#include <QMap>
#include <QStringEncoder>

namespace kestrune {

class FakeClipboard : public Clipboard
{
public:
    bool HasText(Kind kind) const override { return !Text(kind).isEmpty(); }
    QString Text(Kind kind) const override { return kind == Kind::Standard ? standard : primary; }
    void Put(Kind kind, const ClipboardText& content) override
    {
        (kind == Kind::Standard ? standard : primary) = content.text;
        if (kind == Kind::Standard) {
            html = content.html;
            rtf = content.rtf;
        }
    }

    QString standard;
    QString html; // of the standard one
    QByteArray rtf;
    QString primary;
};

class MemoryTextFiles : public TextFiles
{
public:
    QString ReadText(const QString& path) override
    {
        if (!files.contains(path))
            throw Failure(ErrorNumber::FileNotFound, QStringLiteral("Cannot find ") + path);
        return files.value(path);
    }
    QByteArray Encode(const QString& text, int encoding) override
    {
        using enum QStringConverter::Encoding;
        return QStringEncoder(encoding == 2 ? Utf16LE : encoding == 3 ? Utf8 : Latin1).encode(text);
    }
    QByteArray Mark(int encoding) override
    {
        return encoding == 1 ? QByteArray() : Encode(QString(QChar(QChar::ByteOrderMark)), encoding);
    }

    QMap<QString, QString> files;
};

} // namespace kestrune
