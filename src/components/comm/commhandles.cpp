#include <comm/commhandles.h>

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune {

// One handle's line and what has come of it.
class CommHandles::OpenLine : public LineListener
{
public:
    OpenLine(LineFactory& lines, LineOptions options) : lines_(lines), options_(std::move(options)) {}

    bool Connect()
    {
        state_ = LineState::Closed;
        text_.clear();
        received_.clear();
        errorWord_ = 0;
        exitCode_ = -1;
        question_ = {};
        dial_ = DialStatus::NoCall;
        line_ = lines_.Make(options_, *this);
        if (line_)
            line_->Open();
        return line_ != nullptr;
    }
    bool IsConnected() const { return line_ && line_->IsOpen(); }
    bool Send(std::string_view bytes)
    {
        if (!IsConnected() || line_->Unsent() + static_cast<qsizetype>(bytes.size()) > Line::MaxUnsent)
            return false;
        line_->Send(bytes);
        return true;
    }
    QByteArray Take(qsizetype most)
    {
        QByteArray taken = received_.left(most);
        received_.remove(0, taken.size());
        Pace();
        return taken;
    }
    void PutBack(std::string_view bytes)
    {
        received_.prepend(bytes.data(), static_cast<qsizetype>(bytes.size()));
        Pace();
    }
    bool Answer(LineAnswer::Choice choice)
    {
        if (!line_ || question_.id == 0)
            return false;
        line_->Answer({.question = std::exchange(question_, {}).id, .choice = choice});
        return true;
    }
    void Pace()
    {
        if (line_)
            line_->SetReceiving(wanted_ && received_.size() < MostKept);
    }

    void LineReceived(std::string_view bytes) override
    {
        received_.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
        Pace();
    }
    void LineStateChanged(LineState state, const QString& text) override
    {
        state_ = state;
        text_ = text;
    }
    void LineDeviceStatus(const QString&) override {}
    void LineError(quint32 errorWord, const QString& description, bool) override
    {
        errorWord_ = errorWord;
        text_ = description;
    }
    void LineClosed() override
    {
        state_ = LineState::Closed;
        question_ = {};
        line_.reset();
    }
    void LineProgramEnded(int exitCode, int) override { exitCode_ = exitCode; }
    void LineRemoteEcho(bool) override {}
    void LineAsks(const LineQuestion& question) override
    {
        question_ = question;
        if (question.kind == LineQuestion::Kind::Secrets)
            Answer(LineAnswer::Choice::Nobody);
    }
    void LineDialStatus(DialStatus status, const QString&) override { dial_ = status; }

    LineFactory& lines_;
    LineOptions options_;
    LineState state_ = LineState::Closed;
    DialStatus dial_ = DialStatus::NoCall;
    QString text_;
    QByteArray received_;
    quint32 errorWord_ = 0;
    int exitCode_ = -1;
    LineQuestion question_;
    bool wanted_ = true;         // ORCommOption
    std::unique_ptr<Line> line_; // last: it goes first; null: closed
};

CommHandles::CommHandles(LineFactory& lines) : lines_(lines) {}
CommHandles::~CommHandles() = default;

CommHandles::OpenLine* CommHandles::Find(int handle) const
{
    const auto row = open_.find(handle);
    return row == open_.end() ? nullptr : row->second.get();
}

// --- life

int CommHandles::ORCommInit()
{
    open_.clear();
    int devices = 0;
    for (int device = 1; device <= 7; ++device)
        devices += lines_.Exists(static_cast<Device>(device)) ? 1 : 0;
    return devices;
}

int CommHandles::ORCommOpen(const LineOptions& options)
{
    auto line = std::make_unique<OpenLine>(lines_, options);
    if (!line->Connect())
        return 0;
    open_.emplace(++last_, std::move(line));
    return last_;
}

int CommHandles::ORCommClose(int handle) { return open_.erase(handle) > 0 ? 1 : 0; }

int CommHandles::ORCommAbort(int handle)
{
    OpenLine* const line = Find(handle);
    if (!line || !line->line_)
        return 0;
    line->line_->Close();
    return 1;
}

int CommHandles::ORCommReset(int handle)
{
    OpenLine* const line = Find(handle);
    return line && line->Connect() ? 1 : 0;
}

// --- bytes

int CommHandles::ORCommRead(int handle)
{
    char byte = 0;
    return ORCommReadBuf(handle, &byte, 1) == 1 ? static_cast<unsigned char>(byte) : -1;
}

int CommHandles::ORCommReadBuf(int handle, char* buffer, int size)
{
    OpenLine* const line = Find(handle);
    if (!line)
        return 0;
    const QByteArray taken = line->Take(std::max(size, 0));
    std::ranges::copy(taken, buffer);
    return static_cast<int>(taken.size());
}

int CommHandles::ORCommWrite(int handle, int byte)
{
    const char character = static_cast<char>(byte);
    return ORCommWriteBuf(handle, {&character, 1});
}

int CommHandles::ORCommWriteBuf(int handle, std::string_view bytes)
{
    OpenLine* const line = Find(handle);
    return line && line->Send(bytes) ? static_cast<int>(bytes.size()) : 0;
}

int CommHandles::ORCommUnread(int handle, int byte)
{
    const char character = static_cast<char>(byte);
    return ORCommUnreadBuf(handle, {&character, 1});
}

int CommHandles::ORCommUnreadBuf(int handle, std::string_view bytes)
{
    OpenLine* const line = Find(handle);
    if (!line)
        return 0;
    line->PutBack(bytes);
    return static_cast<int>(bytes.size());
}

int CommHandles::ORCommFlush(int handle)
{
    OpenLine* const line = Find(handle);
    return line ? static_cast<int>(line->Take(line->received_.size()).size()) : 0;
}

// --- the rest

int CommHandles::ORCommBreak(int handle, int milliseconds)
{
    OpenLine* const line = Find(handle);
    if (!line || !line->IsConnected())
        return 0;
    line->line_->Break(milliseconds);
    return 1;
}

int CommHandles::ORCommQuery(int handle, CommQuery what) const
{
    const OpenLine* const line = Find(handle);
    if (!line)
        return 0;
    switch (what) {
    case CommQuery::State:
        return static_cast<int>(line->state_);
    case CommQuery::Received:
        return static_cast<int>(line->received_.size());
    case CommQuery::Unsent:
        return line->line_ ? static_cast<int>(line->line_->Unsent()) : 0;
    case CommQuery::DialStatus:
        return static_cast<int>(line->dial_);
    case CommQuery::ErrorWord:
        return static_cast<int>(line->errorWord_);
    case CommQuery::Device:
        return static_cast<int>(line->options_.device);
    case CommQuery::Question:
        return line->question_.id == 0 ? 0 : static_cast<int>(line->question_.kind) + 1;
    case CommQuery::ExitCode:
        return line->exitCode_;
    }
    return 0; // a number that is none of them
}

int CommHandles::ORCommOption(int handle, CommOption option, int value)
{
    OpenLine* const line = Find(handle);
    if (!line)
        return 0;
    if (option == CommOption::Receiving) {
        line->wanted_ = value != 0;
        line->Pace();
        return 1;
    }
    constexpr int most = 32767;
    if (value < 1 || value > most || (option != CommOption::Columns && option != CommOption::Rows))
        return 0;
    TerminalSize& size = line->options_.size;
    (option == CommOption::Columns ? size.cols : size.rows) = value;
    if (line->line_)
        line->line_->Resize(size);
    return 1;
}

int CommHandles::ORCommEscape(int handle, CommEscape what)
{
    constexpr std::array choices{LineAnswer::Choice::Cancel, LineAnswer::Choice::Continue, LineAnswer::Choice::Update};
    OpenLine* const line = Find(handle);
    const auto index = static_cast<std::size_t>(what);
    return line && index < choices.size() && line->Answer(choices.at(index)) ? 1 : 0;
}

QString CommHandles::ORCommErrmsg(int handle) const
{
    const OpenLine* const line = Find(handle);
    return line ? line->text_ : QString();
}

int CommHandles::ORCommDial(int handle, const QString& number)
{
    OpenLine* const line = Find(handle);
    return line && line->line_ && line->line_->Dial(number) ? 1 : 0;
}

int CommHandles::ORCommHangup(int handle)
{
    OpenLine* const line = Find(handle);
    return line && line->line_ && line->line_->HangUp() ? 1 : 0;
}

} // namespace kestrune
