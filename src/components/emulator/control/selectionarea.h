#pragma once

namespace kestrune {

// Cells of a selection; both ends belong to it. Rows below 0 stand in the history.
struct SelectionArea
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool block = false; // a rectangle; else along the lines from left, top to right, bottom
    bool operator==(const SelectionArea&) const = default;
};

} // namespace kestrune
