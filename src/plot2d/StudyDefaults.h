#pragma once
// The study interval and plot setup the 2-D window opens with: the interval spans the
// regression's data, and the window shows the data and the fitted line with round
// division sizes and the axes in sight.

#include <optional>
#include <span>
#include <string>

#include "plot2d/Viewport.h"

namespace orvane {

// The fitted straight line a0 + a1 x.
struct FittedLine {
  double a0 = 0, a1 = 0;
};

struct StudyWindowDefaults {
  std::string xlower, xupper;  // the study interval's texts
  PlotSetupTexts plot;         // window, axes and divisions (plotStep left empty)
};

// xs and ys are the data points in order (non-finite ones are ignored); without any,
// the window is centred on the origin. The line, when given, is kept in sight over the
// study interval.
StudyWindowDefaults defaultStudyWindow(std::span<const double> xs, std::span<const double> ys,
                                       std::optional<FittedLine> line);

// The fixed texts the window opens with, and the size of its picture in pixels.
namespace studyOpening {
inline constexpr const char* kSubintervals = "256";
inline constexpr const char* kErrorBound = ".01";
inline constexpr const char* kMaxcy = "16";  // 2^8 panels need 7 halvings; room to converge
inline constexpr const char* kPlotStep = "5";
inline constexpr const char* kDerivative = "0";
inline constexpr int kPictureWidth = 600;
inline constexpr int kPictureHeight = 400;
}  // namespace studyOpening

// The smallest of 1, 2 or 5 times a power of ten that is at least `raw` (> 0).
double roundStepAtLeast(double raw);

}  // namespace orvane
