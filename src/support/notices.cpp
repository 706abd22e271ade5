#include <support/notices.h>

#include <support/msgbox.h>

namespace kestrune {

using namespace Qt::StringLiterals;

QString NotImplementedLine(const QString& feature)
{
    return u"The "_s + feature + u" has not been implemented at this time."_s;
}

QString NotImplementedText(const QString& feature)
{
    return NotImplementedLine(feature) + u"\r\nThis feature will be available in a updated version."_s;
}

void NotImplemented(Questions& ask, const QString& feature)
{
    MsgBox(ask, NotImplementedText(feature), MsgFlag::Information);
}

} // namespace kestrune
