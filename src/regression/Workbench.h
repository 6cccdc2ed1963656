#pragma once
// What the regression window shares with the plot windows for the whole run: the
// problem (m, N, X and the fit), the fitted-function flag, the math objects' shared
// evaluation-error field, the three tolerances and where a plot window was opened from.
// The main window owns the one Workbench; plot windows get it by reference.

#include <cstdint>
#include <optional>
#include <string>

#include "regression/FitSummary.h"
#include "regression/RegressionProblem.h"

namespace orvane {

struct Workbench {
  RegressionProblem problem;

  // Set by a successful computation (or by opening a file that holds one), cleared with
  // the results; the plot windows draw the fitted curve or surface only while it is set.
  bool fitted = false;

  // The statistics of the fit (Statistics window, the 2-D window's bands), computed with
  // it and cleared with it.
  std::optional<FitSummary> summary;

  // Written by every math object that has it attached (Class1::sharedError).
  int32_t evaluationError = 0;

  // Shared tolerances of the plot windows.
  double tolerance = 0.004;
  double tolerance2 = 0.008;
  double toleranceSquared = 0.000064;  // tolerance2 squared

  // 1 when a plot window was opened from the regression window's Plot button.
  int plotOrigin = 0;

  // The folder that was current when the program started; the help files live there.
  std::string startDirectory;
};

}  // namespace orvane
