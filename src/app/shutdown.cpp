#include <app/shutdown.h>

#include <automation/kestrune.h>
#include <support/errors.h>

#include <QScopedValueRollback>

namespace kestrune {

void frmShutdown::Shutdown()
{
    shutdownTimer_.reset();
    Kestrune* application = parts_.application();
    if (guard_ || application == nullptr)
        return;
    const QScopedValueRollback guard(guard_, true); // unloading a form runs the message loop

    Silently([&] { application->RevokeObject(); }); // a new start will not find this process from here on
    bool busy = false;
    Silently([&] {
        const ScriptEnginePort* engine = application->ScriptEngine(true);
        busy = engine != nullptr && engine->IsRunning();
    });
    if (!busy && parts_.clearCommon)
        Silently(parts_.clearCommon);
    bool gone = false;
    Silently([&] { gone = parts_.unloadForms(); });
    if (gone && !busy)
        parts_.release();
    else
        shutdownTimer_ = parts_.clock.After(Interval, [this] { Shutdown(); });
}

} // namespace kestrune
