#include "mousereply.h"

#include <QRegularExpression>

#include <vector>

namespace kestrune {

namespace {

struct RowText
{
    QString text;
    std::vector<qsizetype> starts; // where the text of each column begins, and the end
};

RowText TextByColumn(const ctlEmulator& emulator, int row)
{
    RowText result;
    for (int column = 0; column < emulator.Cols(); ++column) {
        result.starts.push_back(result.text.size());
        result.text += emulator.GetText(column, row, 1);
    }
    result.starts.push_back(result.text.size());
    return result;
}

QString Filled(const QString& reply, const QRegularExpressionMatch& match)
{
    QString text;
    for (qsizetype i = 0; i < reply.size(); ++i) {
        const QChar next = i + 1 < reply.size() ? reply[i + 1] : QChar();
        const bool isGroup = next >= u'0' && next <= u'9';
        if (reply[i] != u'$' || (!isGroup && next != u'$')) {
            text += reply[i];
            continue;
        }
        text += isGroup ? match.captured(next.unicode() - u'0') : QString(next);
        ++i;
    }
    return text;
}

// The match that the click stands in.
std::optional<QRegularExpressionMatch> MatchAt(const QString& pattern, const RowText& row, int column)
{
    const QRegularExpression expression(pattern);
    if (pattern.isEmpty() || !expression.isValid())
        return std::nullopt;
    for (auto matches = expression.globalMatch(row.text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        // A wide character is all in its first column: a click on the second counts too.
        const auto place = row.starts[size_t(column)];
        const auto end = row.starts[size_t(column) + 1];
        const bool isTail = place == end;
        const bool inside = !isTail && match.capturedStart() <= place && place < match.capturedEnd();
        const bool onTail = isTail && match.capturedStart() < place && place <= match.capturedEnd();
        if (inside || onTail)
            return match;
    }
    return std::nullopt;
}

} // namespace

std::optional<QString> MouseReply(const ctlEmulator& emulator, const MouseClick& click)
{
    if (!emulator.Settings().Boolean(Setting("MouseEnable")) || emulator.MouseTable().empty() || click.col < 0 ||
        click.col >= emulator.Cols())
        return std::nullopt;
    const RowText text = TextByColumn(emulator, click.row);
    for (const MousePattern& row : emulator.MouseTable()) {
        const QString& reply = click.twice ? row.rDblClk : row.rClick;
        if (row.button != click.button || reply.isEmpty())
            continue;
        if (const auto match = MatchAt(row.pattern, text, click.col))
            return Filled(reply, *match);
    }
    return std::nullopt;
}

} // namespace kestrune
