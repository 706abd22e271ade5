#include "statusline.h"

#include <menubar/barlayout.h>
#include <menubar/icons.h>

#include "statuspanel.h"

#include <QEvent>
#include <QLocale>
#include <QMouseEvent>

#include <algorithm>

namespace kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds LookInterval{250}; // at locks and clock

bool IsLock(ToolType type)
{
    return type == ToolType::CapsLock || type == ToolType::NumLock || type == ToolType::ScrollLock;
}

bool IsTime(ToolType type) { return type == ToolType::Time || type == ToolType::Date || type == ToolType::TimeAndDate; }

// A panel that is off has nothing to say: without a session for instance. Locks and clocks go on without one.
bool IsSeen(const MenuTool& tool) { return tool.visible && (tool.enabled || IsLock(tool.type) || IsTime(tool.type)); }

Qt::Alignment AlignmentOf(qint16 style)
{
    switch (style & ToolStyle::AlignMask) {
    case ToolStyle::AlignCenter:
        return Qt::AlignHCenter;
    case ToolStyle::AlignRight:
        return Qt::AlignRight;
    default:
        return Qt::AlignLeft;
    }
}

StatusPanel::Border BorderOf(qint16 style)
{
    switch (style & ToolStyle::BorderMask) {
    case ToolStyle::Inset:
        return StatusPanel::Border::Inset;
    case ToolStyle::Raised:
        return StatusPanel::Border::Raised;
    default:
        return StatusPanel::Border::None;
    }
}

PanelSize SizeOf(const StatusPanel& panel, const MenuTool& tool)
{
    const int least = tool.width / TwipsPerPixel;
    const int size = tool.style & ToolStyle::SizeMask;
    if (!IsSeen(tool))
        return {};
    if (size == ToolStyle::Spring)
        return {least, true};
    if (size == ToolStyle::FixedWidth && least > 0)
        return {least, false};
    return {std::max(least, panel.WantedWidth()), false};
}

} // namespace

