#pragma once

// pnlReconnect, pnlConfirm and pnlSecrets of a session window: frames in the middle of its terminal. They show and
// ask; what a button does is decided elsewhere.

#include <ports/linepanels.h>

#include <QObject>

#include <functional>
#include <vector>

class QBoxLayout;
class QCheckBox;
class QFrame;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

namespace kestrune {

class SessionPanels final : public QObject, public LinePanels
{
    Q_OBJECT

public:
    // window holds the terminal and gets the panels as children. The terminal is disabled while one is up.
    SessionPanels(QWidget& window, QWidget& terminal);

    LinePanel Shown() const override { return shown_; }
    void ShowReconnect(const QString& text) override;
    void ShowConfirm(const QString& text) override;
    void ShowSecrets(const LineQuestion& question, bool mayKeep) override;
    void SetCanResume(bool on) override;
    void Hide() override;
    void TakeFocus() override;
    void ShowHelp(const QString& text) override;

signals:
    void Pressed(LineButton button);
    void SecretsTyped(const std::function<std::vector<Secret>()>& take, bool remember); // take: once, now

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Panel
    {
        QFrame* frame = nullptr;
        QLabel* text = nullptr;
        QBoxLayout* buttons = nullptr;
    };
    Panel MakePanel(const QString& name, const QString& labelName);
    QPushButton* AddButton(const Panel& panel, const QString& name, const QString& text, LineButton button);
    void BuildSecrets();
    void Show(LinePanel which);
    void Place();
    void SubmitSecrets();
    void ClearSecrets();
    bool KeyPressed(const QObject* on, int key);
    QFrame* ShownFrame() const;

    QWidget& window_;
    QWidget& terminal_;
    LinePanel shown_ = LinePanel::None;
    Panel reconnect_, confirm_, secrets_;
    QPushButton* resumeButton_ = nullptr;
    QPushButton* reconnectButton_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
    QPushButton* confirmCancel_ = nullptr;
    QLabel* secretsTitle_ = nullptr;
    QFormLayout* fields_ = nullptr;
    QCheckBox* remember_ = nullptr;
    QLabel* noStore_ = nullptr; // in its place where nothing can be kept
    std::vector<QLineEdit*> edits_;
};

} // namespace kestrune
