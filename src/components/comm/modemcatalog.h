#pragma once

// The modems that a session can name, and the place where the telephone stands. Both are data: modems.ini of the
// installation, modems.ini of the user, whose sections add to it or take its place, and the user's dialing.ini. They
// are read at each call, so that a file that was just changed counts.

#include <comm/dialing.h>
#include <comm/modemdialogue.h>
#include <ports/line.h>

#include <QString>
#include <QStringList>

namespace kestrune::comm {

struct Modem
{
    QString name;
    QString port; // path, or number as in SerialPortPath; empty: the session's own
    LineOptions::Serial serial;
    ModemDefinition definition;
};

class ModemCatalog
{
public:
    // The folders that hold the files; empty: there is none.
    ModemCatalog(QString installationFolder, QString userFolder)
        : installationFolder_(std::move(installationFolder)), userFolder_(std::move(userFolder))
    {}

    QStringList Names() const; // in the order of the files
    // As the session's options want it. A name that is empty or a path ("/dev/...") is the first modem's, at that
    // path; a name that nobody knows gives nothing.
    std::optional<Modem> Find(const LineOptions& options) const;
    DialLocation Location() const;
    void KeepLocation(const DialLocation& location) const; // the file's other lines stay; raises Failure

private:
    QString installationFolder_;
    QString userFolder_;
};

} // namespace kestrune::comm
