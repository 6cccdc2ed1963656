#include "regression/RegressionFile.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"

namespace orvane {
namespace {

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

// A value line holding a number: a blank where a minus sign would stand.
std::string valueLine(double value) { return (value < 0 ? "" : " ") + formatGeneral(value); }

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

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
    start = end + 1;
  }
  return lines;
}

// Reads one file line by line, each line as the fields of one record; every failure
// names the file, the line and what the line should have held.
class LineReader {
 public:
  LineReader(std::string file, const std::string& text) : file_(std::move(file)), lines_(splitLines(text)) {}

  [[noreturn]] void fail(const std::string& expected) const {
    throw RegressionFileError(file_, current_, expected);
  }

  // The fields of the next line; exactly `count` of them.
  std::vector<std::string> record(size_t count, const std::string& expected) {
    if (next_ >= lines_.size()) {
      current_ = static_cast<int>(lines_.size()) + 1;
      fail(expected + " (the file ends before it)");
    }
    current_ = static_cast<int>(next_) + 1;
    std::vector<std::string> fields;
    if (!split(lines_[next_++], fields, count) || fields.size() != count) fail(expected);
    return fields;
  }
  std::string field(const std::string& expected) { return record(1, expected)[0]; }
  // A name line: read as a field, but a name the program itself wrote with a stray
  // quote in it ("x or "a"b) is taken as it stands rather than refused.
  std::string name(const std::string& expected) {
    if (next_ < lines_.size()) {
      const std::string& line = lines_[next_];
      std::vector<std::string> fields;
      if (line.find(',') == std::string::npos && (!split(line, fields, 1) || fields.size() != 1)) {
        current_ = static_cast<int>(++next_);
        return std::string(trim(line));
      }
    }
    return field(expected);
  }

  // How many lines are left to read.
  size_t remaining() const { return lines_.size() - next_; }
  int lineNumber() const { return current_; }

  double number(const std::string& text, const std::string& expected) const {
    try {
      return parseStrict(text);
    } catch (const RuntimeError&) {
      fail(expected);
    }
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
  // Fields end at a "," or at the line end; blanks around them are ignored; a quoted
  // text is taken without its quotes. False past `most` fields: a line of commas must
  // not become millions of strings.
  static bool split(std::string_view line, std::vector<std::string>& fields, size_t most) {
    size_t pos = 0;
    while (true) {
      while (pos < line.size() && isBlank(line[pos])) ++pos;
      if (pos < line.size() && line[pos] == '"') {
        const size_t close = line.find('"', pos + 1);
        if (close == std::string_view::npos) return false;
        fields.emplace_back(line.substr(pos + 1, close - pos - 1));
        pos = close + 1;
        while (pos < line.size() && isBlank(line[pos])) ++pos;
        if (pos < line.size() && line[pos] != ',') return false;
      } else {
        const size_t comma = std::min(line.find(',', pos), line.size());
        fields.emplace_back(trim(line.substr(pos, comma - pos)));
        pos = comma;
      }
      if (pos >= line.size()) return true;
      if (fields.size() >= most) return false;
      ++pos;  // past the ","
    }
  }

  std::string file_;
  std::vector<std::string> lines_;
  size_t next_ = 0;
  int current_ = 0;
};

std::string readWholeFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw RegressionFileError("Cannot open the file " + path);
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) throw RegressionFileError("Cannot read the file " + path);
  return text.str();
}

// Writes the lines to a temporary file beside the target; returns its name.
std::string writeTemporary(const std::string& target, const std::vector<std::string>& lines) {
  namespace fs = std::filesystem;
  const std::string temporary = target + ".orvane-save~";
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    if (!out) throw RegressionFileError("Cannot write the file " + target);
    for (const std::string& line : lines) out << line << "\r\n";
    out.flush();
    if (!out) {
      out.close();
      std::error_code ignored;
      fs::remove(temporary, ignored);
      throw RegressionFileError("Cannot write the file " + target);
    }
  }
  return temporary;
}

void replaceWith(const std::string& temporary, const std::string& target) {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::rename(temporary, target, error);
  if (error) {
    std::error_code ignored;
    fs::remove(temporary, ignored);
    throw RegressionFileError("Cannot write the file " + target + ": " + error.message());
  }
}

}  // namespace

RegressionFileError::RegressionFileError(const std::string& file, int line, const std::string& expected)
    : std::runtime_error(file + ", line " + std::to_string(line) + ": expected " + expected + ".") {}

