#include "regression/RegressionFile.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "platform/LargeBuffer.h"
#include "platform/NumberText.h"
#include "platform/RecordLine.h"
#include "platform/RuntimeError.h"
#include "platform/SafeFile.h"

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

// Reads one file line by line, each line as the fields of one record; every failure
// names the file, the line and what the line should have held. Lines are taken from the
// text as they are reached, so a file of millions of values costs no more than its text.
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

  // A value line: one number. The description is made only when the line is wrong.
  template <typename Describe>
  double value(Describe describe) {
    const std::string_view line = nextLine({}, describe);
    double result = 0;
    if (line.find_first_of("\",") == std::string_view::npos) {  // the usual bare number
      if (!parse(trim(line), result)) fail(describe());
      return result;
    }
    if (!SplitRecord(line, 1, fields_) || fields_.count != 1 || !parse(fields_.kept[0], result)) fail(describe());
    return result;
  }

  // How many lines are left to read.
  size_t remaining() const {
    const std::string_view rest = text_.substr(pos_);
    const auto ends = static_cast<size_t>(std::count(rest.begin(), rest.end(), '\n'));
    return ends + (!rest.empty() && rest.back() != '\n' ? 1 : 0);
  }
  int lineNumber() const { return current_; }

  double number(const std::string& text, const std::string& expected) const {
    double result = 0;
    if (!parse(text, result)) fail(expected);
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

  // The next line without its end; `expected` (or the description) names what is
  // missing when the file ends first.
  std::string_view nextLine(const std::string& expected) {
    return nextLine(expected, [] { return std::string(); });
  }
  template <typename Describe>
  std::string_view nextLine(const std::string& expected, Describe describe) {
    ++current_;
    if (atEnd()) fail((expected.empty() ? describe() : expected) + " (the file ends before it)");
    // Value lines are a dozen characters: a plain scan beats a library call per line.
    size_t end = pos_;
    while (end < text_.size() && text_[end] != '\n') ++end;
    std::string_view line = text_.substr(pos_, end - pos_);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    pos_ = std::min(end + 1, text_.size());  // a last line may have no end
    return line;
  }

  static bool parse(std::string_view text, double& result) {
    try {
      result = parseStrict(text);
      return true;
    } catch (const RuntimeError&) {
      return false;
    }
  }

  std::string file_;
  std::string_view text_;
  RecordFields fields_;
  size_t pos_ = 0;
  int current_ = 0;
};

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

std::string DataText(const RegressionProblem& p) {
  std::string text = std::to_string(p.N) + "," + std::to_string(p.m) + kLineEnd;
  ReserveLarge(text, text.size() + static_cast<size_t>(p.N) * static_cast<size_t>(p.m + 1) * 20);
  for (int i = 1; i <= p.N; ++i)
    for (int j = 1; j <= p.m + 1; ++j)  // sets not yet dimensioned are zeros
      appendValueLine(text, i <= p.X.lastRow() && j <= p.X.lastColumn() ? p.X(j, i) : 0.0);
  if (p.computed) text += statisticsRecord(p.statistics) + kLineEnd;
  return text;
}

void WriteRegressionFiles(const std::string& problemFile, const RegressionProblem& problem) {
  // Both files are written in full before either replaces its old version, so a failed
  // write leaves the previous pair as it was, not a new problem file beside old data.
  // The data file is renamed first: a directory or a locked file in its place fails
  // there, while the problem file is still untouched.
  try {
    SafeSave save;
    save.Text(DataFileName(problemFile), DataText(problem));
    save.Text(problemFile, ProblemText(problem));
    save.Commit();
  } catch (const SaveError& e) {
    throw RegressionFileError("Cannot write the file " + e.target() + ": " + e.reason());
  }
}

RegressionProblem ReadRegressionFiles(const std::string& problemFile) {
  const std::string problemText = ReadFileText(problemFile);
  const std::string data = ReadFileText(DataFileName(problemFile));
  return ParseRegressionFiles(problemFile, problemText, data);
}

RegressionProblem ParseRegressionFiles(const std::string& problemFile,
                                       const std::string& problemText,
                                       const std::string& dataText) {
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

  // Everything must be there before the matrix is made, so a short or absurd file
  // costs no memory.
  const int64_t values = int64_t{p.N} * (p.m + 1);
  if (DataMatrix::cellCount(p.m + 1, p.N) > kMaxDataCells)
    throw RegressionFileError(dataFile + ": " + std::to_string(p.N) + " data sets of " +
                              std::to_string(p.m + 1) + " values are more than fit in memory");
  if (static_cast<int64_t>(data.remaining()) < values) {
    const int64_t have = static_cast<int64_t>(data.remaining());
    throw RegressionFileError(dataFile, static_cast<int>(have + 2),
                              "value " + std::to_string(have % (p.m + 1) + 1) + " of data set " +
                                  std::to_string(have / (p.m + 1) + 1) + " (the file ends before it)");
  }
  p.dimensionData();
  for (int i = 1; i <= p.N; ++i) {
    for (int j = 1; j <= p.m + 1; ++j) {
      p.X(j, i) = data.value([&] {
        return "the value of " + (j <= p.m ? p.names[j - 1] : p.dependentName) + " in data set " +
               std::to_string(i);
      });
    }
  }
  if (p.computed) p.statistics = data.statistics();
  return p;
}

}  // namespace orvane
