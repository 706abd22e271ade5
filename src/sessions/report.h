#pragma once

// Helpers of what runs on behalf of a session window.

#include <dispatch/failure.h>
#include <ports/application.h>
#include <ports/sessionwindow.h>
#include <sessions/session.h>
#include <sessions/sessions.h>
#include <support/msgbox.h>

#include <memory>
#include <utility>

namespace kestrune {

// The session of a window, by its Tag; null when there is none or it has ended.
inline std::shared_ptr<clsSession> LiveSession(ApplicationPort& application, const SessionWindow& window)
{
    auto session = application.Sessions().Find(window.Tag());
    return session && !session->Terminated() ? session : nullptr;
}

// An event has no caller who could be told: its failure is shown to the user.
template <typename F>
void ReportFailure(ApplicationPort& application, F&& run)
{
    try {
        std::forward<F>(run)();
    } catch (const Failure& failure) {
        MsgBox(application.Ask(), failure.Text(), MsgFlag::Exclamation);
    }
}

} // namespace kestrune
