#pragma once

// A clipboard of the test's own.

#include <ports/clipboard.h>
#include <ports/textfiles.h>

#include <dispatch/failure.h>

#include <QMap>

namespace kestrune {

class FakeClipboard : public Clipboard
{
public:
    bool HasText(Kind kind) const override { return !Text(kind).isEmpty(); }
    QString Text(Kind kind) const override { return kind == Kind::Standard ? standard : primary; }
    void SetText(Kind kind, const QString& text) override { (kind == Kind::Standard ? standard : primary) = text; }

    QString standard;
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

    QMap<QString, QString> files;
};

} // namespace kestrune
