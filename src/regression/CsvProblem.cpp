#include "regression/CsvProblem.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>

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

// Columns beyond what a fit can solve are refused before they cost memory: the normal
// equations of m variables hold (m + 1) * (m + 2) values, no more than the largest
// matrix the program makes.
constexpr size_t mostColumns() {
  int64_t m = 1;
  while ((m + 2) * (m + 3) <= kMaxDataCells) ++m;
  return static_cast<size_t>(m) + 1;
}

// The separator the header uses most outside quotes; a tie goes to the tab, then ";".
char detectSeparator(std::string_view header) {
  constexpr std::array<char, 3> kCandidates = {'\t', ';', ','};
  std::array<size_t, 3> counts{};
  bool quoted = false;
  for (const char c : header) {
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    for (size_t k = 0; k < kCandidates.size(); ++k)
      if (c == kCandidates[k]) ++counts[k];
  }
  size_t best = kCandidates.size() - 1;
  for (size_t k = kCandidates.size(); k-- > 0;)
    if (counts[k] >= counts[best]) best = k;
  return kCandidates[best];
}

bool isAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isAsciiDigit(char c) { return c >= '0' && c <= '9'; }

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

// Names are compared as the expression engine compares them: in any case.
bool sameName(const std::string& a, const std::string& b) { return a.size() == b.size() && lower(a) == lower(b); }

std::string quotedWhenNeeded(const std::string& name) {
  const bool plain = !name.empty() && name.find_first_of(",;\t\"") == std::string::npos && !isBlank(name.front()) &&
                     !isBlank(name.back());
  if (plain) return name;
  std::string text = "\"";
  for (const char c : name) text += c == '"' ? std::string("\"\"") : std::string(1, c);
  return text + "\"";
}

}  // namespace

CsvHeader ReadCsvHeader(std::string_view line, const std::string& fileName, int lineNumber) {
  const auto refuse = [&](const std::string& expected) { throw RegressionFileError(fileName, lineNumber, expected); };
  CsvHeader header;
  header.separator = detectSeparator(line);
  constexpr size_t kMost = mostColumns();
  RecordFields fields;
  if (!SplitRecord(line, kMost, fields, header.separator)) refuse(fields.fault);
  if (fields.count < 2)
    refuse("a header naming the dependent variable and at least one independent variable, separated by \",\", \";\" "
           "or tabs");
  if (fields.count > kMost)
    refuse("at most " + std::to_string(kMost) + " columns (more variables than a fit can solve), found " +
           std::to_string(fields.count));
  header.names = std::move(fields.kept);
  return header;
}

void ReadCsvRecord(std::string_view line, const CsvHeader& header, std::vector<double>& values, RecordFields& fields,
                   const std::string& fileName, int lineNumber) {
  const auto refuse = [&](const std::string& expected) { throw RegressionFileError(fileName, lineNumber, expected); };
  const size_t columns = header.names.size();
  if (!SplitRecord(line, columns, fields, header.separator)) refuse(fields.fault);
  if (fields.count != columns)
    refuse(std::to_string(columns) + " numbers separated by " + SeparatorName(header.separator) + ", found " +
           std::to_string(fields.count) + " fields");
  values.clear();
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
      refuse("a number in column " + std::to_string(j + 1) + " (" + Excerpt(header.names[j]) + "), not \"" +
             Excerpt(fields.kept[j]) + "\"");
    values.push_back(value);
  }
}

