#pragma once
// The buttons that change the view without typing: zoom, octants and pans over the
// viewing window, and the increment and decrement buttons of the window, range,
// rotation and translation fields, and the mouse's drag and wheel on the pictures.
// They work on the field texts only; the window replots after a zoom or a drag and
// leaves the rest to the Plot button.

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

// The three rotation fields in degrees (xrot, yrot, zrot).
struct ViewAngles {
  double x = 0, y = 0, z = 0;
};

// How far the view turns for one pixel of drag.
inline constexpr double kDragDegreesPerPixel = 0.5;

// A drag of (dx, dy) pixels on a picture (x to the right, y downwards) turns the scene
// about the screen's axes as if the pointer held its front: sideways about the vertical
// axis (z), up and down about the horizontal one (y). The result is the angles of the
// same orientation nearest to `from`, so the fields change smoothly, rounded to
// hundredths of a degree.
ViewAngles DragRotation(const ViewAngles& from, double dx, double dy);

// The angles as the rotation fields show them.
void ShowAngles(const ViewAngles& angles, StereoFields& fields);

// How the pair is shown: side by side for parallel viewing (the left picture for the
// left eye), swapped for cross-eyed viewing, or as one red-cyan picture.
enum class ViewingMode { Parallel = 0, Crossed = 1, Anaglyph = 2 };
inline constexpr std::string_view kViewingModeCaptions[] = {"Parallel", "Crossed", "Red\u2013cyan anaglyph"};

}  // namespace orvane
