#include <app/splash.h>

#include <app/programicon.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

frmSplash::frmSplash(const QString& choice)
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint),
      off_(choice.compare("no"_L1, Qt::CaseInsensitive) == 0)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    if (!off_ && !choice.isEmpty() && choice.compare("yes"_L1, Qt::CaseInsensitive) != 0)
        picture_.load(choice);
    resize(picture_.isNull() ? QSize(360, 140) : picture_.size());
    connect(&fade_, &QTimer::timeout, this, &frmSplash::FadeStep);
}

void frmSplash::ShowSplash(double minimumSeconds)
{
    if (off_)
        return;
    minimumSeconds_ = minimumSeconds;
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->geometry().center() - rect().center());
    shown_.start();
    show();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents); // or it would show when all is done
}

void frmSplash::HideSplash(double fadeSeconds)
{
    if (!isVisible())
        return;
    constexpr qint64 hardlySeen = 400; // milliseconds; a picture that only flashed up must not linger
    if (minimumSeconds_ <= 0 && shown_.elapsed() < hardlySeen) {
        UnloadSplash();
        return;
    }
    fadeSeconds_ = fadeSeconds;
    const double rest = std::max(0.0, minimumSeconds_ - static_cast<double>(shown_.elapsed()) / 1000.0);
    QTimer::singleShot(static_cast<int>(rest * 1000), this, [this] {
        fading_.start();
        fade_.start(16);
    });
}

void frmSplash::FadeStep()
{
    const double gone = fadeSeconds_ > 0 ? static_cast<double>(fading_.elapsed()) / 1000.0 / fadeSeconds_ : 1.0;
    if (gone >= 1.0)
        UnloadSplash();
    else
        setWindowOpacity(1.0 - gone);
}

void frmSplash::UnloadSplash()
{
    fade_.stop();
    close();
}

void frmSplash::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (!picture_.isNull()) {
        painter.drawPixmap(0, 0, picture_);
        return;
    }
    const QColor ground(0x1d, 0x23, 0x2b);
    painter.fillRect(rect(), ground);
    painter.drawPixmap(28, (height() - 64) / 2, ProgramPicture(64, devicePixelRatioF()));
    painter.setPen(QColor(0xee, 0xf1, 0xf4));
    QFont font = painter.font();
    font.setPointSizeF(font.pointSizeF() * 2.0);
    font.setWeight(QFont::Light);
    painter.setFont(font);
    painter.drawText(rect().adjusted(116, 0, -16, -4), Qt::AlignVCenter | Qt::AlignLeft, u"Kestrune 7"_s);
}

} // namespace kestrune
