#include "regression/CsvProblem.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "platform/SafeFile.h"
#include "platform/WorkParts.h"
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

// Calls `line` with each line of `text` (without its end), in order.
template <typename Line>
void forEachLine(std::string_view text, Line line) {
  while (!text.empty()) {
    const size_t end = text.find('\n');
    std::string_view one = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!one.empty() && one.back() == '\r') one.remove_suffix(1);
    line(one);
  }
}

std::string_view withoutByteOrderMark(std::string_view text) {
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  return text;
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

void CsvRecords::refuse(const std::string& expected) const {
  throw RegressionFileError(fileName_, std::max(lineNumber_, 1), expected);
}

// A set of plain numbers, as tables of millions of sets hold them, read in one step:
// true when every field was a bare number ending in a digit or a point, with blanks
// around it, the fields split by the header's separator; false leaves the line to
// ReadCsvRecord, which takes the same numbers from such a line.
bool CsvRecords::readPlainSet(std::string_view line) {
  const char separator = header_.separator;
  const auto blank = [separator](char c) { return c != separator && isBlank(c); };
  const char* p = line.data();
  const char* const end = p + line.size();
  const size_t columns = this->columns();
  for (size_t j = 0; j < columns; ++j) {
    while (p < end && blank(*p)) ++p;
    const auto [stop, error] = std::from_chars(p, end, set_[j]);
    if (error != std::errc() || !((stop[-1] >= '0' && stop[-1] <= '9') || stop[-1] == '.')) return false;
    p = stop;
    while (p < end && blank(*p)) ++p;
    if (j + 1 < columns) {
      if (p == end || *p != separator) return false;
      ++p;
    }
  }
  return p == end;
}

bool CsvRecords::read(std::string_view line) {
  ++lineNumber_;
  if (lineNumber_ == 1) line = withoutByteOrderMark(line);
  if (trim(line).empty()) return false;
  if (header_.names.empty()) {
    header_ = ReadCsvHeader(line, fileName_, lineNumber_);
    set_.assign(columns(), 0.0);
    return false;
  }
  if (readPlainSet(line)) return true;
  ReadCsvRecord(line, header_, set_, fields_, fileName_, lineNumber_);
  return true;
}

void CsvRecords::finish(int64_t sets) const {
  if (header_.names.empty()) refuse("a header line naming the columns");
  if (sets < 3) refuse("at least 3 data sets, found " + std::to_string(sets));
}

RegressionProblem ParseCsvProblem(const std::string& fileName, const std::string& text) {
  CsvRecords records(fileName);
  std::vector<double> values;  // set after set, each in the file's column order
  int64_t sets = 0;
  forEachLine(text, [&](std::string_view line) {
    if (!records.read(line)) return;
    if (RegressionProblem::tooLarge(static_cast<int32_t>(records.columns() - 1), sets + 1))
      records.refuse("no more data sets than the program can hold");
    values.insert(values.end(), records.set().begin(), records.set().end());
    ++sets;
  });
  records.finish(sets);

  RegressionProblem p;
  const size_t columns = records.columns();
  p.m = static_cast<int32_t>(columns - 1);
  p.N = static_cast<int32_t>(sets);
  RenameColumns(p, records.header().names);
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

CsvFileSets::CsvFileSets(std::string path, std::function<void()> betweenPieces)
    : path_(std::move(path)), betweenPieces_(std::move(betweenPieces)) {
  CsvRecords records(path_);
  const int64_t sets = readSets(records, [](const std::vector<double>&) {});
  records.finish(sets);
  if (sets > std::numeric_limits<int32_t>::max()) records.refuse("no more data sets than the program can count");
  columnNames_ = records.header().names;
  n_ = static_cast<int32_t>(sets);
}

int64_t CsvFileSets::readSets(CsvRecords& records, const std::function<void(const std::vector<double>&)>& use) const {
  std::string reason;
  uint64_t size = 0;
  const int fd = OpenRegularFile(path_, size, reason);
  if (fd < 0) throw RegressionFileError("Cannot read the file " + path_ + ": " + reason);
  const struct Closing {
    int fd;
    ~Closing() { ::close(fd); }
  } closing{fd};
  // The file in pieces of a few megabytes; a line cut by a piece's end is kept for the next.
  constexpr size_t kPiece = size_t{4} << 20;
  std::string piece;  // grown only for a line longer than a piece
  size_t filled = 0;
  int64_t sets = 0;
  for (;;) {
    if (piece.size() < filled + kPiece) piece.resize(filled + kPiece);
    ssize_t count = 0;
    do count = ::read(fd, piece.data() + filled, kPiece);
    while (count < 0 && errno == EINTR);
    if (count < 0) throw RegressionFileError("Cannot read the file " + path_ + ": " + std::strerror(errno));
    if (count == 0) break;
    filled += static_cast<size_t>(count);
    const size_t lastEnd = std::string_view(piece.data(), filled).rfind('\n');
    if (lastEnd == std::string::npos) continue;
    sets += readLines(std::string_view(piece.data(), lastEnd + 1), records, use);
    filled -= lastEnd + 1;
    std::memmove(piece.data(), piece.data() + lastEnd + 1, filled);
    betweenPieces_();
  }
  return sets + readLines(std::string_view(piece.data(), filled), records, use);
}

int64_t CsvFileSets::readLines(std::string_view lines, CsvRecords& records,
                               const std::function<void(const std::vector<double>&)>& use) const {
  int64_t sets = 0;
  const auto readAll = [&](std::string_view text) {
    forEachLine(text, [&](std::string_view line) {
      if (!records.read(line)) return;
      use(records.set());
      ++sets;
    });
  };
  // The header first, line by line: the halves below need to know the columns.
  while (records.columns() == 0 && !lines.empty()) {
    const size_t end = lines.find('\n');
    const std::string_view line = lines.substr(0, end == std::string_view::npos ? lines.size() : end + 1);
    readAll(line);
    lines.remove_prefix(line.size());
  }
  // Then the second half of a large piece is read by a copy of the reader on another
  // core, its sets kept until the first half's have been handed on. A fault there is
  // left for this reader to meet again, with its own line numbers.
  const size_t middle = lines.find('\n', lines.size() / 2) + 1;
  if (records.columns() == 0 || lines.size() < (size_t{1} << 20) || WorkPartCount() < 2 || middle == 0 ||
      middle >= lines.size()) {
    readAll(lines);
    return sets;
  }
  CsvRecords copy = records;
  const int startLine = copy.lineNumber();
  std::vector<double> secondSets;
  bool secondRead = false;
  RunParts(2, [&](int part) {
    if (part == 0) {
      readAll(lines.substr(0, middle));
      return;
    }
    try {
      forEachLine(lines.substr(middle), [&](std::string_view line) {
        if (copy.read(line)) secondSets.insert(secondSets.end(), copy.set().begin(), copy.set().end());
      });
      secondRead = true;
    } catch (const RegressionFileError&) {
    }
  });
  if (!secondRead) {
    readAll(lines.substr(middle));
    return sets;
  }
  records.skipLines(copy.lineNumber() - startLine);
  const size_t width = records.columns();
  std::vector<double> set(width);
  for (size_t at = 0; at < secondSets.size(); at += width) {
    std::copy_n(secondSets.begin() + static_cast<std::ptrdiff_t>(at), width, set.begin());
    use(set);
    ++sets;
  }
  return sets;
}

void CsvFileSets::forEachRun(int size, const std::function<void(const SetRun&)>& use) const {
  const int width = m() + 2;
  std::vector<double> values(static_cast<size_t>(width) * static_cast<size_t>(size));
  std::fill_n(values.begin(), size, 1.0);  // column 0, the constant term
  SetRun run;
  for (int j = 0; j < width; ++j) run.columns.push_back(values.data() + static_cast<size_t>(j) * size);
  const auto column = [&](int j) { return values.data() + static_cast<size_t>(j) * size; };
  CsvRecords records(path_);
  const int64_t sets = readSets(records, [&](const std::vector<double>& set) {
    for (int j = 1; j < width - 1; ++j) column(j)[run.count] = set[static_cast<size_t>(j)];
    column(width - 1)[run.count] = set[0];
    if (++run.count < size) return;
    use(run);
    run.first += run.count;
    run.count = 0;
  });
  if (sets != n_ || records.columns() != static_cast<size_t>(width - 1))
    throw RegressionFileError("The file " + path_ + " changed while it was read.");
  if (run.count > 0) use(run);
}

}  // namespace orvane
