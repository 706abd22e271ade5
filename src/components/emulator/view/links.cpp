#include "links.h"

#include <emulator/view/logicalline.h>

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <array>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct SchemeRow
{
    QLatin1StringView scheme;
    LinkUse use;
};
constexpr std::array kSchemes{
    SchemeRow{"http"_L1, LinkUse::Open}, SchemeRow{"https"_L1, LinkUse::Open}, SchemeRow{"mailto"_L1, LinkUse::Open},
    SchemeRow{"ftp"_L1, LinkUse::Open},  SchemeRow{"file"_L1, LinkUse::Ask}, // it may be a program
};

const QRegularExpression& Addresses()
{
    static const QRegularExpression expression(
        uR"((?<![\w.])(?:(?:https?|ftp|file)://|mailto:|www\.)[^\s<>"'`{}|\\^\x{2500}-\x{259F}]+)"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    return expression;
}

// What ends a sentence, and a bracket that was opened before the address, are not part of it.
qsizetype LengthOfAddress(QStringView text)
{
    static constexpr QStringView endings = u".,;:!?*_~";
    while (!text.isEmpty()) {
        const QChar last = text.back();
        const QChar open = last == u')' ? u'(' : last == u']' ? u'[' : QChar();
        const bool stray = !open.isNull() && text.count(last) > text.count(open);
        if (!stray && !endings.contains(last))
            break;
        text.chop(1);
    }
    return text.size();
}

QString Openable(const QString& text)
{
    const QUrl url(text.startsWith("www."_L1, Qt::CaseInsensitive) ? u"https://"_s + text : text);
    const QString target = QString::fromLatin1(url.toEncoded());
    return url.isValid() && UseOf(target) != LinkUse::Never ? target : QString();
}

void AddCell(std::vector<LinkSpan>& spans, int row, int column, int width)
{
    if (!spans.empty() && spans.back().row == row && spans.back().last == column)
        spans.back().last = column + width;
    else
        spans.push_back({row, column, column + width});
}

std::optional<Link> HostLink(const emu::Terminal& screen, uint16_t id, const LogicalLine& line)
{
    Link link;
    link.target = Openable(QString::fromUtf8(screen.LinkOf(id)));
    if (link.target.isEmpty())
        return std::nullopt;
    for (int row = line.top; row <= line.bottom; ++row) {
        const auto cells = screen.Row(row).cells;
        for (int column = 0; column < int(cells.size()); ++column)
            if (screen.StyleOf(cells[size_t(column)].style).link == id)
                AddCell(link.spans, row, column, 1);
    }
    return link;
}

std::optional<Link> TextLink(const LogicalLine& line, CellPlace at)
{
    auto matches = Addresses().globalMatch(line.text);
    while (matches.hasNext()) {
        const auto match = matches.next();
        const auto first = size_t(match.capturedStart());
        const auto length = size_t(LengthOfAddress(match.capturedView()));
        Link link;
        for (size_t i = first; i < first + length; ++i)
            if (i == first || line.places[i] != line.places[i - 1])
                AddCell(link.spans, line.places[i].row, line.places[i].column, 1);
        const bool hit = std::any_of(link.spans.begin(), link.spans.end(), [at](const LinkSpan& span) {
            return span.row == at.row && at.column >= span.first && at.column < span.last;
        });
        if (!hit)
            continue;
        link.target = Openable(line.text.mid(qsizetype(first), qsizetype(length)));
        return link.target.isEmpty() ? std::nullopt : std::optional(link);
    }
    return std::nullopt;
}

} // namespace

LinkUse UseOf(const QString& target)
{
    const QString scheme = QUrl(target, QUrl::StrictMode).scheme();
    const auto* row = std::find_if(kSchemes.begin(), kSchemes.end(),
                                   [&scheme](const SchemeRow& known) { return known.scheme == scheme; });
    return row == kSchemes.end() ? LinkUse::Never : row->use;
}

std::optional<Link> LinkAt(const emu::Terminal& screen, int row, int column)
{
    const auto cells = screen.Row(row).cells;
    if (column < 0 || column >= int(cells.size()))
        return std::nullopt;
    const uint16_t id = screen.StyleOf(cells[size_t(column)].style).link;
    LogicalLine line;
    ReadLogicalLine(screen, row, line);
    return id != 0 ? HostLink(screen, id, line) : TextLink(line, {row, column});
}

} // namespace kestrune
