#include <menus/toolkeys.h>

namespace kestrune {

QString ToolKeyTable()
{
    QString table;
    for (const ToolKey& key : kToolKeys)
        table += QString::fromLatin1(key.name) + u'=' + QString::number(key.id) + QStringLiteral("\r\n");
    return table;
}

} // namespace kestrune
