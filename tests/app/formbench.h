#pragma once

// The real main window with the whole shell behind it, and hosts that the test plays.

#include <app/mdiparntform.h>
#include <emulator/control/ctlemulator.h>
#include <fakes/shellbench.h>
#include <menubar/sessionbar.h>
#include <sessions/mdichild.h>

#include <QCoreApplication>

namespace kestrune {

class FormBench : public ShellBench
{
public:
    FormBench()
    {
        Run();
        Settle();
    }
    ~FormBench() override
    {
        for (const auto& session : Application().Sessions().All())
            session->Delete();
        Settle();
        main->Release();
    }

    void Settle()
    {
        for (int i = 0; i < 3; ++i) { // posted work posts more
            clock.RunPosted();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
        }
    }
    std::shared_ptr<clsSession> Open(const QString& name)
    {
        auto session = Application().Sessions().Add(SessionFile(name), 2, 0, AddHidden::NotOnLine);
        Settle();
        return session;
    }
    SessionBar& Tabs() const { return *form->findChild<SessionBar*>(); }
    QStringList TabTexts() const
    {
        QStringList tabs;
        for (int i = 0; i < Tabs().count(); ++i)
            tabs.append(Tabs().tabText(i));
        return tabs;
    }
    static frmMdiChild& WindowOf(const clsSession& session)
    {
        return dynamic_cast<frmMdiChild&>(*session.frmSession());
    }

    frmMdiParent* form = nullptr;

protected:
    std::unique_ptr<FrameWindow> MakeFrame(Kestrune& application) override
    {
        auto made = std::make_unique<frmMdiParent>(
            application, frmMdiParent::Parts{[this] { return std::make_unique<ctlEmulator>(Ports()); }, [] {}, {}});
        form = made.get();
        return made;
    }
};

} // namespace kestrune
