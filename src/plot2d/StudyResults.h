#pragma once
// What the study commands found, as the window shows it and as the report and the
// export file list it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

// Each result list holds at most this many entries; one more is error 9.
constexpr size_t kMaxStudyResults = 255;

struct RootResult {
  std::vector<double> roots;      // the root table, in the order found
  std::vector<std::string> list;  // the lines of lstRoots
  // lblRoots ("3 roots", or "Interrupted" when stopped with the roots found so far);
  // nullopt when an error ended the search and the label stays.
  std::optional<std::string> label;
  int32_t error = 0;  // the error that ended the search, 0 when it ran to the end
  bool interrupted = false;  // stopped by the user before the end of the interval
};

struct Extremum {
  double x = 0;
  bool isMaximum = false;
  bool possibleRoot = false;  // |f(x)| within the tolerance: a double root the scan misses
};

struct ExtremaResult {
  std::vector<Extremum> extrema;  // in the order found
  std::vector<std::string> list;  // the lines of lstExtrema
  std::optional<std::string> label;  // lblExtrema ("2 extrema"), as for RootResult
  int32_t error = 0;
  bool interrupted = false;

  std::vector<double> maxima() const;
  std::vector<double> minima() const;
  int32_t possibleRootCount() const;
};

struct IntegralResult {
  // lblIntegral: the value, "No convergence", the reason an evaluation failed or
  // "Interrupted"; nullopt when the label stays as it was.
  std::optional<std::string> label;
  bool computed = false;  // a value was accepted
  double value = 0;
  int32_t error = 0;
  bool interrupted = false;
};

// The latest result of each command, kept by the window until the function or a study
// field changes.
struct StudyResults {
  RootResult roots;
  ExtremaResult extrema;
  IntegralResult integral;

  // Whether anything is on show (a non-empty label or list).
  bool displayed() const;
};

}  // namespace orvane
