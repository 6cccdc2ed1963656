#include "FuzzChecks.h"

#include <cmath>
#include <string>
#include <vector>

#include "regression/CsvProblem.h"
#include "regression/RegressionFile.h"

namespace orvane::fuzz {

// A table the reader accepts is consistent and, with the names offered in place of those
// the window would not take, can be saved as a regression file pair and read back.
std::string CheckCsvProblem(std::string_view input) {
  RegressionProblem problem;
  try {
    problem = ParseCsvProblem("fuzz.csv", std::string(input));
  } catch (const RegressionFileError& e) {
    return std::string(e.what()).empty() ? "a refusal without a message" : "";
  }
  std::vector<std::string> names = ColumnNames(problem);
  for (const NameCorrection& c : NameCorrections(names)) names[c.column] = c.offered;
  for (size_t j = 0; j < names.size(); ++j)
    if (!IsAcceptedColumnName(names, j)) return "an offered name the window would not take";
  RenameColumns(problem, std::move(names));
  if (problem.m < 1 || problem.N < 3 || problem.names.size() != static_cast<size_t>(problem.m))
    return "an accepted table with inconsistent counts";
  if (problem.X.lastColumn() != problem.m + 1 || problem.X.lastRow() != problem.N)
    return "data matrix of the wrong shape";
  for (int i = 1; i <= problem.N; ++i)
    for (int j = 1; j <= problem.m + 1; ++j)
      if (!std::isfinite(problem.X(j, i))) return "a value that is not finite accepted";
  try {
    ParseRegressionFiles("fuzz.reg", ProblemText(problem), DataText(problem));
  } catch (const RegressionFileError& e) {
    return std::string("an accepted table cannot be saved and read back as a regression file pair: ") + e.what();
  }
  return "";
}

}  // namespace orvane::fuzz
