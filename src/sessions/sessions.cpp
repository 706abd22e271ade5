#include <sessions/sessions.h>

#include <dispatch/failure.h>
#include <dispatch/propertybag.h>
#include <emulator/control/ctlemulator.h>
#include <ports/application.h>
#include <ports/sessionwindow.h>
#include <sessions/session.h>
#include <support/errors.h>

#include <QCoreApplication>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int FirstNumberedFormat = 4; // title formats from here on show a number that depends on the others

QString SessionsTr(const char* text) { return QCoreApplication::translate("kestrune::clsSessions", text); }

[[noreturn]] void NoSuchSession(const QString& index)
{
    throw Failure(ErrorNumber::InvalidCall, SessionsTr("There is no session \"%1\".").arg(index), u"clsSessions"_s);
}

bool IsShown(int hidden) { return hidden != AddHidden::OnlyNotShown && !(hidden & AddHidden::NotShown); }
bool IsOnLine(int hidden) { return hidden == AddHidden::OnlyNotShown || !(hidden & AddHidden::NotOnLine); }
bool HasTitles(int hidden) { return hidden == AddHidden::OnlyNotShown || !(hidden & AddHidden::NoTitles); }

} // namespace

clsSessions::clsSessions(ApplicationPort& application) : application_(application) {}

clsSessions::~clsSessions() = default;

std::shared_ptr<clsSession> clsSessions::Add(const QString& fileName, int state, int mode, int hidden)
{
    if (state < 0)
        state = application_.InitChildWindowState();
    auto session = clsSession::Create(application_);
    try {
        session->SetWindowState(state);
        session->Emulator().SetInputMode(mode);
        session->SetFileName(fileName);
    } catch (...) {
        // Nobody has seen it yet: without this a file that cannot be read would leave an invisible session.
        session->TerminateSession(false);
        throw;
    }
    Reveal(*session, hidden);
    if (HasTitles(hidden))
        RefreshTitles();
    return session;
}

std::shared_ptr<clsSession> clsSessions::AddClone(clsSession* session, int state, int mode, int hidden)
{
    if (!session)
        return nullptr;
    PropertyBag bag;
    session->Settings().WriteProperties(bag);
    session->WriteProperties(bag);
    const bool changed = session->Changed();
    const QString fileName = session->FileName();

    auto clone = Add({}, state, mode, AddHidden::NotShown | AddHidden::NotOnLine | AddHidden::NoTitles);
    Silently([&] { clone->ReadProperties(bag); }); // what is missing was told when the source was opened
    clone->Settings().ReadProperties(bag);
    clone->SetChanged(changed);
    clone->SetSessionFilename(fileName);
    Reveal(*clone, hidden);
    RefreshTitles();
    return clone;
}

// Shows a new session and takes it on-line, each as the bits say.
void clsSessions::Reveal(clsSession& session, int hidden)
{
    if (IsShown(hidden)) {
        session.Show();
        SessionWindow& window = *session.frmSession();
        const IgnoringEvents ignoring(window);
        application_.Frame()->RunEventsOnce();
        if (!session.Terminated())
            window.RunActivation();
    }
    if (IsOnLine(hidden) && !session.Terminated())
        session.Emulator().SetOnLine(true);
}

std::shared_ptr<clsSession> clsSessions::Item(int position) const
{
    if (position < 0 || position >= Count())
        NoSuchSession(QString::number(position));
    return sessions_[size_t(position)];
}

std::shared_ptr<clsSession> clsSessions::Item(const QString& key) const
{
    if (auto session = Find(key))
        return session;
    NoSuchSession(key);
}

std::shared_ptr<clsSession> clsSessions::Find(const QString& key) const
{
    const auto found =
        std::find_if(sessions_.begin(), sessions_.end(), [&key](const auto& session) { return session->Id() == key; });
    return found == sessions_.end() ? nullptr : *found;
}

void clsSessions::Remove(int position) { RemoveSession(Item(position)); }

void clsSessions::Remove(const QString& key)
{
    if (const auto session = Find(key))
        RemoveSession(session);
}

// A live session is terminated first; its end then comes back here and takes it out.
void clsSessions::RemoveSession(const std::shared_ptr<clsSession>& session)
{
    if (!session->Terminated()) {
        session->Terminate(TerminatePrompt::None);
        return;
    }
    if (std::erase(sessions_, session) == 0)
        return;
    if (!sessions_.empty())
        RefreshTitles();
    else if (application_.AutoClose())
        application_.Terminate(TerminatePrompt::None);
    else if (MainWindow* frame = application_.Frame())
        frame->UpdateNoActiveSession();
}

void clsSessions::MoveBefore(const QString& key, const QString& before)
{
    const auto session = Find(key);
    if (session == nullptr || key == before)
        return;
    std::erase(sessions_, session);
    const auto place = std::find(sessions_.begin(), sessions_.end(), Find(before));
    sessions_.insert(place, session);
    RefreshTitles(); // those of one file are numbered in this order
}

void clsSessions::clsAdd(const std::shared_ptr<clsSession>& session)
{
    Guarded(application_.Ask(), u"clsAdd"_s, u"clsSessions"_s, [&] {
        if (Find(session->Id()))
            throw Failure(ErrorNumber::InvalidCall, SessionsTr("There is a session \"%1\" already.").arg(session->Id()),
                          u"clsSessions"_s);
        sessions_.push_back(session);
    });
}

void clsSessions::RefreshTitles()
{
    if (application_.TitleFormat() < FirstNumberedFormat)
        return;
    for (const auto& session : All())
        session->SetSessionTitle();
}

} // namespace kestrune
