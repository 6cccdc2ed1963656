#pragma once
// A regression problem from a comma-separated table: a header line naming the columns,
// the first column the dependent variable and the others the independent variables in
// order, then one data set per line. Blank lines are skipped, CR LF and LF line ends
// are both read, fields may be quoted ("x 1", with "" for a quote inside).

#include <string>

#include "regression/RegressionProblem.h"

namespace orvane {

// Reads the file into a new problem (X dimensioned, nothing computed). Throws
// RegressionFileError naming the file, the line and what was expected there for a
// missing file, a bad header, a row of the wrong length or a field that is not a
// number; nothing is half-read.
RegressionProblem ReadCsvProblem(const std::string& path);

// The same from the file's text; `fileName` is used in messages.
RegressionProblem ParseCsvProblem(const std::string& fileName, const std::string& text);

}  // namespace orvane