RegressionProblem ParseCsvProblem(const std::string& fileName, const std::string& text) {
  std::string_view rest(text);
  if (rest.substr(0, 3) == "\xEF\xBB\xBF") rest.remove_prefix(3);  // a byte-order mark

  CsvHeader header;
  std::vector<double> values;  // set after set, each in the file's column order
  std::vector<double> set;
  RecordFields fields;
  int lineNumber = 0;
  while (!rest.empty()) {
    ++lineNumber;
    const size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (trim(line).empty()) continue;
    if (header.names.empty()) {
      header = ReadCsvHeader(line, fileName, lineNumber);
      continue;
    }
    const size_t columns = header.names.size();
    if (RegressionProblem::tooLarge(static_cast<int32_t>(columns - 1), static_cast<int64_t>(values.size() / columns) + 1))
      throw RegressionFileError(fileName, lineNumber, "no more data sets than the program can hold");
    ReadCsvRecord(line, header, set, fields, fileName, lineNumber);
    values.insert(values.end(), set.begin(), set.end());
  }
  if (header.names.empty()) throw RegressionFileError(fileName, std::max(lineNumber, 1), "a header line naming the columns");
  const size_t columns = header.names.size();
  const size_t sets = values.size() / columns;
  if (sets < 3) throw RegressionFileError(fileName, lineNumber, "at least 3 data sets, found " + std::to_string(sets));

  RegressionProblem p;
  p.m = static_cast<int32_t>(columns - 1);
  p.N = static_cast<int32_t>(sets);
  RenameColumns(p, std::move(header.names));
  p.dimensionData();
  for (int32_t i = 1; i <= p.N; ++i) {
    const double* row = &values[static_cast<size_t>(i - 1) * columns];
    for (int32_t j = 1; j <= p.m; ++j) p.X(j, i) = row[j];
    p.X(p.m + 1, i) = row[0];
  }
  return p;
}

RegressionProblem ReadCsvProblem(const std::string& path) { return ParseCsvProblem(path, ReadFileText(path)); }

bool ReadsAsCsv(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code ec;
  if (fs::exists(DataFileName(path), ec)) return false;
  if (lower(fs::path(path).extension().string()) == ".csv") return true;
  if (!fs::is_regular_file(path, ec)) return false;  // the pair's reader says why
  std::ifstream in(path, std::ios::binary);
  std::string start(256, '\0');
  in.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<size_t>(in.gcount()));
  try {
    parseStrict(std::string_view(start).substr(0, start.find_first_of(",\r\n")));
  } catch (const RuntimeError&) {
    return true;
  }
  return false;
}

bool IsAcceptedColumnName(const std::vector<std::string>& names, size_t column) {
  const std::string& name = names[column];
  if (!isValidDependentName(name)) return false;
  for (size_t k = 0; k < names.size(); ++k)
    if (k != column && sameName(names[k], name)) return false;
  return true;
}

std::vector<NameCorrection> NameCorrections(const std::vector<std::string>& names) {
  std::vector<std::string> result = names;
  std::vector<bool> accepted(names.size());
  for (size_t j = 0; j < names.size(); ++j)
    accepted[j] = isValidDependentName(names[j]) &&
                  std::none_of(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(j),
                               [&](const std::string& earlier) { return sameName(earlier, names[j]); });
  const auto taken = [&](const std::string& name, size_t column) {
    for (size_t k = 0; k < result.size(); ++k)
      if (k != column && (accepted[k] || k < column) && sameName(result[k], name)) return true;
    return false;
  };
  std::vector<NameCorrection> corrections;
  for (size_t j = 0; j < names.size(); ++j) {
    if (accepted[j]) continue;
    std::string kept;
    for (const char c : names[j])
      if (isAsciiLetter(c) || isAsciiDigit(c)) kept += c;
    if (kept.empty() || isAsciiDigit(kept.front())) kept.insert(0, j == 0 ? "y" : "x");
    std::string offered = kept;
    for (int number = 2; taken(offered, j); ++number) offered = kept + std::to_string(number);
    result[j] = offered;
    corrections.push_back({j, names[j], std::move(offered)});
  }
  return corrections;
}

std::vector<std::string> ColumnNames(const RegressionProblem& problem) {
  std::vector<std::string> names{problem.dependentName};
  names.insert(names.end(), problem.names.begin(), problem.names.end());
  return names;
}

void RenameColumns(RegressionProblem& problem, std::vector<std::string> names) {
  problem.dependentName = std::move(names.front());
  problem.names.assign(std::make_move_iterator(names.begin() + 1), std::make_move_iterator(names.end()));
}

std::string CsvText(const RegressionProblem& p) {
  std::string text;
  const std::vector<std::string> names = ColumnNames(p);
  for (size_t j = 0; j < names.size(); ++j) text += (j ? "," : "") + quotedWhenNeeded(names[j]);
  text += '\n';
  for (int i = 1; i <= p.N; ++i) {
    text += formatGeneral(p.X(p.m + 1, i));
    for (int j = 1; j <= p.m; ++j) text += "," + formatGeneral(p.X(j, i));
    text += '\n';
  }
  return text;
}

}  // namespace orvane
