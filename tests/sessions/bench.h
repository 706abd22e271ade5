#pragma once

// A whole application with its sessions in one line, and shorthands for its files.

#include <emulator/control/ctlemulator.h>
#include <sessions/session.h>
#include <sessions/tools.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include "fakes/fakeapplication.h"
#include "fakes/print.h"

namespace kestrune {

struct SessionBench : FakeApplication
{
    QString Write(const QString& name, const QByteArray& content) const
    {
        const QString path = QFileInfo(name).isAbsolute() ? name : Path(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        EXPECT_EQ(file.write(content), content.size());
        return path;
    }
    QByteArray Bytes(const QString& path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QString Key(const QString& path, const QString& key) const
    {
        return layer.profile.ProfileGetString(QStringLiteral("Kestrune"), key, QStringLiteral("(none)"), path);
    }
    // A session file that opens; more keys may follow its section.
    QString SessionFile(const QString& name, const QByteArray& more = {}) const
    {
        return Write(name, "[Kestrune]\r\nTermType=8\r\nDevice=3\r\nHostName=host.example\r\n" + more);
    }
    FakeSessionWindow& Window(const clsSession& session) const { return frame.Window(session); }
    // Lets the session's line come up.
    void Connect(clsSession& session)
    {
        session.Emulator().SetOnLine(true);
        lines.Current().Connect();
    }
};

} // namespace kestrune
