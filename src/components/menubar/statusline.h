#pragma once

// The panels of the status bar band that is shown, in one row: texts and pictures, keyboard locks, time and date.
// A notice takes the place of the panel that springs, the others stay readable beside it.

#include <menubar/tamenubar.h>
#include <ports/keyboardlocks.h>

#include <QDateTime>
#include <QPointer>
#include <QSet>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <functional>
#include <vector>

namespace kestrune {

class StatusPanel;

class StatusLine : public QWidget
{
    Q_OBJECT

public:
    StatusLine(ReadKeyboardLocks locks, std::function<QDateTime()> now);
    ~StatusLine() override;

    void Show(taMenuBar& model, const QString& band);
    void Refresh(const QSet<int>& keys);
    void ShowNotice(const QString& text, std::chrono::milliseconds time);
    QString Notice() const; // empty: none is up

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    const std::vector<MenuTool>& Tools() const;
    void Apply(StatusPanel& panel, const MenuTool& tool) const;
    QString TextOf(const MenuTool& tool) const;
    bool IsLit(const MenuTool& tool) const;
    void Tick();
    void WatchTime();
    void Arrange();

    ReadKeyboardLocks readLocks_;
    std::function<QDateTime()> now_;
    KeyboardLocks locks_;
    QPointer<taMenuBar> model_;
    QString band_;
    std::vector<StatusPanel*> panels_; // children, one for each tool
    StatusPanel* notice_;              // a child that is up only for a while
    QTimer tick_;                      // runs while a panel shows what nobody reports
    QTimer noticeEnd_;
};

} // namespace kestrune
