#pragma once
// Small builders shared by the regression tests.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/NumberText.h"
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

// A file under tests/regression/data, read whole.
inline std::string readDataText(const std::string& name) {
  const char* root = std::getenv("ORVANE_SOURCE_DIR");
  const std::filesystem::path dir = root ? std::filesystem::path(root) / "tests/regression/data"
                                         : std::filesystem::path(__FILE__).parent_path() / "data";
  std::ostringstream text;
  text << std::ifstream(dir / name, std::ios::binary).rdbuf();
  EXPECT_FALSE(text.str().empty()) << dir / name;
  return text.str();
}

// A data file "y,x1,...,xm" (the header names the columns, the dependent one first),
// then one set a line.
inline RegressionProblem readDataCsv(const std::string& name) {
  std::istringstream in(readDataText(name + ".csv"));
  std::string line, field;
  std::getline(in, line);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  std::vector<std::string> header;
  std::istringstream names(line);
  while (std::getline(names, field, ',')) header.push_back(field);
  std::vector<std::vector<double>> rows;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    std::istringstream fields(line);
    rows.emplace_back();
    while (std::getline(fields, field, ',')) rows.back().push_back(parseStrict(field));
    rows.back().push_back(rows.back().front());  // {x1..xm, y}
    rows.back().erase(rows.back().begin());
  }
  return makeProblem(static_cast<int>(header.size()) - 1, rows,
                     std::vector<std::string>(header.begin() + 1, header.end()), header.at(0));
}

}  // namespace orvane::testing
