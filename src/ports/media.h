#pragma once

// Pictures and sounds, as the machine has means to show and play them.

#include <QString>

namespace kestrune {

class Media
{
public:
    virtual ~Media() = default;
    // Raises Failure: 53, 70, 75 or 76 when the file cannot be read, 5 when it is no picture that can be shown.
    virtual void CheckPicture(const QString& path) = 0;
    // A sound begins, and the call returns; the one that was playing ends. Where there is no sound device nothing is
    // heard, and the log says so once. Raise Failure for a file that cannot be read (as above) or is no sound of a kind
    // that is known (5), and for notes that are not understood (5).
    virtual void PlayWave(const QString& path) = 0;
    virtual void PlayNotes(const QString& notes) = 0;
};

} // namespace kestrune
