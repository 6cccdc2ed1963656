#include "regression/RegressionFile.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <cstring>
#include <mutex>
#include <string_view>

#include "platform/LargeBuffer.h"
#include "platform/NumberText.h"
#include "platform/RecordLine.h"
#include "platform/RuntimeError.h"
#include "platform/SafeFile.h"
#include "platform/WorkParts.h"

namespace orvane {
namespace {

constexpr const char* kLineEnd = "\r\n";

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

// A value line holding a number: a blank where a minus sign would stand.
void appendValueLine(std::string& text, double value) {
  char line[kNumberTextRoom + 3];
  size_t n = 0;
  if (!(value < 0)) line[n++] = ' ';
  n += formatGeneralInto(line + n, value);
  line[n++] = '\r';
  line[n++] = '\n';
  text.append(line, n);
}

std::string statisticsRecord(const FitStatistics& s) {
  return formatGeneral(s.correlation) + "," + formatGeneral(s.standardError) + "," +
         formatGeneral(s.residualSquares) + "," + formatGeneral(s.averageGiven) + "," +
         formatGeneral(s.averageEstimated);
}

bool isBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view trim(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool parseNumber(std::string_view text, double& result) {
  try {
    result = parseStrict(text);
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

// A value line's number: false when the line (without its end) holds none.
bool valueOfLine(std::string_view line, double& result, RecordFields& fields) {
  if (line.find_first_of("\",") == std::string_view::npos)  // the usual bare number
    return parseNumber(trim(line), result);
  return SplitRecord(line, 1, fields) && fields.count == 1 && parseNumber(fields.kept[0], result);
}

// Data files of this size and more are read in parts at once.
constexpr size_t kPartedBytes = size_t{1} << 20;

// Lines in a text: its line ends, and a last line without one. Eight bytes at a time:
// a byte of the word is a line end where it is zero once the word is xored with line ends.
size_t countLines(std::string_view text) {
  constexpr uint64_t kEnds = 0x0A0A0A0A0A0A0A0Aull, kLow7 = 0x7F7F7F7F7F7F7F7Full;
  size_t ends = 0, at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    uint64_t word;
    std::memcpy(&word, text.data() + at, 8);
    word ^= kEnds;
    // 1 in each byte that is zero, then the bytes summed by a multiplication.
    const uint64_t zeros = (~(((word & kLow7) + kLow7) | word | kLow7)) >> 7;
    ends += static_cast<size_t>((zeros * 0x0101010101010101ull) >> 56);
  }
  ends += static_cast<size_t>(std::count(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), '\n'));
  return ends + (!text.empty() && text.back() != '\n' ? 1 : 0);
}

// Where `count` value lines from `at` end, or the first of them (counted from 0) that
// holds no number.
struct ValueRun {
  size_t end = 0;
  size_t bad = std::string_view::npos;
};

// Reads `count` value lines of `text` from `at`, handing each number to `store` in
// order. A line that is a bare number in the file's own form (a blank before it or a
// minus sign) is read in one step, its end found where the number stops; any other line
// is read as valueOfLine reads it, so both ways take and refuse the same lines.
template <typename Store>
ValueRun readValueLines(std::string_view text, size_t at, size_t count, Store store) {
  const char* p = text.data() + at;
  const char* const end = text.data() + text.size();
  RecordFields fields;
  for (size_t k = 0; k < count; ++k) {
    double value = 0;
    const char* s = p;
    while (s < end && isBlank(*s)) ++s;
    const auto [stop, error] = std::from_chars(s, end, value);
    // A number ends in a digit or a point; "inf" and "nan" are no numbers here.
    if (error == std::errc() && ((stop[-1] >= '0' && stop[-1] <= '9') || stop[-1] == '.')) {
      if (stop == end || *stop == '\n') {
        p = stop == end ? end : stop + 1;
        store(value);
        continue;
      }
      if (*stop == '\r' && stop + 1 < end && stop[1] == '\n') {
        p = stop + 2;
        store(value);
        continue;
      }
    }
    const auto* lineEnd = static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(end - p)));
    std::string_view line(p, static_cast<size_t>((lineEnd ? lineEnd : end) - p));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!valueOfLine(line, value, fields)) return {static_cast<size_t>(p - text.data()), k};
    p = lineEnd ? lineEnd + 1 : end;
    store(value);
  }
  return {static_cast<size_t>(p - text.data())};
}

