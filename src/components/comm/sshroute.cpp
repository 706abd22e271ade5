#include <comm/sshroute.h>

#include <comm/commandline.h>

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <array>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

struct JumpCommand
{
    SshTarget host;
    QString before; // -J
    bool forwards = false;
};

// False: an option that changes more than the way.
bool TakeOption(JumpCommand& jump, const QString& option, const QString& value)
{
    struct Option
    {
        QStringView name;
        void (*take)(JumpCommand&, const QString&);
    };
    static constexpr std::array options{
        Option{u"-l", [](JumpCommand& into, const QString& text) { into.host.user = text; }},
        Option{u"-p", [](JumpCommand& into, const QString& text) { into.host.port = text; }},
        Option{u"-J", [](JumpCommand& into, const QString& text) { into.before = text; }},
        Option{u"-W", [](JumpCommand& into,
                         const QString& text) { into.forwards = text == u"%h:%p"_s || text == u"[%h]:%p"_s; }},
    };
    const auto row = std::ranges::find(options, QStringView(option), &Option::name);
    if (row == options.end())
        return false;
    row->take(jump, value);
    return true;
}

bool IsHarmless(const QString& option) { return option == u"-q"_s || option == u"-T"_s || option == u"-x"_s; }

} // namespace

std::vector<SshTarget> JumpsFrom(const QString& list)
{
    std::vector<SshTarget> jumps;
    if (list.trimmed().compare(u"none"_s, Qt::CaseInsensitive) == 0)
        return jumps;
    for (QString entry : list.split(u',', Qt::SkipEmptyParts)) {
        entry = entry.trimmed();
        if (entry.startsWith(u"ssh://"_s))
            entry.remove(0, 6);
        if (!entry.isEmpty())
            jumps.push_back(SshTarget::From(entry));
    }
    return jumps;
}

std::optional<std::vector<SshTarget>> JumpsOfCommand(const QString& command)
{
    const auto split = SplitCommandLine(command.toStdString());
    if (!split)
        return std::nullopt;
    QStringList words;
    for (const std::string& word : *split)
        words << QString::fromStdString(word);
    if (!words.isEmpty() && words.front() == u"exec"_s)
        words.removeFirst();
    if (words.isEmpty() || QFileInfo(words.takeFirst()).fileName() != u"ssh"_s)
        return std::nullopt;
    JumpCommand jump;
    QString host;
    while (!words.isEmpty()) {
        const QString word = words.takeFirst();
        if (IsHarmless(word))
            continue;
        if (!word.startsWith(u'-') && host.isEmpty())
            host = word;
        else if (words.isEmpty() || !TakeOption(jump, word, words.takeFirst()))
            return std::nullopt;
    }
    if (host.isEmpty() || !jump.forwards)
        return std::nullopt;
    const SshTarget named = SshTarget::From(host);
    jump.host.host = named.host;
    if (jump.host.user.isEmpty())
        jump.host.user = named.user;
    auto jumps = JumpsFrom(jump.before);
    jumps.push_back(jump.host);
    return jumps;
}

QString ExpandedCommand(const QString& command, const QString& host, int port, const QString& user,
                        const QString& given)
{
    QString text;
    for (qsizetype i = 0; i < command.size(); ++i) {
        if (command[i] != u'%' || i + 1 == command.size()) {
            text += command[i];
            continue;
        }
        switch (command[++i].unicode()) {
        case u'h':
            text += host;
            break;
        case u'p':
            text += QString::number(port);
            break;
        case u'r':
            text += user;
            break;
        case u'n':
            text += given;
            break;
        case u'%':
            text += u'%';
            break;
        default:
            text += u'%';
            text += command[i];
        }
    }
    return text;
}

} // namespace kestrune::comm
