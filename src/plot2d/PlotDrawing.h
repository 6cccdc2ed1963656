#pragma once
// The plot driver of the 2-D picture: frame, shading of the studied area, ticks or
// grid, study-interval ends, axes, origin mark, data points, labels and the curve of f
// or of one of its derivatives, all in user coordinates on a Canvas.

#include <cstdint>
#include <span>
#include <string>

#include "platform/Canvas.h"
#include "plot2d/Derivatives.h"
#include "plot2d/Viewport.h"
#include "regression/FitSummary.h"

namespace orvane {

namespace plotcolors {
constexpr Color Frame = 0x00FFFF;         // yellow
constexpr Color Shading = 0xA0A0FF;       // light red
constexpr Color Marks = 0xFF0000;         // blue: later shading dots, interval ends, data
constexpr Color Ticks = 0x00FF00;         // green
constexpr Color Axes = 0x0000FF;          // red
constexpr Color Origin = 0xFF00FF;        // magenta
constexpr Color WindowLabels = 0xC0C000;  // teal
constexpr Color Curve = 0x000000;         // black
constexpr Color Bands = 0xC0C000;         // teal, dotted: the 95% bands around the fit
}  // namespace plotcolors

struct PlotOptions {
  bool grid = false;            // chkGrid: ticks become grid lines
  bool shade = false;           // chkShade: shade the studied area (the function only)
  bool labelWindow = false;     // chkWindow: label the window edges
  bool labelDivisions = false;  // chkDivisions: label the divisions
  bool fittedFunction = false;  // the curve is drawn only once the regression is computed
  int32_t derivative = 0;       // 0 = the function, k = the k-th derivative
  double xlower = 0;            // study interval
  double xupper = 0;
};

struct PlotRequest {
  PlotSetup setup;
  PlotOptions options;
  float width = 0;   // picture size in screen units (twips)
  float height = 0;
  std::span<const double> dataX;  // the regression's data points, in order
  std::span<const double> dataY;
  // The half widths of the 95% bands around the curve at x; when given, the bands are
  // drawn after the curve of the function.
  std::function<BandHalfWidths(double)> bands;
};

struct DrawnPlot {
  Viewport viewport;         // the one set up, also when the drawing was stopped
  bool interrupted = false;  // stopped through the evaluator's stop check
};

// Draws the whole plot onto the picture (the caller clears it first). After the axes,
// marks and labels, before the curve, it asks d's stop check at once (a window lets
// its events run there, so the picture shows what is drawn so far). A failing
// evaluation never raises here: it breaks the curve, ends the shading or leaves out an
// interval-end line. A stop ends every evaluating part where it is; the frame, ticks,
// axes, marks and labels are drawn all the same. Overflow or division by zero in the
// set-up is RuntimeError 6 or 11 before anything is drawn.
DrawnPlot drawPlot(Canvas& picture, DerivativeEvaluator& d, const PlotRequest& request);

}  // namespace orvane
