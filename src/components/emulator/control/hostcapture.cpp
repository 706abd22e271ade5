#include "hostcapture.h"

#include <QCoreApplication>

#include <array>
#include <utility>

namespace kestrune {

namespace {

#ifdef Q_OS_WIN
constexpr std::string_view kLineEnd = "\r\n";
#else
constexpr std::string_view kLineEnd = "\n";
#endif

emu::PlainText::Form FormOf(const HostCapture::Plan& plan)
{
    const bool toClipboard = (plan.mode & ~HostCapture::TextOnly) == int(HostCapture::Target::Clipboard);
    return plan.encoding == 0 && !toClipboard ? emu::PlainText::Form::HostBytes : emu::PlainText::Form::Utf8;
}

} // namespace

bool HostCapture::IsMode(int mode)
{
    const int target = mode & ~TextOnly;
    return target >= int(Target::NewFile) && target <= int(Target::Clipboard);
}

HostCapture::HostCapture(const Ports& ports, Plan plan, OutputFiles::Failed failed)
    : ports_(ports), plan_(std::move(plan)), plain_(plan_.charset, plan_.eightBitControls, FormOf(plan_))
{
    static constexpr std::array modes{OutputFiles::Mode::New, OutputFiles::Mode::Replace, OutputFiles::Mode::Append};
    raw_.SetCharset(plan_.charset);
    if (To() == Target::Clipboard) {
        plan_.fileName.clear();
        return;
    }
    file_ = ports_.outputs.Open(plan_.fileName, modes[size_t(To())], std::move(failed));
    if (IsText() && plan_.encoding != 0 && file_->WasEmpty())
        if (const QByteArray mark = ports_.texts.Mark(plan_.encoding); !mark.isEmpty())
            file_->Write(mark);
}

void HostCapture::Put(int source, std::string_view bytes)
{
    if (source != plan_.source)
        return;
    std::string plain;
    if (IsText())
        bytes = plain = WithPlatformLineEnds(plain_.Feed(bytes));
    const auto size = qsizetype(bytes.size());
    if (!file_) {
        cut_ = cut_ || text_.size() + size > MaxClipboard; // the beginning is kept whole
        if (!cut_)
            text_ += IsText() ? QString::fromUtf8(bytes.data(), size) : raw_.Decode(bytes);
    } else if (IsText() && plan_.encoding != 0) {
        file_->Write(ports_.texts.Encode(QString::fromUtf8(bytes.data(), size), plan_.encoding));
    } else {
        file_->Write(QByteArray(bytes.data(), size));
    }
}

// Carriage returns without a line feed went over a line again (a progress bar): each state gets a line of its own.
std::string HostCapture::WithPlatformLineEnds(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (c == '\r') {
            carriageReturn_ = true;
            continue;
        }
        const bool pending = std::exchange(carriageReturn_, false);
        if (c == '\n' || pending)
            out += kLineEnd;
        if (c != '\n')
            out += c;
    }
    return out;
}

QString HostCapture::End()
{
    if (file_)
        return file_->Close();
    if (!text_.isEmpty())
        ports_.clipboard.SetText(Clipboard::Kind::Standard, text_);
    if (cut_)
        return QCoreApplication::translate("HostCapture", "The clipboard has only the first part: there was too much.");
    return {};
}

} // namespace kestrune
