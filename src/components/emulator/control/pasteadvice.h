#pragma once

// Whether a paste is asked about first, and in which words. It does not depend on what the host switched on.

#include <QString>

namespace kestrune {

// The question for text; empty: it can go without one. asksAboutLines: several lines are a reason.
QString PasteQuestion(const QString& text, bool asksAboutLines = true);

} // namespace kestrune
