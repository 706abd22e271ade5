#include <comm/sshforwardlist.h>

#include <QRegularExpression>
#include <QStringList>

#include <optional>

namespace kestrune::comm {

namespace {

using namespace Qt::StringLiterals;

// "a:[::1]:80" into three; an address in brackets loses them.
QStringList Parts(const QString& text)
{
    static const QRegularExpression part(u"(\\[[^\\]]*\\]|[^:]*)(:|$)"_s);
    QStringList parts;
    qsizetype at = 0;
    for (;;) {
        const auto match =
            part.match(text, at, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption);
        if (!match.hasMatch())
            return {};
        QString word = match.captured(1);
        if (word.startsWith(u'['))
            word = word.mid(1, word.size() - 2);
        parts << word;
        if (match.captured(2).isEmpty())
            return parts;
        at = match.capturedEnd();
    }
}

// A port that the other side picks (0) helps nobody who writes a session file.
quint16 ForwardPort(const QString& text)
{
    bool isNumber = false;
    const ushort port = text.toUShort(&isNumber);
    return isNumber ? port : quint16{0};
}

std::optional<SshForward> ForwardFrom(const QString& entry)
{
    struct Letter
    {
        char16_t letter;
        SshForward::Kind kind;
        qsizetype parts; // without the address
    };
    static constexpr Letter letters[]{
        {u'L', SshForward::Kind::Local, 3}, {u'R', SshForward::Kind::Remote, 3}, {u'D', SshForward::Kind::Dynamic, 1}};
    for (const Letter& row : letters) {
        if (entry.front().toUpper() != row.letter)
            continue;
        QStringList parts = Parts(entry.mid(1));
        SshForward forward{.kind = row.kind, .address = {}, .host = {}};
        if (parts.size() == row.parts + 1)
            forward.address = parts.takeFirst();
        if (parts.size() != row.parts)
            return std::nullopt;
        forward.port = ForwardPort(parts[0]);
        if (row.parts == 3) {
            forward.host = parts[1];
            forward.hostPort = ForwardPort(parts[2]);
        }
        const bool whole = row.parts == 1 || (!forward.host.isEmpty() && forward.hostPort != 0);
        return forward.port != 0 && whole ? std::optional(forward) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace

SshForwardList SshForwardList::From(const QString& text)
{
    static const QRegularExpression between(u"[\\s,;]+"_s);
    SshForwardList list;
    for (const QString& entry : text.split(between, Qt::SkipEmptyParts)) {
        const auto forward = ForwardFrom(entry);
        if (!forward)
            return {.forwards = {}, .wrong = entry};
        list.forwards.push_back(*forward);
    }
    return list;
}

} // namespace kestrune::comm
