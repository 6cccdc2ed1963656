#pragma once
// The regression file pair: a problem file (counts, computed flag, names, and the
// fit when there is one) and beside it a data file named as the problem file plus
// ".dat" (counts, then one value per line, set by set). Text with CR LF line ends.

#include <stdexcept>
#include <string>
#include <string_view>

#include "regression/RegressionProblem.h"

namespace orvane {

// A file that cannot be read as a regression file, or cannot be written. The message
// names the file, the line and what was expected there.
class RegressionFileError : public std::runtime_error {
 public:
  RegressionFileError(const std::string& file, int line, const std::string& expected);
  explicit RegressionFileError(const std::string& message) : std::runtime_error(message) {}
};

// A user's file whole, as the readers of problems take it: RegressionFileError naming
// the file and the system's reason when it is not a regular file, cannot be read or is
// too large for the memory available.
std::string ReadFileText(const std::string& path);

// The name of the data file that goes with a problem file.
std::string DataFileName(const std::string& problemFile);

// The texts of the two files, each line ended by CR LF.
std::string ProblemText(const RegressionProblem& problem);
std::string DataText(const RegressionProblem& problem);

// Writes both files, each to a temporary file beside it; only when both are complete
// are they renamed over the targets, so a failed save leaves the previous pair as it was.
void WriteRegressionFiles(const std::string& problemFile, const RegressionProblem& problem);

// Reads both files into a new problem (X dimensioned, dataDimensioned set, the fit taken
// as read). Throws RegressionFileError for a missing, malformed, short or inconsistent
// file; nothing is half-read.
RegressionProblem ReadRegressionFiles(const std::string& problemFile);

// The same from the files' texts (for tests and for reading already loaded files).
RegressionProblem ParseRegressionFiles(const std::string& problemFile, std::string_view problemText,
                                       std::string_view dataText);

}  // namespace orvane
