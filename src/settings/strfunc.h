#pragma once

// Text made of fields between delimiters of any length. Comparison is case-sensitive, positions count from 1.

#include <QString>

namespace kestrune {

QString Field(const QString& text, const QString& delimiter, qsizetype n);  // n = 0: the whole; beyond the last: ""
qsizetype DCount(const QString& text, const QString& delimiter);            // number of fields; 0 for an empty text
qsizetype FindNth(const QString& text, const QString& target, qsizetype n); // 0: there is none
QString ChangeDelimiter(const QString& text, const QString& oldDelimiter, const QString& newDelimiter);

} // namespace kestrune
