#pragma once
// The fit's statistics as text: the coefficient table and the summary lines (the
// Statistics window's copy and printout, and the batch tool's --stats), the JSON object
// of --json, and the printed page with the residual plot.

#include <string>
#include <vector>

#include "regression/FitSummary.h"
#include "regression/RegressionProblem.h"

namespace orvane {

class Canvas;
class PrinterPage;

// The name of coefficient j as the statistics show it: "A0 (constant)", "A1 x", ...
std::string CoefficientName(const std::vector<std::string>& names, int j);

// A p value with `digits` significant digits, or "< 2e-16" below the double's
// resolution, where no digit of it means anything.
std::string PValueText(double p, int digits);

// The coefficient table: "Coefficients:", a heading, then A0..Am with Estimate, Std.
// Error, t value, Pr(>|t|) and, with `intervals`, the 95% interval, in aligned columns
// with 7 significant digits.
std::vector<std::string> CoefficientTable(const FitSummary& summary, const std::vector<std::string>& names,
                                          bool intervals);

// One line each for N and m, R², the residual standard error (and a line on the
// listing's divisor N - 2), F, the condition number and digits trusted.
std::vector<std::string> SummaryLines(const FitSummary& summary);

// The table, an empty line and the summary lines.
std::vector<std::string> StatisticsText(const FitSummary& summary, const std::vector<std::string>& names,
                                        bool intervals);

// The summary and the listing's own statistics as one JSON object; numbers with 17
// significant digits, null where a figure is not a number.
std::string StatisticsJson(const FitSummary& summary, const RegressionProblem& problem);

// Prints the text with the intervals in "Courier New", then the residual picture below
// it, and ends the document; the page's font is set back afterwards.
void PrintStatistics(PrinterPage& page, const FitSummary& summary, const std::vector<std::string>& names,
                     const Canvas& residualPicture);

}  // namespace orvane
