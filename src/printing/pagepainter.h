#pragma once

// Paints pages of text on paper.

#include <ports/printing.h>

class QPagedPaintDevice;

namespace kestrune {

void SetUpPaper(QPagedPaintDevice& device, const PageLook& look);
// Every line that was given is on some sheet, whole. False: the device took nothing.
bool PaintPages(QPagedPaintDevice& device, const PrintJob& job);

} // namespace kestrune
