#pragma once
// The plot driver of the stereo window: what the two pictures show and in which order,
// with which colours and line styles. The left picture (index 0) carries the stereo
// shift; the right one (index 1) does not.

#include <span>
#include <vector>

#include "platform/Canvas.h"
#include "platform/StopCheck.h"
#include "stereo/StereoSettings.h"
#include "stereo/SurfaceMesh.h"
#include "stereo/SurfaceSampler.h"
#include "stereo/ViewTransform.h"

namespace orvane {

// Colour of an RGB triple as the Canvas takes it (red in the low byte).
constexpr Color Rgb(unsigned r, unsigned g, unsigned b) { return r | (g << 8) | (b << 16); }

struct StereoColors {
  Color background;
  Color linecolorfunction;  // mesh lines and dots
  Color axes;
  Color dotcolor;  // marked data points
  static constexpr Color border = Rgb(192, 192, 0);
  static constexpr Color reference = Rgb(0, 192, 192);
  static constexpr Color origin = Rgb(255, 0, 0);
};

// The colours for the option "White" (kBackgroundWhite) or "Black".
StereoColors ColorsFor(int background);

// Before drawing: persistence from the Persist box, then background and drawing colour
// (setting the background erases the picture).
void ApplyPlotAppearance(Canvas& left, Canvas& right, const StereoSettings& settings);

// One plot's inputs besides the pictures.
struct StereoPlot {
  const StereoSettings& settings;
  SurfaceEvaluator& evaluator;
  SurfaceParameters& uv;   // kept by the window between plots
  DotGenerator& random;    // seeded at window load; each plot continues it
  // The regression's data sets as (first variable, second variable, dependent value).
  std::span<const Point3> marks;
  bool surfaceShown = true;  // the fitted-function flag: without it no surface is drawn
  // Asked at the plot's pauses (a window lets its events run there) and polled at every
  // evaluation and reference line; none: the plot runs to its end.
  StopCheck* stop = nullptr;
};

// The marks of the regression's data sets 1..n from its data matrix X (column 1 and 2
// the two variables, column m + 1 the dependent value). Nothing to mark unless m >= 2.
std::vector<Point3> DataMarksFrom(int32_t n, int32_t m, FunctionRef<double(int32_t row, int32_t column)> X);

// Draws everything on pictures already sized: scales, border, reference lines, axes,
// the origin mark, the data marks, then the surface (mesh, then dots). A viewing window
// that cannot be a picture scale (no width or height) draws nothing. False when the
// plot's stop check stopped it; what was drawn until then stays.
bool DrawStereoPlot(Canvas& left, Canvas& right, const StereoPlot& plot);

// The parts of the plot, in the order DrawStereoPlot draws them; each works on both
// pictures, left first. Those given a stop check throw WorkInterrupted from it.
void DrawBorder(Canvas& left, Canvas& right, const StereoSettings& s, DeviceUnit unit);
void DrawReferenceLines(Canvas& left, Canvas& right, const StereoSettings& s, StopCheck* stop = nullptr);
void DrawAxes(Canvas& left, Canvas& right, const StereoSettings& s);
void DrawOriginMark(Canvas& left, Canvas& right, const StereoSettings& s);
void DrawDataMarks(Canvas& left, Canvas& right, const StereoSettings& s, std::span<const Point3> marks);
void DrawSurfaceMesh(Canvas& left, Canvas& right, const StereoPlot& plot);
void DrawSurfaceDots(Canvas& left, Canvas& right, const StereoPlot& plot);

}  // namespace orvane
