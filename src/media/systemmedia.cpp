#include "systemmedia.h"

#include "soundoutput.h"

#include <dispatch/failure.h>
#include <media/notes.h>
#include <media/wavefile.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <utility>

namespace kestrune {

namespace {

constexpr int kLargestSide = 8192; // pixels; a picture that claims more is not looked at

QString Say(const char* text) { return QCoreApplication::translate("Media", text); }

[[noreturn]] void Raise(ErrorNumber number, const QString& text)
{
    throw Failure(number, text, QStringLiteral("ctlEmulator"));
}

void OpenToRead(QFile& file)
{
    if (!QFileInfo(file.fileName()).isFile()) // a pipe would be waited for
        Raise(ErrorNumber::FileNotFound, Say("Cannot find \"%1\".").arg(file.fileName()));
    if (!file.open(QIODevice::ReadOnly))
        Raise(ErrorNumber::PathAccess, Say("Cannot read \"%1\": %2").arg(file.fileName(), file.errorString()));
}

} // namespace

struct SystemMedia::Told
{
    std::function<void(const QString&)> log; // on the user-interface thread
    bool noDevice = false;
};

SystemMedia::SystemMedia(Clock& clock, std::function<void(const QString& line)> log)
    : told_(std::make_shared<Told>(Told{std::move(log)})),
      output_(std::make_unique<SoundOutput>([&clock, told = told_](const char* reason) {
          clock.Post([told, why = QString::fromLocal8Bit(reason)] {
              if (!std::exchange(told->noDevice, true))
                  told->log(Say("Sounds cannot be heard: %1").arg(why));
          });
      }))
{}

SystemMedia::~SystemMedia() = default;

void SystemMedia::CheckPicture(const QString& path)
{
    QFile file(path);
    OpenToRead(file);
    QImageReader reader(&file);
    const QSize size = reader.size();
    if (size.width() > kLargestSide || size.height() > kLargestSide)
        Raise(ErrorNumber::InvalidCall, Say("The picture \"%1\" is too large.").arg(path));
    if (!reader.canRead())
        Raise(ErrorNumber::InvalidCall, Say("\"%1\" is not a picture that can be shown.").arg(path));
}

void SystemMedia::PlayWave(const QString& path)
{
    QFile file(path);
    OpenToRead(file);
    std::optional<Sound> sound = file.size() <= LargestWave ? SoundOfWave(file.readAll()) : std::nullopt;
    if (!sound)
        Raise(ErrorNumber::InvalidCall, Say("\"%1\" is not a wave file that can be played.").arg(path));
    output_->Play(std::move(*sound));
}

void SystemMedia::PlayNotes(const QString& notes)
{
    const auto tones = TonesOf(notes);
    if (!tones)
        Raise(ErrorNumber::InvalidCall, Say("The notes \"%1\" are not understood.").arg(notes));
    output_->Play(SoundOfTones(*tones));
}

} // namespace kestrune
