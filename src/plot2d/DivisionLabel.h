#pragma once
// The text written at a division tick of the 2-D picture, the same on the screen, the
// printed study, the exported bitmap and orvane-batch's pictures.

#include <string>

namespace orvane {

// The decimals a tick spacing needs for neighbouring ticks to read differently: 0 for
// a whole spacing, 1 for 0.5 or 2.5, 2 for 0.25, 3 for 0.001.
int divisionDecimals(float spacing);

// The label of the tick at `value` when the ticks are `spacing` apart. A whole spacing
// gives the integer form, rounded half away from zero, with a trailing point when asked
// ("3" or "3."); any other spacing gives the decimals it needs ("0.25", "-1.50"). A value
// that reads as zero gets no digits: "" (or "." in the integer form with the point).
std::string divisionLabel(float value, float spacing, bool trailingPoint);

}  // namespace orvane
