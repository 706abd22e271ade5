#include "systemclipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

// Nothing: this platform has no primary selection.
std::optional<QClipboard::Mode> ModeOf(Clipboard::Kind kind)
{
    if (kind == Clipboard::Kind::Standard)
        return QClipboard::Clipboard;
    if (QGuiApplication::clipboard()->supportsSelection())
        return QClipboard::Selection;
    return std::nullopt;
}

} // namespace

bool SystemClipboard::HasText(Kind kind) const
{
    const auto mode = ModeOf(kind);
    const QMimeData* held = mode ? QGuiApplication::clipboard()->mimeData(*mode) : nullptr;
    return held && held->hasText();
}

QString SystemClipboard::Text(Kind kind) const
{
    const auto mode = ModeOf(kind);
    return mode ? QGuiApplication::clipboard()->text(*mode) : QString();
}

void SystemClipboard::Put(Kind kind, const ClipboardText& content)
{
    const auto mode = ModeOf(kind);
    if (!mode)
        return;
    auto* data = new QMimeData;
    data->setText(content.text);
    if (!content.html.isEmpty())
        data->setHtml(content.html);
    if (!content.rtf.isEmpty())
        for (const auto& type : {u"text/rtf"_s, u"application/rtf"_s}) // programs ask for one or the other
            data->setData(type, content.rtf);
    QGuiApplication::clipboard()->setMimeData(data, *mode);
}

} // namespace kestrune