std::string DataFileName(const std::string& specificationFile) { return specificationFile + ".dat"; }

std::vector<std::string> SpecificationLines(const RegressionProblem& p) {
  std::vector<std::string> lines;
  lines.push_back(std::to_string(p.N) + "," + std::to_string(p.m) + "," +
                  (p.computed ? "#TRUE#" : "#FALSE#") + "," + quoted(p.dependentName));
  for (const std::string& name : p.names) lines.push_back(name);
  if (p.computed) {
    for (int j = 0; j <= p.m; ++j) lines.push_back(valueLine(p.A[j]));
    lines.push_back(statisticsRecord(p.statistics));
  }
  return lines;
}

std::vector<std::string> DataLines(const RegressionProblem& p) {
  std::vector<std::string> lines;
  lines.reserve(static_cast<size_t>(p.N) * (p.m + 1) + 2);
  lines.push_back(std::to_string(p.N) + "," + std::to_string(p.m));
  for (int i = 1; i <= p.N; ++i)
    for (int j = 1; j <= p.m + 1; ++j)  // sets not yet dimensioned are zeros
      lines.push_back(valueLine(i <= p.X.lastRow() && j <= p.X.lastColumn() ? p.X(j, i) : 0.0));
  if (p.computed) lines.push_back(statisticsRecord(p.statistics));
  return lines;
}

void WriteRegressionFiles(const std::string& specificationFile, const RegressionProblem& problem) {
  namespace fs = std::filesystem;
  // Both files are written in full before either replaces its old version, so a failed
  // write leaves the previous pair as it was, not a new specification beside old data.
  const std::string dataFile = DataFileName(specificationFile);
  const std::string specificationTemporary = writeTemporary(specificationFile, SpecificationLines(problem));
  std::string dataTemporary;
  try {
    dataTemporary = writeTemporary(dataFile, DataLines(problem));
    // The data file goes first: a directory or a locked file in its place fails here,
    // while the specification file is still untouched.
    replaceWith(dataTemporary, dataFile);
  } catch (...) {
    std::error_code ignored;
    fs::remove(specificationTemporary, ignored);
    throw;
  }
  replaceWith(specificationTemporary, specificationFile);
}

RegressionProblem ReadRegressionFiles(const std::string& specificationFile) {
  const std::string specification = readWholeFile(specificationFile);
  const std::string data = readWholeFile(DataFileName(specificationFile));
  return ParseRegressionFiles(specificationFile, specification, data);
}

RegressionProblem ParseRegressionFiles(const std::string& specificationFile,
                                       const std::string& specificationText,
                                       const std::string& dataText) {
  RegressionProblem p;
  LineReader spec(specificationFile, specificationText);
  const std::string head =
      "the number of data sets, the number of independent variables (at least 1), #TRUE# or "
      "#FALSE#, and the dependent variable's name in quotes";
  std::vector<std::string> f = spec.record(4, head);
  p.N = spec.count(f[0], 0, head);
  p.m = spec.count(f[1], 1, head);
  p.computed = spec.boolean(f[2], head);
  p.dependentName = f[3];
  // Saving quotes the dependent name as it stands: a quote inside could not be read back.
  if (p.dependentName.find('"') != std::string::npos) spec.fail(head);

  for (int j = 1; j <= p.m; ++j) {
    const std::string what = "the name of independent variable " + std::to_string(j) + " of " +
                             std::to_string(p.m);
    p.names.push_back(spec.name(what));
    // Names are saved one per line without quotes and split at "," by the window.
    if (p.names.back().find(',') != std::string::npos) spec.fail(what + ", without \",\"");
  }
  p.A.assign(static_cast<size_t>(p.m) + 2, 0.0);
  if (p.computed) {
    for (int j = 0; j <= p.m; ++j) {
      const std::string what = "the coefficient A" + std::to_string(j);
      p.A[j] = spec.number(spec.field(what), what);
    }
    p.statistics = spec.statistics();
  }

  const std::string dataFile = DataFileName(specificationFile);
  LineReader data(dataFile, dataText);
  const std::string counts = "the number of data sets and of independent variables, " +
                             std::to_string(p.N) + "," + std::to_string(p.m) +
                             " as in the specification file";
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
      const std::string what = (j <= p.m ? "the value of " + p.names[j - 1] : "the value of " + p.dependentName) +
                               " in data set " + std::to_string(i);
      p.X(j, i) = data.number(data.field(what), what);
    }
  }
  if (p.computed) p.statistics = data.statistics();
  return p;
}

}  // namespace orvane
