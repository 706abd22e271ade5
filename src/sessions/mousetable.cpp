#include <sessions/session.h>

#include <dispatch/failure.h>
#include <emulator/control/ctlemulator.h>
#include <emulator/control/keynotation.h>
#include <platform/files.h>
#include <ports/application.h>
#include <settings/layer.h>
#include <settings/strfunc.h>

#include "textlines.h"

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

bool IsMousePattern(const QString& line)
{
    const QString text = line.trimmed();
    return !line.isEmpty() && !text.startsWith(u';');
}

void AddMousePattern(ctlEmulator& emulator, const QString& line)
{
    const auto field = [&line](int n) { return Field(line, u"\t"_s, n); };
    emulator.MouseTableAdd(ParseNumber(field(1)), field(2), DecodeControls(field(3)), DecodeControls(field(4)));
}

} // namespace

void clsSession::MouseTableLoad(const QString& fileName)
{
    ctlEmulator& emulator = Emulator();
    emulator.MouseTableReset();
    if (fileName.isEmpty())
        return;
    const SettingsLayer& layer = application_.Layer();
    const QString path = layer.spec.ExpandPath(fileName, layer.folders.ProgramDir, {});
    TextLines lines(path);
    if (!lines.IsOpen()) {
        layer.spec.Files().Read(path); // says what is wrong with it
        throw Failure(ErrorNumber::PathAccess, tr("Cannot open %1").arg(path), u"clsSession"_s);
    }
    QString line;
    while (lines.Next(line))
        if (IsMousePattern(line))
            AddMousePattern(emulator, line);
}

} // namespace kestrune