// Reads one file line by line, each line as the fields of one record; every failure
// names the file, the line and what the line should have held. The data sets' value
// lines, millions of them, are read past it (readDataValues), in parts at once.
class LineReader {
 public:
  LineReader(std::string file, std::string_view text) : file_(std::move(file)), text_(text) {}

  [[noreturn]] void fail(const std::string& expected) const {
    throw RegressionFileError(file_, current_, expected);
  }

  // The fields of the next line; exactly `count` of them.
  std::vector<std::string> record(size_t count, const std::string& expected) {
    if (!SplitRecord(nextLine(expected), count, fields_) || fields_.count != count) fail(expected);
    return std::move(fields_.kept);
  }
  std::string field(const std::string& expected) { return record(1, expected)[0]; }
  // A name line: read as a field, but a name the program itself wrote with quotes in it
  // ("x, a"b or "a""b") is taken as it stands rather than refused or changed.
  std::string name(const std::string& expected) {
    if (!atEnd()) {
      const size_t start = pos_;
      const std::string_view line = nextLine(expected);
      if (line.find(',') == std::string_view::npos &&
          (!SplitRecord(line, 1, fields_) || fields_.kept[0].find('"') != std::string::npos))
        return std::string(trim(line));
      pos_ = start;
      --current_;
    }
    return field(expected);
  }

  // The text not yet read, and going on after `lines` lines of it that end at `offset`
  // (read by other means).
  std::string_view rest() const { return text_.substr(pos_); }
  void skip(size_t offset, size_t lines) {
    pos_ += offset;
    current_ += static_cast<int>(lines);
  }
  [[noreturn]] void failAt(size_t linesAhead, const std::string& expected) const {
    throw RegressionFileError(file_, current_ + static_cast<int>(linesAhead), expected);
  }

  double number(const std::string& text, const std::string& expected) const {
    double result = 0;
    if (!parseNumber(text, result)) fail(expected);
    return result;
  }
  int32_t count(const std::string& text, int32_t least, const std::string& expected) const {
    const double value = number(text, expected);
    if (value != std::floor(value) || value < least || value > 2147483647.0) fail(expected);
    return static_cast<int32_t>(value);
  }
  bool boolean(const std::string& text, const std::string& expected) const {
    if (text == "#TRUE#") return true;
    if (text == "#FALSE#") return false;
    fail(expected);
  }
  FitStatistics statistics() {
    const std::string what =
        "the five statistics: correlation coefficient, standard error, sum of squared "
        "residuals, average of given and of estimated values";
    const std::vector<std::string> f = record(5, what);
    return {number(f[0], what), number(f[1], what), number(f[2], what), number(f[3], what),
            number(f[4], what)};
  }

 private:
  bool atEnd() const { return pos_ >= text_.size(); }

  // The next line without its end; `expected` names what is missing when the file ends
  // first.
  std::string_view nextLine(const std::string& expected) {
    ++current_;
    if (atEnd()) fail(expected + " (the file ends before it)");
    const size_t end = std::min(text_.find('\n', pos_), text_.size());
    std::string_view line = text_.substr(pos_, end - pos_);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    pos_ = std::min(end + 1, text_.size());  // a last line may have no end
    return line;
  }

  std::string file_;
  std::string_view text_;
  RecordFields fields_;
  size_t pos_ = 0;
  int current_ = 0;
};

