#pragma once

// The terminal view for assistive tools: its rows as text with a caret, and word of what the host has written,
// no more often than it could be spoken. Costs nothing while no such tool runs.

#include <emulator/view/readabletext.h>

#include <QAccessibleWidget>
#include <QTimer>

namespace kestrune {

class TerminalView;

void InstallTerminalAccess(); // before the first view is asked for; again does nothing

class TerminalAccess : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    explicit TerminalAccess(TerminalView& view);

    void* interface_cast(QAccessible::InterfaceType type) override;
    QString text(QAccessible::Text kind) const override;

    void selection(int index, int* start, int* end) const override;
    int selectionCount() const override;
    void addSelection(int start, int end) override;
    void removeSelection(int index) override;
    void setSelection(int index, int start, int end) override;
    int cursorPosition() const override;
    void setCursorPosition(int) override {} // the cursor is the host's
    QString text(int start, int end) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override; // on the desktop
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int, int) override {} // what can be read is in sight
    QString attributes(int offset, int* start, int* end) const override;

private:
    TerminalView& View() const;
    ReadableText Now() const;
};

class ScreenAnnouncer
{
public:
    using Speaker = void (*)(QAccessibleEvent* event);
    explicit ScreenAnnouncer(TerminalView& view, Speaker speak = QAccessible::updateAccessibility);
    void FrameShown(); // only while QAccessible::isActive

private:
    void Tell();

    TerminalView& view_;
    Speaker speak_;
    QTimer pause_;
    ReadableText told_;
    bool started_ = false;
};

} // namespace kestrune
