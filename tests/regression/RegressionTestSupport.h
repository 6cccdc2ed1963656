#pragma once
// Small builders shared by the regression tests.

#include <string>
#include <vector>

#include "regression/RegressionProblem.h"

namespace orvane::testing {

// A problem with m variables named x1..xm (or the given names), one row {x1..xm, y} per set.
inline RegressionProblem makeProblem(int m, const std::vector<std::vector<double>>& sets,
                                     std::vector<std::string> names = {}, std::string dependent = "y") {
  RegressionProblem p;
  p.m = m;
  p.N = static_cast<int>(sets.size());
  for (int j = static_cast<int>(names.size()) + 1; j <= m; ++j) names.push_back("x" + std::to_string(j));
  p.names = std::move(names);
  p.dependentName = std::move(dependent);
  p.dimensionData();
  for (int i = 1; i <= p.N; ++i)
    for (int j = 1; j <= m + 1; ++j) p.X(j, i) = sets[i - 1][j - 1];
  return p;
}

// Column j of the matrix, rows 1..N.
inline std::vector<double> column(const RegressionProblem& p, int j) {
  std::vector<double> values;
  for (int i = 1; i <= p.N; ++i) values.push_back(p.X(j, i));
  return values;
}

}  // namespace orvane::testing