// The N x (m + 1) value lines after the data file's counts, into X. A large file is read
// in parts at once, split at line ends; each part stops at its first bad line, and the
// first of those in the file is the one reported, as reading from the start would.
void readDataValues(RegressionProblem& p, LineReader& data) {
  const std::string_view text = data.rest();
  const int parts = text.size() >= kPartedBytes ? WorkPartCount() : 1;
  std::vector<size_t> bounds{0};  // each part's first byte, then the end
  for (int k = 1; k < parts; ++k) {
    const size_t middle = std::max(bounds.back(), text.size() / parts * k);
    const size_t lineEnd = text.find('\n', middle);
    bounds.push_back(lineEnd == std::string_view::npos ? text.size() : lineEnd + 1);
  }
  bounds.push_back(text.size());
  std::vector<size_t> lines(static_cast<size_t>(parts));
  RunParts(parts, [&](int k) { lines[k] = countLines(text.substr(bounds[k], bounds[k + 1] - bounds[k])); });

  // Everything must be there before the matrix is made, so a short or absurd file
  // costs no memory.
  const int width = p.m + 1;
  const auto values = static_cast<size_t>(int64_t{p.N} * width);
  std::vector<size_t> firstLine{0};  // of each part, counted from the first value line
  for (int k = 0; k < parts; ++k) firstLine.push_back(firstLine.back() + lines[k]);
  // A reader going from the start meets the first bad line of the parts read.
  const auto failAtFirstBad = [&](const std::vector<ValueRun>& runs) {
    for (int k = 0; k < parts; ++k) {
      if (runs[k].bad == std::string_view::npos) continue;
      const size_t line = firstLine[k] + runs[k].bad;
      const size_t i = line / width + 1, j = line % width + 1;
      data.failAt(line + 1, "the value of " + (static_cast<int>(j) <= p.m ? p.names[j - 1] : p.dependentName) +
                                " in data set " + std::to_string(i));
    }
  };
  std::vector<ValueRun> runs(static_cast<size_t>(parts));
  if (firstLine.back() < values) {
    // A bad line before the end is met before the end is.
    RunParts(parts, [&](int k) { runs[k] = readValueLines(text, bounds[k], lines[k], [](double) {}); });
    failAtFirstBad(runs);
    const auto have = static_cast<int64_t>(firstLine.back());
    data.failAt(static_cast<size_t>(have) + 1, "value " + std::to_string(have % width + 1) + " of data set " +
                                                   std::to_string(have / width + 1) + " (the file ends before it)");
  }
  p.dimensionData();
  std::vector<double*> columns(static_cast<size_t>(width) + 1);
  for (int j = 1; j <= width; ++j) columns[j] = p.X.column(j);
  RunParts(parts, [&](int k) {
    const size_t first = std::min(firstLine[k], values);
    const size_t count = std::min(firstLine[k + 1], values) - first;
    int j = static_cast<int>(first % width) + 1, i = static_cast<int>(first / width) + 1;
    runs[k] = readValueLines(text, bounds[k], count, [&](double value) {
      columns[j][i] = value;
      if (++j > width) j = 1, ++i;
    });
  });
  failAtFirstBad(runs);
  // The lines after the values: the statistics when there is a fit.
  const auto last = std::find_if(firstLine.begin() + 1, firstLine.end(), [&](size_t f) { return f >= values; });
  data.skip(values == 0 ? 0 : runs[static_cast<size_t>(last - firstLine.begin() - 1)].end, values);
}

}  // namespace

std::string ReadFileText(const std::string& path) {
  std::string reason;
  std::optional<std::string> text = ReadWholeFile(path, &reason);
  if (!text) throw RegressionFileError("Cannot read the file " + path + ": " + reason);
  return std::move(*text);
}

RegressionFileError::RegressionFileError(const std::string& file, int line, const std::string& expected)
    : std::runtime_error(file + ", line " + std::to_string(line) + ": expected " + expected + ".") {}

std::string DataFileName(const std::string& problemFile) { return problemFile + ".dat"; }

std::string ProblemText(const RegressionProblem& p) {
  std::string text = std::to_string(p.N) + "," + std::to_string(p.m) + "," +
                     (p.computed ? "#TRUE#" : "#FALSE#") + "," + quoted(p.dependentName) + kLineEnd;
  for (const std::string& name : p.names) text += name + kLineEnd;
  if (p.computed) {
    for (int j = 0; j <= p.m; ++j) appendValueLine(text, p.A[j]);
    text += statisticsRecord(p.statistics) + kLineEnd;
  }
  return text;
}

namespace {

// The data file's text, handed to `write` piece by piece in order: the counts, the value
// lines in blocks of sets formatted on every core at once (each block written as soon as
// those before it are), then the statistics when there is a fit.
void writeDataText(const RegressionProblem& p, const SafeSave::PieceWriter& write) {
  write(std::to_string(p.N) + "," + std::to_string(p.m) + kLineEnd);
  const int width = p.m + 1;
  const int setsPerBlock = std::max(1, (1 << 18) / width);  // a few megabytes of text
  const int blocks = p.N > 0 ? static_cast<int>((int64_t{p.N} + setsPerBlock - 1) / setsPerBlock) : 0;
  std::vector<std::string> texts(static_cast<size_t>(blocks));
  std::vector<bool> made(static_cast<size_t>(blocks));
  std::mutex writing;
  int nextToWrite = 0;
  bool failed = false;
  std::atomic<int> nextToMake{0};
  RunParts(std::min(WorkPartCount(), blocks), [&](int) {
    for (int b = nextToMake++; b < blocks; b = nextToMake++) {
      const int first = b * setsPerBlock + 1, last = std::min(p.N, first + setsPerBlock - 1);
      std::string text;
      // A value line is a dozen characters, up to 24 for 15 digits with an exponent.
      ReserveLarge(text, static_cast<size_t>(last - first + 1) * static_cast<size_t>(width) * 24);
      for (int i = first; i <= last; ++i)
        for (int j = 1; j <= width; ++j)  // sets not yet dimensioned are zeros
          appendValueLine(text, i <= p.X.lastRow() && j <= p.X.lastColumn() ? p.X(j, i) : 0.0);
      const std::lock_guard lock(writing);
      if (failed) return;
      texts[b] = std::move(text);
      made[b] = true;
      try {
        for (; nextToWrite < blocks && made[nextToWrite]; ++nextToWrite) {
          write(texts[nextToWrite]);
          std::string().swap(texts[nextToWrite]);
        }
      } catch (...) {
        failed = true;
        throw;
      }
    }
  });
  if (p.computed) write(statisticsRecord(p.statistics) + kLineEnd);
}

}  // namespace

