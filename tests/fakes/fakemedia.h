#pragma once

// Pictures that exist where a test says so, and sounds that nobody hears.

#include <dispatch/failure.h>
#include <ports/media.h>

#include <QStringList>

namespace kestrune {

class FakeMedia : public Media
{
public:
    void CheckPicture(const QString& path) override
    {
        if (!pictures.contains(path))
            throw Failure(ErrorNumber::FileNotFound, QStringLiteral("Cannot find ") + path);
    }
    void PlayWave(const QString& path) override { played << path; }
    void PlayNotes(const QString& notes) override { played << notes; }

    QStringList pictures;
    QStringList played;
};

} // namespace kestrune
