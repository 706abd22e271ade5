#pragma once

// The text file that describes all bands and tools of a menu, "menu71.ini": INI text with one section [Menu]. Bands and
// tools share one running number that is the suffix of their keys, in depth-first order; it is a position, no name.

#include <menubar/tamenubar.h>

#include <QString>
#include <QStringList>

#include <vector>

namespace kestrune {

class Profile;

// The bands of a menu file's text, as the file has them. A band that cannot be read or whose key stands already is left
// out. Raises Failure InvalidMenuFile for a text without a count of bands, and what made a tool unreadable otherwise.
std::vector<MenuBand> LoadMenuBag(const QString& text);

// The section's lines, everything that equals its default left out. Of a key, caption or other text that holds a line
// break only the blanks survive: a line can hold none.
QStringList MenuFileLines(const std::vector<MenuBand>& bands);

// Puts the bands in place of the file's section; all else in the file stays. overrideUserMenu: for the file that an
// administrator gives to all; personal files are then not read. Raises Failure when the file cannot be written.
void WriteMenuFile(Profile& profile, const QString& file, const std::vector<MenuBand>& bands, bool overrideUserMenu);

} // namespace kestrune
