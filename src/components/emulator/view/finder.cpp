#include "finder.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>

namespace kestrune {

namespace {

constexpr int kSliceMilliseconds = 6; // less than a frame, so that keys and drawing keep their pace
constexpr int kLinesBetweenLooks = 64;

QString Say(const char* text) { return QCoreApplication::translate("FindBar", text); }

} // namespace

Finder::Finder(ctlEmulator& emulator, QWidget& host, std::function<void()> marksChanged)
    : emulator_(emulator), host_(host), marksChanged_(std::move(marksChanged)), search_(emulator.Screen())
{
    slice_.setSingleShot(true);
    QObject::connect(&slice_, &QTimer::timeout, &slice_, [this] { Slice(); });
}

void Finder::MakeBar()
{
    bar_ = std::make_unique<FindBar>(&host_);
    QObject::connect(bar_.get(), &FindBar::QueryChanged, bar_.get(), [this] { Start(); });
    QObject::connect(bar_.get(), &FindBar::OlderWanted, bar_.get(), [this] { Go(true); });
    QObject::connect(bar_.get(), &FindBar::NewerWanted, bar_.get(), [this] { Go(false); });
    QObject::connect(bar_.get(), &FindBar::Closed, bar_.get(), [this] { Close(); });
}

void Finder::KeepPlace(int rightEdge)
{
    if (bar_)
        bar_->KeepPlace(rightEdge);
}

void Finder::Open()
{
    if (!bar_)
        MakeBar();
    const QString selected = emulator_.Selection();
    const bool wasShown = bar_->isVisible();
    bar_->Ask(selected.contains(u'\n') ? QString() : selected);
    if (!wasShown)
        Start();
}

void Finder::Close()
{
    search_.Stop();
    slice_.stop();
    bar_->hide();
    host_.setFocus(Qt::OtherFocusReason);
    marksChanged_();
}

void Finder::Start()
{
    wentRound_ = chosen_ = false;
    if (const QString error = search_.Start(bar_->Query()); !error.isEmpty()) {
        bar_->ShowState(error, true);
        marksChanged_();
        return;
    }
    Slice();
}

void Finder::Slice()
{
    QElapsedTimer time;
    time.start();
    bool more = search_.IsOn();
    while (more && time.elapsed() < kSliceMilliseconds)
        more = search_.Step(kLinesBetweenLooks);
    seen_ = emulator_.Screen().Generation();
    if (more)
        slice_.start(0);
    if (!chosen_ && search_.Count() > 0) { // as it is being typed: the newest
        search_.MoveToOlder();
        chosen_ = true;
        Reveal();
    }
    ShowState();
    marksChanged_();
}

void Finder::ScreenShown()
{
    if (search_.IsOn() && !slice_.isActive() && seen_ != emulator_.Screen().Generation())
        slice_.start(0);
}

void Finder::Go(bool older)
{
    chosen_ = true;
    wentRound_ = older ? search_.MoveToOlder() : search_.MoveToNewer();
    Reveal();
    ShowState();
    marksChanged_();
}

void Finder::Reveal()
{
    const auto hit = search_.Current();
    if (!hit)
        return;
    const int rows = emulator_.Rows();
    const int line = int(hit->row - int64_t(emulator_.Screen().HistoryPushed())) + emulator_.RowsBack();
    if (line < 0 || line >= rows)
        emulator_.ScrollTo(emulator_.RowsBack() + rows / 2 - line);
}

void Finder::ShowState()
{
    const int count = search_.Count();
    QString text;
    if (search_.IsOn() && count == 0)
        text = slice_.isActive() ? Say("Searching...") : Say("Not found");
    else if (search_.IsOn())
        text = QString::number(search_.CurrentNumber()) + QStringLiteral(" / ") + QString::number(count) +
               (search_.IsFull() || slice_.isActive() ? QStringLiteral("+") : QString()) +
               (wentRound_ ? QStringLiteral(" ↻") : QString());
    bar_->ShowState(text, search_.IsOn() && count == 0 && !slice_.isActive());
}

} // namespace kestrune
