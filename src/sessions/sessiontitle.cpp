#include "sessiontitle.h"

#include <QObject>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

QString BaseTitle(const TitleFacts& facts)
{
    if (!facts.caption.isEmpty())
        return facts.caption;
    if (!facts.fileTitle.isEmpty())
        return facts.fileTitle;
    return QObject::tr("New Session");
}

} // namespace

QString SessionTitle(const TitleFacts& facts)
{
    const QString title = BaseTitle(facts) + (facts.server ? u" [server]"_s : QString());
    const QString ordinal = facts.ordinal > 0 ? QString::number(facts.ordinal) : QString();
    const auto behind = [&title](char16_t open, const QString& number, char16_t close) {
        return number.isEmpty() ? title : title + u' ' + open + number + close;
    };
    switch (facts.format) {
    case 0:
        return behind(u'(', facts.id, u')');
    case 1:
        return behind(u'[', facts.id, u']');
    case 2:
        return u'(' + facts.id + u") "_s + title;
    case 3:
        return u'[' + facts.id + u"] "_s + title;
    case 5:
        return behind(u'[', ordinal, u']');
    default: // 4, and whatever else stands in the store
        return behind(u'(', ordinal, u')');
    }
}

} // namespace kestrune