std::string DataText(const RegressionProblem& p) {
  std::string text;
  writeDataText(p, [&text](std::string_view piece) { text += piece; });
  return text;
}

void WriteRegressionFiles(const std::string& problemFile, const RegressionProblem& problem) {
  // Both files are written in full before either replaces its old version, so a failed
  // write leaves the previous pair as it was, not a new problem file beside old data.
  // The data file is renamed first: a directory or a locked file in its place fails
  // there, while the problem file is still untouched.
  try {
    SafeSave save;
    save.Streamed(DataFileName(problemFile),
                  [&problem](const SafeSave::PieceWriter& write) { writeDataText(problem, write); });
    save.Text(problemFile, ProblemText(problem));
    save.Commit();
  } catch (const SaveError& e) {
    throw RegressionFileError("Cannot write the file " + e.target() + ": " + e.reason());
  }
}

RegressionProblem ReadRegressionFiles(const std::string& problemFile) {
  const std::string problemText = ReadFileText(problemFile);
  // The data file, often of many megabytes, is parsed where it was read.
  const std::string dataFile = DataFileName(problemFile);
  std::string reason;
  const std::optional<FileBytes> data = ReadLargeFile(dataFile, &reason);
  if (!data) throw RegressionFileError("Cannot read the file " + dataFile + ": " + reason);
  return ParseRegressionFiles(problemFile, problemText, data->text());
}

RegressionProblem ParseRegressionFiles(const std::string& problemFile, std::string_view problemText,
                                       std::string_view dataText) {
  RegressionProblem p;
  LineReader problemLines(problemFile, problemText);
  const std::string head =
      "the number of data sets, the number of independent variables (at least 1), #TRUE# or "
      "#FALSE#, and the dependent variable's name in quotes";
  std::vector<std::string> f = problemLines.record(4, head);
  p.N = problemLines.count(f[0], 0, head);
  p.m = problemLines.count(f[1], 1, head);
  p.computed = problemLines.boolean(f[2], head);
  p.dependentName = f[3];
  // Saving quotes the dependent name as it stands: a quote inside could not be read back.
  if (p.dependentName.find('"') != std::string::npos) problemLines.fail(head);

  for (int j = 1; j <= p.m; ++j) {
    const std::string what = "the name of independent variable " + std::to_string(j) + " of " +
                             std::to_string(p.m);
    p.names.push_back(problemLines.name(what));
    // Names are saved one per line without quotes and split at "," by the window.
    if (p.names.back().find(',') != std::string::npos) problemLines.fail(what + ", without \",\"");
  }
  p.A.assign(static_cast<size_t>(p.m) + 2, 0.0);
  if (p.computed) {
    for (int j = 0; j <= p.m; ++j) {
      const std::string what = "the coefficient A" + std::to_string(j);
      p.A[j] = problemLines.number(problemLines.field(what), what);
    }
    p.statistics = problemLines.statistics();
  }

  const std::string dataFile = DataFileName(problemFile);
  LineReader data(dataFile, dataText);
  const std::string counts = "the number of data sets and of independent variables, " +
                             std::to_string(p.N) + "," + std::to_string(p.m) +
                             " as in the problem file";
  f = data.record(2, counts);
  if (data.count(f[0], 0, counts) != p.N || data.count(f[1], 1, counts) != p.m) data.fail(counts);

  if (DataMatrix::cellCount(p.m + 1, p.N) > kMaxDataCells)
    throw RegressionFileError(dataFile + ": " + std::to_string(p.N) + " data sets of " +
                              std::to_string(p.m + 1) + " values are more than fit in memory");
  readDataValues(p, data);
  if (p.computed) p.statistics = data.statistics();
  return p;
}

}  // namespace orvane
