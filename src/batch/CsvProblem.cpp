#include "batch/CsvProblem.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>
#include <vector>

#include "platform/NumberText.h"
#include "platform/RecordLine.h"
#include "platform/RuntimeError.h"
#include "regression/RegressionFile.h"

namespace orvane {
namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view trim(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Columns beyond what a fit can solve are refused before they cost memory: the normal
// equations of m variables hold (m + 1) * (m + 2) values, no more than the largest
// matrix the program makes.
constexpr size_t mostColumns() {
  int64_t m = 1;
  while ((m + 2) * (m + 3) <= kMaxDataCells) ++m;
  return static_cast<size_t>(m) + 1;
}

}  // namespace

RegressionProblem ParseCsvProblem(const std::string& fileName, const std::string& text) {
  std::string_view rest(text);
  if (rest.substr(0, 3) == "\xEF\xBB\xBF") rest.remove_prefix(3);  // a byte-order mark

  RegressionProblem p;
  std::vector<double> values;  // set after set, each in the file's column order
  RecordFields fields;
  size_t columns = 0;
  int lineNumber = 0;
  const auto refuse = [&](const std::string& expected) { throw RegressionFileError(fileName, lineNumber, expected); };
  while (!rest.empty()) {
    ++lineNumber;
    size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (trim(line).empty()) continue;

    if (columns == 0) {
      constexpr size_t kMost = mostColumns();
      if (!SplitRecord(line, kMost, fields)) refuse(fields.fault);
      if (fields.count < 2)
        refuse("a header naming the dependent variable and at least one independent variable, separated by \",\"");
      if (fields.count > kMost)
        refuse("at most " + std::to_string(kMost) + " columns (more variables than a fit can solve), found " +
               std::to_string(fields.count));
      if (!isValidDependentName(fields.kept[0]))
        refuse("a dependent-variable name made of a letter followed by letters and digits, not \"" +
               Excerpt(fields.kept[0]) + "\"");
      for (size_t j = 1; j < fields.count; ++j) {
        const std::string& name = fields.kept[j];
        // Names are saved one per line and split at "," by the regression window.
        if (name.empty() || name.find_first_of(",\"") != std::string::npos)
          refuse("a name for column " + std::to_string(j + 1) + " without \",\" or quotes, not \"" + Excerpt(name) +
                 "\"");
      }
      p.dependentName = std::move(fields.kept[0]);
      p.names.assign(std::make_move_iterator(fields.kept.begin() + 1), std::make_move_iterator(fields.kept.end()));
      columns = fields.count;
      continue;
    }
    if (!SplitRecord(line, columns, fields)) refuse(fields.fault);
    if (fields.count != columns)
      refuse(std::to_string(columns) + " numbers separated by \",\", found " + std::to_string(fields.count) +
             " fields");
    if (RegressionProblem::tooLarge(static_cast<int32_t>(columns - 1), static_cast<int64_t>(values.size() / columns) + 1))
      refuse("no more data sets than the program can hold");
    for (size_t j = 0; j < columns; ++j) {
      double value = 0;
      bool ok = !fields.kept[j].empty();
      if (ok) {
        try {
          value = parseStrict(fields.kept[j]);
          ok = std::isfinite(value);
        } catch (const RuntimeError&) {
          ok = false;
        }
      }
      if (!ok)
        refuse("a number in column " + std::to_string(j + 1) + " (" + (j == 0 ? p.dependentName : p.names[j - 1]) +
               "), not \"" + Excerpt(fields.kept[j]) + "\"");
      values.push_back(value);
    }
  }
  if (columns == 0) {
    lineNumber = std::max(lineNumber, 1);
    refuse("a header line naming the columns");
  }
  const size_t sets = values.size() / columns;
  if (sets < 3) refuse("at least 3 data sets, found " + std::to_string(sets));

  p.m = static_cast<int32_t>(columns - 1);
  p.N = static_cast<int32_t>(sets);
  p.dimensionData();
  for (int32_t i = 1; i <= p.N; ++i) {
    const double* set = &values[static_cast<size_t>(i - 1) * columns];
    for (int32_t j = 1; j <= p.m; ++j) p.X(j, i) = set[j];
    p.X(p.m + 1, i) = set[0];
  }
  return p;
}

RegressionProblem ReadCsvProblem(const std::string& path) { return ParseCsvProblem(path, ReadFileText(path)); }

}  // namespace orvane
