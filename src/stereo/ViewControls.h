#pragma once
// The buttons that change the view without typing: zoom, octants and pans over the
// viewing window, and the increment and decrement buttons of the window, range,
// rotation and translation fields. They work on the field texts only; the window
// replots after a zoom and leaves the rest to the Plot button.

#include "stereo/StereoSettings.h"

namespace orvane {

// ZoomView codes.
enum ZoomCode : int {
  kZoomOut = 0,
  kZoomOctant1 = 1,  // ... kZoomOctant1 + 7 is octant 8
  kZoomIn = 9,
  kPanRight = 10,
  kPanUp = 11,
  kPanLeft = 12,
  kPanDown = 13,
  kPanIn = 14,
  kPanOut = 15,
};

// Rewrites the six window texts for the code (read as plain numbers, not through the
// expression engine; single precision). Any other code rewrites them unchanged in the
// single-precision form. After an overflow the texts are left as they were and the
// result is false.
bool ZoomView(int code, StereoFields& fields);

// The increment and decrement buttons.
enum class StepTarget { WindX, WindY, WindZ, RangXU, RangYV, RotX, RotY, RotZ, TranX, TranY, TranZ };
enum class StepDirection { Inc, Dec };

// Window and range pairs: Inc widens the interval by its step field, symmetrically about
// its centre, Dec narrows it. Rotation and translation: the field gains (Inc) or loses
// (Dec) its step. Nothing is checked: a Dec may leave a lower limit above the upper.
void StepField(StepTarget target, StepDirection direction, StereoFields& fields);

}  // namespace orvane
