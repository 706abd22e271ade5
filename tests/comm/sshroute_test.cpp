#include <comm/sshforwardlist.h>
#include <comm/sshroute.h>

#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;
using Kind = SshForward::Kind;

TEST(SshForwardList, SaysWhatItMeansOrWhatIsWrong)
{
    const auto list =
        SshForwardList::From(u"L8080:intranet:80, r*:2222:localhost:22;\tD[::1]:1080 L[::1]:5:[fe80::1]:6"_s);
    EXPECT_EQ(list.wrong, QString());
    EXPECT_EQ(list.forwards, (std::vector<SshForward>{{Kind::Local, u""_s, 8080, u"intranet"_s, 80},
                                                      {Kind::Remote, u"*"_s, 2222, u"localhost"_s, 22},
                                                      {Kind::Dynamic, u"::1"_s, 1080, u""_s, 0},
                                                      {Kind::Local, u"::1"_s, 5, u"fe80::1"_s, 6}}));
    EXPECT_TRUE(SshForwardList::From(u" , "_s).forwards.empty());
    for (const QString& wrong : {u"L"_s, u"L80"_s, u"L80:host"_s, u"L80:host:http"_s, u"L0:host:80"_s, u"L80::80"_s,
                                 u"D80:h:1"_s, u"R99999:h:1"_s, u"X1:h:1"_s, u"L1:[::1:2"_s, u"D"_s}) {
        const auto refused = SshForwardList::From(u"D1080, "_s + wrong);
        EXPECT_EQ(refused.wrong, wrong);
        EXPECT_TRUE(refused.forwards.empty()) << "all or nothing";
    }
}

QString Names(const std::vector<SshTarget>& jumps)
{
    QStringList names;
    for (const SshTarget& jump : jumps)
        names << jump.user + u'@' + jump.host + u'#' + jump.port;
    return names.join(u' ');
}

TEST(SshRoute, ReadsJumpsAndTheCommandsThatMeanThem)
{
    EXPECT_EQ(Names(JumpsFrom(u"ann@a:23, b,ssh://[::1]:24"_s)), u"ann@a#23 @b# @::1#24"_s);
    EXPECT_EQ(Names(JumpsFrom(u" None "_s)), QString());
    struct Row
    {
        QString command;
        QString jumps; // "-": a command of the user's own
    };
    const Row rows[]{
        {u"ssh -l ann -p 23 -W '[%h]:%p' a"_s, u"ann@a#23"_s},
        {u"ssh -W '[%h]:%p' -J b,c@d:5 a"_s, u"@b# c@d#5 @a#"_s},
        {u"exec /usr/bin/ssh -q bob@a -W %h:%p"_s, u"bob@a#"_s},
        {u"ssh -W other:22 a"_s, u"-"_s},
        {u"ssh -i key -W %h:%p a"_s, u"-"_s},
        {u"ssh a nc %h %p"_s, u"-"_s},
        {u"nc -X 5 -x proxy:1080 %h %p"_s, u"-"_s},
        {u"ssh 'a"_s, u"-"_s},
        {u""_s, u"-"_s},
    };
    for (const Row& row : rows) {
        const auto jumps = JumpsOfCommand(row.command);
        EXPECT_EQ(jumps ? Names(*jumps) : u"-"_s, row.jumps) << row.command.toStdString();
    }
    EXPECT_EQ(ExpandedCommand(u"nc %h %p as %r for %n 100%% %x%"_s, u"h"_s, 22, u"ann"_s, u"alias"_s),
              u"nc h 22 as ann for alias 100% %x%"_s);
}

} // namespace

} // namespace kestrune::comm
