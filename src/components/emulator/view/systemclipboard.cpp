#include "systemclipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace kestrune {

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

void SystemClipboard::SetText(Kind kind, const QString& text)
{
    if (const auto mode = ModeOf(kind))
        QGuiApplication::clipboard()->setText(text, *mode);
}

} // namespace kestrune
