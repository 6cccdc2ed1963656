#include "batch/CsvProblem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
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

void CsvRecords::refuse(const std::string& expected) const {
  throw RegressionFileError(fileName_, std::max(lineNumber_, 1), expected);
}

void CsvRecords::readHeader(std::string_view line) {
  constexpr size_t kMost = mostColumns();
  if (!SplitRecord(line, kMost, fields_)) refuse(fields_.fault);
  if (fields_.count < 2)
    refuse("a header naming the dependent variable and at least one independent variable, separated by \",\"");
  if (fields_.count > kMost)
    refuse("at most " + std::to_string(kMost) + " columns (more variables than a fit can solve), found " +
           std::to_string(fields_.count));
  if (!isValidDependentName(fields_.kept[0]))
    refuse("a dependent-variable name made of a letter followed by letters and digits, not \"" +
           Excerpt(fields_.kept[0]) + "\"");
  for (size_t j = 1; j < fields_.count; ++j) {
    const std::string& name = fields_.kept[j];
    // Names are saved one per line and split at "," by the regression window.
    if (name.empty() || name.find_first_of(",\"") != std::string::npos)
      refuse("a name for column " + std::to_string(j + 1) + " without \",\" or quotes, not \"" + Excerpt(name) +
             "\"");
  }
  dependentName_ = std::move(fields_.kept[0]);
  names_.assign(std::make_move_iterator(fields_.kept.begin() + 1), std::make_move_iterator(fields_.kept.end()));
  columns_ = fields_.count;
  set_.assign(columns_, 0.0);
}

// A set of plain numbers, as tables of millions of sets hold them, read in one step:
// true when every field was a bare number ending in a digit or a point, with blanks
// around it, the fields separated by ","; false leaves the line to the general way,
// which takes the same numbers from such a line.
bool CsvRecords::readPlainSet(std::string_view line) {
  const char* p = line.data();
  const char* const end = p + line.size();
  for (size_t j = 0; j < columns_; ++j) {
    while (p < end && isBlank(*p)) ++p;
    const auto [stop, error] = std::from_chars(p, end, set_[j]);
    if (error != std::errc() || !((stop[-1] >= '0' && stop[-1] <= '9') || stop[-1] == '.')) return false;
    p = stop;
    while (p < end && isBlank(*p)) ++p;
    if (j + 1 < columns_) {
      if (p == end || *p != ',') return false;
      ++p;
    }
  }
  return p == end;
}

bool CsvRecords::read(std::string_view line) {
  ++lineNumber_;
  if (lineNumber_ == 1) line = withoutByteOrderMark(line);
  if (trim(line).empty()) return false;
  if (columns_ == 0) {
    readHeader(line);
    return false;
  }
  if (readPlainSet(line)) return true;
  if (!SplitRecord(line, columns_, fields_)) refuse(fields_.fault);
  if (fields_.count != columns_)
    refuse(std::to_string(columns_) + " numbers separated by \",\", found " + std::to_string(fields_.count) +
           " fields");
  for (size_t j = 0; j < columns_; ++j) {
    double value = 0;
    bool ok = !fields_.kept[j].empty();
    if (ok) {
      try {
        value = parseStrict(fields_.kept[j]);
        ok = std::isfinite(value);
      } catch (const RuntimeError&) {
        ok = false;
      }
    }
    if (!ok)
      refuse("a number in column " + std::to_string(j + 1) + " (" + (j == 0 ? dependentName_ : names_[j - 1]) +
             "), not \"" + Excerpt(fields_.kept[j]) + "\"");
    set_[j] = value;
  }
  return true;
}

void CsvRecords::finish(int64_t sets) const {
  if (columns_ == 0) refuse("a header line naming the columns");
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
  p.dependentName = records.dependentName();
  p.names = records.names();
  const size_t columns = records.columns();
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

CsvFileSets::CsvFileSets(std::string path, std::function<void()> betweenPieces)
    : path_(std::move(path)), betweenPieces_(std::move(betweenPieces)) {
  CsvRecords records(path_);
  const int64_t sets = readSets(records, [](const std::vector<double>&) {});
  records.finish(sets);
  if (sets > std::numeric_limits<int32_t>::max()) records.refuse("no more data sets than the program can count");
  dependentName_ = records.dependentName();
  names_ = records.names();
  n_ = static_cast<int32_t>(sets);
}

int64_t CsvFileSets::readSets(CsvRecords& records, const std::function<void(const std::vector<double>&)>& use) const {
  // Opened without waiting, so that a pipe with no writer cannot hold the program.
  const int fd = ::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) throw RegressionFileError("Cannot read the file " + path_ + ": " + std::strerror(errno));
  const struct Closing {
    int fd;
    ~Closing() { ::close(fd); }
  } closing{fd};
  // A regular file only, as every reader takes: a pipe or a device is refused unread.
  const auto refuse = [this](const std::string& reason) {
    throw RegressionFileError("Cannot read the file " + path_ + ": " + reason);
  };
  struct stat st {};
  if (::fstat(fd, &st) != 0) refuse(std::strerror(errno));
  if (S_ISDIR(st.st_mode)) refuse(std::strerror(EISDIR));
  if (!S_ISREG(st.st_mode)) refuse("not a regular file");
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
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
  // Once the header is known, the second half of a large piece is read by a copy of the
  // reader on another core, its sets kept until the first half's have been handed on.
  // A fault there is left for this reader to meet again, with its own line numbers.
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
