#pragma once

// The real main window with its session tabs. Sessions are opened but not on line: the test plays their hosts.

#include <fakes/windowbench.h>

namespace kestrune {

class FormBench : public WindowBench
{
public:
    FormBench() { WindowBench::Open(); }

    std::shared_ptr<clsSession> Open(const QString& name)
    {
        auto session = Application().Sessions().Add(SessionFile(name), 2, 0, AddHidden::NotOnLine);
        Settle();
        return session;
    }
    SessionBar& Tabs() const { return *window->findChild<SessionBar*>(); }
    QStringList TabTexts() const
    {
        QStringList tabs;
        for (int i = 0; i < Tabs().count(); ++i)
            tabs.append(Tabs().tabText(i));
        return tabs;
    }
};

} // namespace kestrune
