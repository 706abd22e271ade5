// The members of ctlEmulator about pictures and sounds.

#include "ctlemulator.h"

#include <dispatch/failure.h>
#include <ports/media.h>

#include <vector>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {
constexpr auto kBellPause = std::chrono::milliseconds(250); // bells closer than this are one
} // namespace

void ctlEmulator::LoadImage(const QString& fileName, int column, int row, int width, int height, bool preserveAspect,
                            int borderStyle)
{
    if (column < 0 || column >= Cols() || row < 0 || row >= Rows() || width < 0 || width > Cols() || height < 0 ||
        height > Rows())
        throw Failure(ErrorNumber::InvalidCall,
                      tr("There is no place for a picture of %1 × %2 cells at column %3, row %4 of the screen.")
                          .arg(width)
                          .arg(height)
                          .arg(column)
                          .arg(row),
                      u"ctlEmulator"_s);
    if (int(pictures_.size()) >= ScreenPicture::MostPictures)
        throw Failure(ErrorNumber::InvalidCall, tr("The screen holds %1 pictures and no more.").arg(pictures_.size()),
                      u"ctlEmulator"_s);
    ports_.media.CheckPicture(fileName);
    pictures_.push_back({fileName, column, row, width, height, preserveAspect, borderStyle != 0});
    emit PicturesChanged();
}

void ctlEmulator::UnloadImage(const QString& fileName)
{
    const auto gone =
        std::erase_if(pictures_, [&](const ScreenPicture& p) { return fileName.isEmpty() || p.fileName == fileName; });
    if (gone > 0)
        emit PicturesChanged();
}

void ctlEmulator::Ring()
{
    const QString sound = settings_.Text(Setting("Sound"));
    if (sound.compare(u"none"_s, Qt::CaseInsensitive) == 0)
        return;
    const Clock::Duration now = ports_.clock.Now();
    if (!sound.isEmpty() && (!rangAt_ || now >= *rangAt_ + kBellPause)) {
        rangAt_ = now;
        try {
            PlayWave(sound);
        } catch (const Failure& failure) { // a host's bell is nothing that a call waits for
            TellUser(failure.Text());
        }
    }
    emit Bell();
}

void ctlEmulator::PlayWave(const QString& fileName) { ports_.media.PlayWave(fileName); }
void ctlEmulator::PlayMIDI(const QString& notes) { ports_.media.PlayNotes(notes); }

} // namespace kestrune
