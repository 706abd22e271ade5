#include "formattedtext.h"

#include "screentext.h"

#include <QMap>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

struct Piece // of one line
{
    QString text;
    emu::Style style;
};
using FormattedLine = std::vector<Piece>;

void AddRow(FormattedLine& line, const emu::Terminal& screen, int row, ColumnSpan columns)
{
    const auto cells = screen.Row(row).cells;
    const auto styleAt = [&](int column) {
        return column < int(cells.size()) ? cells[size_t(column)].style : emu::StyleId(0);
    };
    for (int first = columns.first; first < columns.last;) {
        int last = first + 1;
        while (last < columns.last && styleAt(last) == styleAt(first))
            ++last;
        line.push_back({QString::fromStdString(screen.TextOf(row, first, last - first)), //
                        screen.StyleOf(styleAt(first))});
        first = last;
    }
}

void CutTrailingBlanksOf(FormattedLine& line)
{
    while (!line.empty()) {
        QString& text = line.back().text;
        while (text.endsWith(u' '))
            text.chop(1);
        if (!text.isEmpty())
            return;
        line.pop_back();
    }
}

std::vector<FormattedLine> LinesOf(const emu::Terminal& screen, const SelectionArea& area)
{
    std::vector<FormattedLine> lines(1);
    const auto [cols, rows] = screen.ScreenSize();
    const int last = std::min(area.bottom, rows - 1);
    for (int row = std::max(area.top, -screen.HistoryCount()); row <= last; ++row) {
        AddRow(lines.back(), screen, row, ColumnsOf(area, row, cols));
        if (!area.block && row < last && screen.Row(row).wraps)
            continue;
        CutTrailingBlanksOf(lines.back());
        if (row < last)
            lines.emplace_back();
    }
    return lines;
}

bool Has(const emu::Style& style, uint16_t attribute) { return (style.attributes & attribute) != 0; }

// --- HTML

QString ColorName(Rgb color) { return u'#' + u"%1"_s.arg(color & 0xFFFFFF, 6, 16, QChar(u'0')); }

QString CssOf(const emu::Style& style, const CellColors& looks, const CellColors& usual)
{
    QString css;
    if (looks.foreground != usual.foreground)
        css += u"color:"_s + ColorName(looks.foreground) + u';';
    if (looks.background != usual.background)
        css += u"background-color:"_s + ColorName(looks.background) + u';';
    if (Has(style, emu::Attr::Bold))
        css += u"font-weight:bold;"_s;
    if (Has(style, emu::Attr::Italic))
        css += u"font-style:italic;"_s;
    QString lines;
    if (style.underline != emu::Underline::None)
        lines += u" underline"_s;
    if (Has(style, emu::Attr::Strike))
        lines += u" line-through"_s;
    if (Has(style, emu::Attr::Overline))
        lines += u" overline"_s;
    if (!lines.isEmpty())
        css += u"text-decoration:"_s + lines.trimmed() + u';';
    return css;
}

QString FontNameForCss(QString name)
{
    static constexpr QStringView unsafe = u"'\"\\<>&;";
    name.removeIf([](QChar c) { return c.unicode() < 0x20 || unsafe.contains(c); });
    return name;
}

QString HtmlOf(const std::vector<FormattedLine>& lines, const ColorScheme& colors, const TextFont& font)
{
    const CellColors usual = colors.Of({});
    QString html = u"<pre style=\"font-family:'%1',monospace;font-size:%2pt;color:%3;background-color:%4\">"_s.arg(
        FontNameForCss(font.name), QString::number(font.points), ColorName(usual.foreground),
        ColorName(usual.background));
    bool isFirst = true;
    for (const FormattedLine& line : lines) {
        if (!std::exchange(isFirst, false))
            html += u'\n';
        for (const Piece& piece : line) {
            const QString css = CssOf(piece.style, colors.Of(piece.style), usual);
            const QString text = piece.text.toHtmlEscaped();
            html += css.isEmpty() ? text : u"<span style=\""_s + css + u"\">"_s + text + u"</span>"_s;
        }
    }
    return html + u"</pre>"_s;
}

// --- RTF 1.9

class RtfColors // numbers from 1 in the order of their first use; 0 is the reader's own colour
{
public:
    int Number(Rgb color)
    {
        const auto known = numbers_.constFind(color);
        if (known != numbers_.cend())
            return *known;
        const int number = int(numbers_.size()) + 1;
        numbers_.insert(color, number);
        table_ += "\\red" + QByteArray::number(RedOf(color)) + "\\green" + QByteArray::number(GreenOf(color)) +
                  "\\blue" + QByteArray::number(BlueOf(color)) + ';';
        return number;
    }
    QByteArray Table() const { return "{\\colortbl;" + table_ + '}'; }

private:
    QMap<Rgb, int> numbers_;
    QByteArray table_;
};

void AppendRtfText(QByteArray& rtf, const QString& text)
{
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        if (unit == u'\\' || unit == u'{' || unit == u'}')
            rtf += '\\';
        if (unit < 0x80) {
            rtf += char(unit);
        } else {
            rtf += "\\u"; // a signed number of 16 bits, and what readers without Unicode show
            rtf += QByteArray::number(qint16(unit));
            rtf += '?';
        }
    }
}

QByteArray RtfOf(const std::vector<FormattedLine>& lines, const ColorScheme& colors, const TextFont& font)
{
    RtfColors numbers;
    QByteArray body;
    bool isFirst = true;
    for (const FormattedLine& line : lines) {
        if (!std::exchange(isFirst, false))
            body += "\\par\n";
        for (const Piece& piece : line) {
            const CellColors looks = colors.Of(piece.style);
            const QByteArray paper = QByteArray::number(numbers.Number(looks.background));
            body += "{\\cf" + QByteArray::number(numbers.Number(looks.foreground));
            body += "\\cb" + paper + "\\chshdng0\\chcbpat" + paper; // readers know one or the other
            body += Has(piece.style, emu::Attr::Bold) ? "\\b" : "";
            body += Has(piece.style, emu::Attr::Italic) ? "\\i" : "";
            body += piece.style.underline != emu::Underline::None ? "\\ul" : "";
            body += Has(piece.style, emu::Attr::Strike) ? "\\strike" : "";
            body += ' ';
            AppendRtfText(body, piece.text);
            body += '}';
        }
    }
    QByteArray name;
    QString plainName = font.name;
    plainName.remove(u';');
    AppendRtfText(name, plainName);
    return "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl{\\f0\\fmodern\\fprq1 " + name + ";}}" + numbers.Table() +
           "\\f0\\fs" + QByteArray::number(qRound(font.points * 2)) + '\n' + body + '}';
}

} // namespace

ClipboardText FormatArea(const emu::Terminal& screen, const SelectionArea& area, const ColorScheme& colors,
                         const TextFont& font)
{
    ClipboardText result{TextOfArea(screen, area), {}, {}};
    if (result.text.isEmpty() || result.text.size() > MaxFormatted)
        return result;
    const std::vector<FormattedLine> lines = LinesOf(screen, area);
    result.html = HtmlOf(lines, colors, font);
    result.rtf = RtfOf(lines, colors, font);
    return result;
}

} // namespace kestrune