StatusLine::StatusLine(ReadKeyboardLocks locks, std::function<QDateTime()> now)
    : readLocks_(std::move(locks)), now_(std::move(now)), notice_(new StatusPanel(this))
{
    notice_->hide();
    notice_->setObjectName(u"Notice"_s);
    tick_.setInterval(LookInterval);
    connect(&tick_, &QTimer::timeout, this, &StatusLine::Tick);
    noticeEnd_.setSingleShot(true);
    connect(&noticeEnd_, &QTimer::timeout, this, [this] {
        notice_->hide();
        Arrange();
    });
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

StatusLine::~StatusLine() = default;

const std::vector<MenuTool>& StatusLine::Tools() const
{
    static const std::vector<MenuTool> none;
    const MenuBand* band = model_ ? model_->Band(band_) : nullptr;
    return band != nullptr ? band->tools : none;
}

void StatusLine::Show(taMenuBar& model, const QString& band)
{
    model_ = &model;
    band_ = band;
    const std::vector<MenuTool>& tools = Tools();
    while (panels_.size() > tools.size()) {
        delete panels_.back();
        panels_.pop_back();
    }
    while (panels_.size() < tools.size())
        panels_.push_back(new StatusPanel(this));
    for (std::size_t i = 0; i < tools.size(); ++i)
        Apply(*panels_[i], tools[i]);
    WatchTime();
    Arrange();
}

void StatusLine::Refresh(const QSet<int>& keys)
{
    const std::vector<MenuTool>& tools = Tools();
    if (tools.size() != panels_.size())
        return; // it is about to be shown anew
    bool changed = false;
    for (std::size_t i = 0; i < tools.size(); ++i)
        if (keys.contains(tools[i].key)) {
            Apply(*panels_[i], tools[i]);
            changed = true;
        }
    if (changed)
        Arrange();
}

void StatusLine::Apply(StatusPanel& panel, const MenuTool& tool) const
{
    const qint16 content = tool.style & ToolStyle::ContentMask;
    StatusPanel::Face face;
    if (content != ToolStyle::IconOnly)
        face.text = TextOf(tool);
    if (content != ToolStyle::TextOnly)
        face.picture = panel.Shown().picture; // the same again costs no paint
    const ToolState state = tool.checked ? ToolState::Checked : ToolState::Normal;
    const QString picture = QString::number(static_cast<int>(tool.imageSource)) + u' ' + tool.normalImage + u' ' +
                            tool.checkedImage + (tool.checked ? u"+"_s : u""_s);
    if (content == ToolStyle::TextOnly || tool.imageSource == ImageSource::None)
        face.picture = {};
    else if (panel.property("picture").toString() != picture)
        face.picture = ToolIcon(tool, state);
    panel.setProperty("picture", picture);
    face.toolTip = tool.toolTipText;
    face.align = AlignmentOf(tool.style);
    face.border = BorderOf(tool.style);
    face.wraps = (tool.style & ToolStyle::Wrap) != 0;
    face.separated = tool.beginGroup && panels_.front() != &panel;
    face.lit = tool.enabled && IsLit(tool);
    panel.SetFace(face);
}

QString StatusLine::TextOf(const MenuTool& tool) const
{
    const QLocale locale;
    const QDateTime now = IsTime(tool.type) ? now_() : QDateTime();
    switch (tool.type) {
    case ToolType::CapsLock:
        return tool.caption.isEmpty() ? tr("CAPS") : tool.caption;
    case ToolType::NumLock:
        return tool.caption.isEmpty() ? tr("NUM") : tool.caption;
    case ToolType::ScrollLock:
        return tool.caption.isEmpty() ? tr("SCRL") : tool.caption;
    case ToolType::Time:
        return locale.toString(now.time(), QLocale::ShortFormat);
    case ToolType::Date:
        return locale.toString(now.date(), QLocale::ShortFormat);
    case ToolType::TimeAndDate:
        return locale.toString(now, QLocale::ShortFormat);
    default:
        return tool.caption;
    }
}

bool StatusLine::IsLit(const MenuTool& tool) const
{
    switch (tool.type) {
    case ToolType::CapsLock:
        return locks_.caps;
    case ToolType::NumLock:
        return locks_.num;
    case ToolType::ScrollLock:
        return locks_.scroll;
    default:
        return true;
    }
}

// --- what nobody reports

void StatusLine::WatchTime()
{
    const std::vector<MenuTool>& tools = Tools();
    const bool wanted = std::any_of(tools.begin(), tools.end(), [](const MenuTool& tool) {
        return tool.visible && (IsLock(tool.type) || IsTime(tool.type));
    });
    if (!wanted)
        tick_.stop();
    else if (!tick_.isActive()) {
        tick_.start();
        Tick();
    }
}

void StatusLine::Tick()
{
    if (readLocks_)
        locks_ = readLocks_();
    QSet<int> keys;
    for (const MenuTool& tool : Tools())
        if (IsLock(tool.type) || IsTime(tool.type))
            keys.insert(tool.key);
    Refresh(keys);
}

// --- notices

void StatusLine::ShowNotice(const QString& text, std::chrono::milliseconds time)
{
    // One that is still being read is not pushed away by the next.
    const QString before = Notice();
    StatusPanel::Face face;
    face.text = before.isEmpty() || before.endsWith(text) ? text : before + u"  "_s + text;
    notice_->SetFace(face);
    notice_->show();
    noticeEnd_.start(time);
    Arrange();
}

QString StatusLine::Notice() const { return notice_->isHidden() ? QString() : notice_->Shown().text; }

// --- places

void StatusLine::Arrange()
{
    const std::vector<MenuTool>& tools = Tools();
    const bool noticed = !notice_->isHidden();
    std::vector<PanelSize> sizes;
    std::size_t spring = tools.size();
    for (std::size_t i = 0; i < tools.size() && i < panels_.size(); ++i) {
        sizes.push_back(SizeOf(*panels_[i], tools[i]));
        if (sizes.back().spring)
            spring = i;
    }
    const bool ownPlace = noticed && spring == tools.size();
    if (ownPlace)
        sizes.push_back({0, true});
    const std::vector<int> widths = PanelWidths(sizes, width());
    int left = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const QRect place(left, 0, widths[i], height());
        left += widths[i];
        const bool covered = noticed && (i == spring || i >= panels_.size());
        if (covered)
            notice_->setGeometry(place);
        if (i < panels_.size()) {
            panels_[i]->setGeometry(place);
            panels_[i]->setVisible(IsSeen(tools[i]) && !covered);
        }
    }
}

QSize StatusLine::sizeHint() const { return {0, notice_->Height()}; }

QSize StatusLine::minimumSizeHint() const { return sizeHint(); }

void StatusLine::resizeEvent(QResizeEvent*) { Arrange(); }

void StatusLine::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateGeometry();
        Arrange();
    }
}

void StatusLine::mouseReleaseEvent(QMouseEvent* event)
{
    const std::vector<MenuTool>& tools = Tools();
    for (std::size_t i = 0; i < tools.size() && i < panels_.size(); ++i)
        if (event->button() == Qt::LeftButton && panels_[i]->isVisible() &&
            panels_[i]->geometry().contains(event->pos()) && tools[i].enabled && !tools[i].action.isEmpty()) {
            const MenuTool copy = tools[i]; // the command may change the menu
            emit model_->ToolClick(QString(band_), copy);
            return;
        }
}

} // namespace kestrune
