#include <comm/sshtarget.h>

#include "hostaddress.h"

#include <algorithm>

namespace kestrune::comm {

SshTarget SshTarget::From(const QString& field)
{
    SshTarget target;
    QString rest = field.trimmed();
    // The last one: user names of some directories have an @ of their own.
    if (const qsizetype at = rest.lastIndexOf(u'@'); at >= 0) {
        target.user = rest.left(at);
        rest = rest.mid(at + 1);
    }
    if (const qsizetype end = rest.indexOf(u']'); rest.startsWith(u'[') && end > 0) {
        target.host = rest.mid(1, end - 1);
        rest = rest.mid(end + 1);
        if (rest.startsWith(u':'))
            target.port = rest.mid(1);
        else
            target.host += rest;        // not an address; whoever checks the host says so
    } else if (rest.count(u':') == 1) { // more of them: an IPv6 address
        target.host = rest.left(rest.indexOf(u':'));
        target.port = rest.mid(rest.indexOf(u':') + 1);
    } else {
        target.host = rest;
    }
    return target;
}

QString SshTarget::Error(bool idn) const
{
    constexpr quint16 usual = 22; // a port is looked at by whoever uses it
    if (QString error = HostAddress::From(host, {}, usual, idn).error; !error.isEmpty())
        return error;
    return user.startsWith(u'-') ? tr("Unable to connect: \"%1\" is not a user name.").arg(user.left(80)) : QString();
}

bool SshTarget::IsSafeInCommand(const QString& user)
{
    static constexpr QStringView special = u"'`\"\\$;&<>|(){}[]*?!#~";
    return !user.startsWith(u'-') &&
           std::ranges::none_of(user, [](QChar c) { return c.isSpace() || !c.isPrint() || special.contains(c); });
}

} // namespace kestrune::comm
