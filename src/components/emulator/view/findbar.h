#pragma once

// The bar over the upper right corner of a terminal in which a search is typed. It shows and asks; Finder knows.

#include "textsearch.h"

#include <QFrame>

class QLabel;
class QLineEdit;
class QToolButton;

namespace kestrune {

class FindBar : public QFrame
{
    Q_OBJECT

public:
    explicit FindBar(QWidget* parent);

    void Ask(const QString& text); // shown, with the focus; empty: what was asked last
    SearchQuery Query() const;
    void ShowState(const QString& text, bool wrong);
    void KeepPlace(int rightEdge); // of the parent, in its coordinates

signals:
    void QueryChanged();
    void OlderWanted();
    void NewerWanted();
    void Closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override; // round in the bar: outside, Tab is the host's

private:
    QToolButton* AddButton(const QString& text, const QString& tip, bool checkable);

    QLineEdit* text_;
    QLabel* state_;
    QToolButton* matchCase_;
    QToolButton* wholeWord_;
    QToolButton* regularExpression_;
};

} // namespace kestrune
