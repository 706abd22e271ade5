#pragma once

// What the user is told when a piece of the program is not there yet.

#include <QString>

namespace kestrune {

class Questions;

QString NotImplementedText(const QString& feature); // two lines, the wording is fixed
QString NotImplementedLine(const QString& feature); // its first line, for a status line or a log

void NotImplemented(Questions& ask, const QString& feature); // as a message with the information icon

} // namespace kestrune
