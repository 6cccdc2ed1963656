#pragma once
// The residual plot of the Statistics window: each data set's residual (the given value
// minus the listing's estimate, as the printed report has it) against its fitted value
// or against one variable, with the zero line, in a frame whose ranges are labelled.

#include <string>
#include <vector>

#include "platform/Canvas.h"
#include "regression/RegressionProblem.h"

namespace orvane {

namespace residualcolors {
constexpr Color Frame = 0x808080;   // grey
constexpr Color Zero = 0x0000FF;    // red, as the axes of the 2-D picture
constexpr Color Points = 0xFF0000;  // blue, as the data points there
constexpr Color Labels = 0x000000;
}  // namespace residualcolors

struct ResidualPoints {
  std::vector<double> x;         // the fitted value or the variable, set by set
  std::vector<double> residual;  // given value minus the estimate
  std::string xCaption;          // "Fitted values" or the variable's name
};

// axis 0: against the fitted values; axis j = 1..m: against variable j. The problem
// must hold a computed fit.
ResidualPoints ResidualsAgainst(const RegressionProblem& problem, int axis);

// Draws the plot over the whole picture (cleared first). Up to a few thousand sets are
// marked as small discs; more as single pixels, each pixel set once, so that a million
// sets draw in a few tens of milliseconds.
void DrawResidualPlot(Canvas& picture, const ResidualPoints& points);

}  // namespace orvane
