#include "shortcuts.h"

#include <QStringList>

namespace kestrune {

using namespace Qt::StringLiterals;

QKeySequence KeysOfShortcut(const QString& written)
{
    QStringList parts = written.simplified().remove(u' ').split(u'+', Qt::SkipEmptyParts);
    if (parts.isEmpty())
        return {};
    if (parts.last().compare("Bksp"_L1, Qt::CaseInsensitive) == 0)
        parts.last() = u"Backspace"_s;
    const QKeySequence keys(parts.join(u'+'), QKeySequence::PortableText);
    return keys.isEmpty() || keys[0].key() == Qt::Key_unknown ? QKeySequence() : keys;
}

} // namespace kestrune
