#pragma once

// What commands open, kept as lines in the order in which it was opened; dialogs answer what the test says.

#include <ports/pieces.h>
#include <sessions/session.h>

#include <QStringList>

#include <functional>

namespace kestrune {

class FakeCommandPieces : public CommandPieces
{
public:
    void ShowUpload(clsSession& session) override { Opened("upload", session.Id()); }
    void ShowDownload(clsSession& session) override { Opened("download", session.Id()); }
    void ShowCaptureStart(clsSession& session) override { Opened("capture", session.Id()); }
    void ShowCaptureStop(clsSession& session) override { Opened("capture stop", session.Id()); }
    DialResult ShowDial(clsSession& session, QString& number) override
    {
        Opened("dial", session.Id());
        number = dialNumber;
        return dialResult;
    }
    bool ShowMenuDesigner(clsSession*) override
    {
        Opened("designer");
        if (duringDesigner)
            duringDesigner();
        return duringDesigner != nullptr;
    }
    void StartMacroRecorder() override { Opened("recorder"); }
    void OpenScriptEditor(const QString& kind, const QString& name) override { Opened("editor", kind + name); }
    void RunMacro(const QString& name, clsSession*) override { Opened("macro", name); }
    bool HasHostTool(int id) const override { return hostTools.contains(id); }
    void InvokeMVService(int id, const QString& sessionId) override
    {
        Opened("host tool", QString::number(id) + QLatin1Char('/') + sessionId);
    }
    void ShowHelp(HelpPage page) override { Opened("help", QString::number(static_cast<int>(page))); }
    void OpenDocument(const QString& path) override { Opened("document", path); }

    QStringList TakeLog() { return std::exchange(log, {}); }

    QStringList log;
    DialResult dialResult = DialResult::Cancelled;
    QString dialNumber;
    QList<int> hostTools;
    std::function<void()> duringDesigner; // what the user changes; without it the designer is cancelled

private:
    void Opened(const char* what, const QString& with = {})
    {
        log.append(QLatin1String(what) + (with.isEmpty() ? with : QLatin1Char(' ') + with));
    }
};

} // namespace kestrune
