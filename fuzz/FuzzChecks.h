#pragma once
// What each fuzz target checks about one input, apart from the fuzzer, so that the
// hardening tests can run the seeds and every input that once failed through the same
// checks. Each returns "" when the routine behaved, else what went wrong. An exception
// the routine should not throw is left to escape.

#include <string>
#include <string_view>

namespace orvane::fuzz {

// The first line as statements, the second as an expression evaluated at a few
// points, the rest as code; two engines, optimizer on and off, must agree.
std::string CheckEngine(std::string_view input);

// The problem file's text up to the first NUL byte, the data file's after it.
std::string CheckRegressionFile(std::string_view input);

// The input as a stereo export file.
std::string CheckStereoImport(std::string_view input);

// The input as the batch tool's comma-separated table (FuzzCsvCheck.cpp).
std::string CheckCsvProblem(std::string_view input);

}  // namespace orvane::fuzz
