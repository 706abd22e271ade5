#include <comm/sshtarget.h>

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

} // namespace kestrune::comm
