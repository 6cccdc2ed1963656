#include "regression/RegressionReport.h"

#include <algorithm>

#include "platform/NumberText.h"
#include "platform/PrinterPage.h"
#include "regression/Solver.h"

namespace orvane {
namespace {

void printFit(PrinterPage& page, const RegressionProblem& p) {
  for (const std::string& line : StatisticsLines(p.statistics)) page.PrintLine(line);
  page.PrintLine();
  page.PrintLine("COEFFICIENTS:");
  page.PrintLine();
  for (int j = 0; j <= p.m; ++j) page.PrintLine("A" + formatPrint(j) + "=" + formatPrint(p.A[j]));
}

void printDataSet(PrinterPage& page, const RegressionProblem& p, int i) {
  page.PrintLine("SET #" + formatPrint(i) + ":");
  for (int j = 1; j <= p.m; ++j) page.PrintLine(p.names[j - 1] + "=" + formatPrint(p.X(j, i)));
  page.Write(p.dependentName + "=" + formatPrint(p.X(p.m + 1, i)));
  if (p.computed) {
    const double estimate = ComputeEstimates(p, i);
    page.Tab(34);
    page.Write(formatPrint(estimate));
    page.Tab(57);
    page.Write(formatPrint(p.X(p.m + 1, i) - estimate));
  }
  page.NewLine();
  page.PrintLine();
}

}  // namespace

void PrintRegressionReport(PrinterPage& page, const RegressionProblem& p, int sets) {
  const std::string oldFont = page.FontName();
  page.SetFontName("Courier New");
  page.PrintLine("DEPENDENT VARIABLE: " + p.dependentName);
  page.PrintLine("INDEPENDENT VARIABLES: " + joinNames(p.names));
  page.PrintLine();
  if (p.computed) printFit(page, p);

  page.PrintLine();
  page.Write("DATA:");
  if (p.computed) {
    page.Tab(34);
    page.Write("ESTIMATE:");
    page.Tab(57);
    page.Write("RESIDUAL:");
  }
  page.NewLine();
  page.PrintLine();
  const int last = std::min(sets, p.X.empty() ? 0 : std::min(p.N, p.X.lastRow()));
  for (int i = 1; i <= last; ++i) printDataSet(page, p, i);
  page.EndDoc();
  page.SetFontName(oldFont);
}

}  // namespace orvane
