#pragma once
// The printed regression report: the variables, the fit when there is one, then every
// data set with its estimate and residual, as text lines in a fixed-pitch font.

#include "regression/RegressionProblem.h"

namespace orvane {

class PrinterPage;

// Prints sets 1..sets (at most problem.N) onto the page in "Courier New" and ends the
// document; the page's font is set back afterwards.
void PrintRegressionReport(PrinterPage& page, const RegressionProblem& problem, int sets);

}  // namespace orvane
