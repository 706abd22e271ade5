#pragma once

// Find in screen and history: joins the bar, the search and the terminal. Searching is done in short slices of
// the event loop's idle time, and again when the screen has changed.

#include "findbar.h"
#include "textsearch.h"

#include <emulator/control/ctlemulator.h>

#include <QTimer>

#include <functional>
#include <memory>

namespace kestrune {

class Finder
{
public:
    // marksChanged: other text is marked as found than before.
    Finder(ctlEmulator& emulator, QWidget& host, std::function<void()> marksChanged);

    void Open(); // with the selected text, if it stands in one line
    void Close();
    void ScreenShown(); // after each frame
    void KeepPlace(int rightEdge);
    std::vector<TextSearch::Span> SpansOf(int row) const { return search_.SpansOf(row); }

private:
    void MakeBar();
    void Start();
    void Slice();
    void Go(bool older);
    void Reveal();
    void ShowState();

    ctlEmulator& emulator_;
    QWidget& host_;
    std::function<void()> marksChanged_;
    TextSearch search_;
    std::unique_ptr<FindBar> bar_; // from the first search on: most sessions never have one
    QTimer slice_;
    uint64_t seen_ = 0; // generation of the screen that was searched last
    bool wentRound_ = false;
    bool chosen_ = false; // the user has gone to a hit
};

} // namespace kestrune
