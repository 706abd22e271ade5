// The members of ctlEmulator through which text goes to and from the clipboard.

#include "ctlemulator.h"

#include "colorscheme.h"
#include "formattedtext.h"
#include "pasteadvice.h"
#include "pasteform.h"
#include "pastequeue.h"
#include "screentext.h"

#include <QPointer>

#include <utility>

namespace kestrune {

// --- copy

void ctlEmulator::AnnounceSelection()
{
    if (SelectedArea())
        ports_.clipboard.SetText(Clipboard::Kind::Primary, Selection());
    int left = 0, top = 0, right = 0, bottom = 0;
    GetSelection(left, top, right, bottom);
    emit SelectionChange(left, top, right, bottom);
}

void ctlEmulator::CopyArea(const SelectionArea& area)
{
    ColorScheme colors;
    colors.Load(settings_, desktopGround_);
    colors.Follow(*terminal_);
    constexpr double usualPoints = 11;
    const double points = settings_.Number(Setting("FontSize"));
    const TextFont font{settings_.Text(Setting("FontName")), points > 0 ? points : usualPoints};
    ClipboardText content = FormatArea(*terminal_, area, colors, font);
    if (settings_.Boolean(Setting("CopyPlainText")))
        content = {content.text, {}, {}};
    if (!content.text.isEmpty())
        ports_.clipboard.Put(Clipboard::Kind::Standard, content);
}

void ctlEmulator::Copy(int left, int top, int right, int bottom)
{
    const bool given = left != 0 || top != 0 || right != 0 || bottom != 0;
    if (const auto area = given ? Resolve(left, top, right, bottom) : SelectedArea())
        CopyArea(*area);
}

void ctlEmulator::CopyHistory(int left, int top, int right, int bottom)
{
    const bool given = left != 0 || top != 0 || right != 0 || bottom != 0;
    SelectionArea area{0, -terminal_->HistoryCount(), Cols() - 1, Rows() - 1, false};
    if (given)
        area = Resolve(left, top, right, bottom);
    while (area.bottom > area.top && TextOfArea(*terminal_, {0, area.bottom, Cols() - 1, area.bottom, false}).isEmpty())
        --area.bottom; // blank rows below the last text
    CopyArea(area);
}

// --- paste

bool ctlEmulator::CanPaste() const { return ports_.clipboard.HasText(Clipboard::Kind::Standard); }

void ctlEmulator::Paste(const QString& fileName, Cause cause)
{
    PasteText(fileName.isEmpty() ? ports_.clipboard.Text(Clipboard::Kind::Standard) : ports_.texts.ReadText(fileName),
              cause);
}

void ctlEmulator::PastePrimary() { PasteText(ports_.clipboard.Text(Clipboard::Kind::Primary), Cause::User); }

void ctlEmulator::PasteText(const QString& text, Cause cause)
{
    if (text.isEmpty() || !MayType())
        return;
    const bool asksAboutLines = (settings_.Integer(Setting("PasteOptions")) & PasteOption::NoQuestion) == 0;
    const QString question = cause == Cause::User ? PasteQuestion(text, asksAboutLines) : QString();
    if (!question.isEmpty()) {
        const QPointer self(this);
        const int answer = ports_.ask.MsgBox(
            {.text = question, .flags = MsgFlag::OkCancel + MsgFlag::Question, .title = {}, .owner = hwnd_});
        // While the box was up the line, or the session, may have gone.
        if (!self || answer != MsgResult::Ok || !MayType())
            return;
    }
    if (!lockHistory_)
        ScrollTo(0);
    if (!line_) { // local duplex
        Typed(terminal_->EncodeText(text.toStdString()), text, 0);
        return;
    }
    paste_->Start(PasteFormOf(settings_, *terminal_, text), terminal_->Modes().bracketedPaste);
    bytesOut_ += paste_->Pump(*line_);
    if (recordingKeys_)
        emit RecordKey(text, 0);
}

void ctlEmulator::PumpPaste()
{
    if (line_)
        bytesOut_ += paste_->Pump(*line_);
}

// --- what the host wants to put there (OSC 52). Nobody ever gets to read what was there before.

void ctlEmulator::TakeOfferedClipboard()
{
    const QString text = *std::exchange(offered_, std::nullopt);
    if (settings_.Boolean(Setting("HostSetsClipboard"))) {
        ports_.clipboard.SetText(Clipboard::Kind::Standard, text);
        TellUser(tr("The host has put a text of %1 characters on the clipboard.").arg(text.size()));
    } else if (!std::exchange(toldOfOffer_, true)) { // once for a connection: some programs do it with every copy
        TellUser(tr("The host wanted to put text on the clipboard: HostSetsClipboard is off."));
    }
}

} // namespace kestrune
