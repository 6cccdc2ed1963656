#include "batch/CsvProblem.h"

#include <cmath>
#include <fstream>
#include <sstream>
#include <string_view>
#include <vector>

#include "platform/NumberText.h"
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

struct Field {
  std::string text;
  bool quoted = false;
};

// The fields of one line. False when a quote is left open or text follows a closing
// quote; `problem` then says what went wrong.
bool splitFields(std::string_view line, std::vector<Field>& fields, std::string& problem) {
  fields.clear();
  size_t i = 0;
  for (;;) {
    while (i < line.size() && isBlank(line[i])) ++i;
    Field field;
    if (i < line.size() && line[i] == '"') {
      field.quoted = true;
      ++i;
      for (;;) {
        if (i >= line.size()) {
          problem = "a closing quote";
          return false;
        }
        if (line[i] == '"') {
          if (i + 1 < line.size() && line[i + 1] == '"') {
            field.text += '"';
            i += 2;
            continue;
          }
          ++i;
          break;
        }
        field.text += line[i++];
      }
      while (i < line.size() && isBlank(line[i])) ++i;
      if (i < line.size() && line[i] != ',') {
        problem = "\",\" after a quoted field";
        return false;
      }
    } else {
      const size_t end = line.find(',', i);
      field.text = std::string(trim(line.substr(i, end == std::string_view::npos ? end : end - i)));
      i = end == std::string_view::npos ? line.size() : end;
    }
    fields.push_back(std::move(field));
    if (i >= line.size()) return true;
    ++i;  // past the ","
  }
}

}  // namespace

RegressionProblem ParseCsvProblem(const std::string& fileName, const std::string& text) {
  std::string_view rest(text);
  if (rest.substr(0, 3) == "\xEF\xBB\xBF") rest.remove_prefix(3);  // a byte-order mark

  RegressionProblem p;
  std::vector<std::vector<double>> rows;
  std::vector<Field> fields;
  std::string problem;
  size_t columns = 0;
  int lineNumber = 0;
  while (!rest.empty()) {
    ++lineNumber;
    size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (trim(line).empty()) continue;

    if (!splitFields(line, fields, problem)) throw RegressionFileError(fileName, lineNumber, problem);
    if (columns == 0) {
      if (fields.size() < 2)
        throw RegressionFileError(fileName, lineNumber,
                                  "a header naming the dependent variable and at least one "
                                  "independent variable, separated by \",\"");
      if (!isValidDependentName(fields[0].text))
        throw RegressionFileError(fileName, lineNumber,
                                  "a dependent-variable name made of a letter followed by letters "
                                  "and digits, not \"" + fields[0].text + "\"");
      for (size_t j = 1; j < fields.size(); ++j) {
        const std::string& name = fields[j].text;
        // Names are saved one per line and split at "," by the regression window.
        if (name.empty() || name.find_first_of(",\"") != std::string::npos)
          throw RegressionFileError(fileName, lineNumber,
                                    "a name for column " + std::to_string(j + 1) +
                                        " without \",\" or quotes, not \"" + name + "\"");
        p.names.push_back(name);
      }
      p.dependentName = fields[0].text;
      columns = fields.size();
      continue;
    }
    if (fields.size() != columns)
      throw RegressionFileError(fileName, lineNumber,
                                std::to_string(columns) + " numbers separated by \",\", found " +
                                    std::to_string(fields.size()) + " fields");
    std::vector<double> row;
    row.reserve(columns);
    for (size_t j = 0; j < columns; ++j) {
      double value = 0;
      bool ok = !fields[j].text.empty();
      if (ok) {
        try {
          value = parseStrict(fields[j].text);
          ok = std::isfinite(value);
        } catch (const RuntimeError&) {
          ok = false;
        }
      }
      if (!ok)
        throw RegressionFileError(fileName, lineNumber,
                                  "a number in column " + std::to_string(j + 1) + " (" +
                                      (j == 0 ? p.dependentName : p.names[j - 1]) + "), not \"" +
                                      fields[j].text + "\"");
      row.push_back(value);
    }
    rows.push_back(std::move(row));
    if (RegressionProblem::tooLarge(static_cast<int32_t>(columns - 1), static_cast<int64_t>(rows.size())))
      throw RegressionFileError(fileName, lineNumber, "no more data sets than the program can hold");
  }
  if (columns == 0)
    throw RegressionFileError(fileName, lineNumber > 0 ? lineNumber : 1, "a header line naming the columns");
  if (rows.size() < 3)
    throw RegressionFileError(fileName, lineNumber,
                              "at least 3 data sets, found " + std::to_string(rows.size()));

  p.m = static_cast<int32_t>(columns - 1);
  p.N = static_cast<int32_t>(rows.size());
  p.dimensionData();
  for (int32_t i = 1; i <= p.N; ++i) {
    const std::vector<double>& row = rows[static_cast<size_t>(i - 1)];
    for (int32_t j = 1; j <= p.m; ++j) p.X(j, i) = row[static_cast<size_t>(j)];
    p.X(p.m + 1, i) = row[0];
  }
  return p;
}

RegressionProblem ReadCsvProblem(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw RegressionFileError(path + ": cannot be opened.");
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) throw RegressionFileError(path + ": cannot be read.");
  return ParseCsvProblem(path, text.str());
}

}  // namespace orvane
