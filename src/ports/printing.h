#pragma once

// Printing as an emulator needs it: text laid out on pages, or bytes that a printer understands by itself.

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

namespace kestrune {

struct PrintedRun // text from column on, columns of one character's width; may lie over an earlier run
{
    int column = 0;
    bool bold = false;
    bool underline = false;
    QString text;
};
using PrintedLine = std::vector<PrintedRun>;
using PrintedPage = std::vector<PrintedLine>; // more lines than the paper has go on on the next sheet

struct PageLook
{
    QString fontName;
    double fontSize = 10; // points; smaller when the widest line needs it
    bool bold = false;
    bool italic = false;
    int paperSize = 0;   // the platform's numbers: 1 Letter, 5 Legal, 8 A3, 9 A4, 11 A5; others: the printer's own
    int orientation = 0; // 2 landscape, others portrait
    int colorMode = 0;   // 1 black and white, others as the printer has it
};

struct PrintJob
{
    // A printer's name; empty: the system's own printer, without one a PDF file in the documents folder; "PDF": such a
    // file; a path: a file, as PDF when its name ends with ".pdf". A PDF file never takes the place of another file;
    // everything else is put behind what a file has.
    QString printer;
    QString title; // of the session
    PageLook look;
    std::vector<PrintedPage> pages;
    QByteArray raw; // goes out as it is; then there are no pages
};

struct PrintOutcome
{
    bool printed = false;
    QString text; // for people: where it went, or why it did not
};

class Printing
{
public:
    virtual ~Printing() = default;
    // Does not wait. done is called once, from the event loop.
    virtual void Print(PrintJob job, std::function<void(const PrintOutcome&)> done) = 0;
};

} // namespace kestrune
