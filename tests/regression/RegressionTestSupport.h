#pragma once
// Problems and reference data shared by the regression tests, the GoogleTest ones and
// the windows' Qt tests alike (so nothing here depends on either framework).

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/NumberText.h"
#include "regression/CsvProblem.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionProblem.h"

namespace orvane::testing {

// A problem with m variables named x1..xm (or the first m given names), one row
// {x1..xm, y} per set.
inline RegressionProblem makeProblem(int m, const std::vector<std::vector<double>>& sets,
                                     std::vector<std::string> names = {}, std::string dependent = "y") {
  RegressionProblem p;
  p.m = m;
  p.N = static_cast<int>(sets.size());
  for (int j = static_cast<int>(names.size()) + 1; j <= m; ++j) names.push_back("x" + std::to_string(j));
  names.resize(static_cast<size_t>(m));
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

// A folder of one test's own, removed with what it holds.
struct TempDir {
  std::filesystem::path path = std::filesystem::temp_directory_path() /
                               ("orvane-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
  static inline int counter = 0;
  TempDir() { std::filesystem::create_directories(path); }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  std::string file(const std::string& name) const { return (path / name).string(); }
  long entries() const {
    return std::distance(std::filesystem::directory_iterator(path), std::filesystem::directory_iterator());
  }
};

// A file's bytes; none when it cannot be read.
inline std::string readText(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

// What reading says of the pair `file` of these texts, or of `problemText` as the table
// `file`; nothing when it reads.
inline std::string refusal(const std::string& file, const std::string& problemText, const std::string& dataText,
                           bool table = false) {
  try {
    if (table) ParseCsvProblem(file, problemText);
    else ParseRegressionFiles(file, problemText, dataText);
  } catch (const RegressionFileError& e) {
    return e.what();
  }
  return "";
}

inline std::filesystem::path sourceDir() {
  const char* root = std::getenv("ORVANE_SOURCE_DIR");
  return root ? std::filesystem::path(root) : std::filesystem::path(__FILE__).parent_path().parent_path().parent_path();
}

// A file under tests/regression/data, read whole; a missing one ends the test.
inline std::string readDataText(const std::string& name) {
  const std::filesystem::path path = sourceDir() / "tests/regression/data" / name;
  std::string text = readText(path);
  if (text.empty()) throw std::runtime_error("no test data in " + path.string());
  return text;
}

// A table under tests/regression/data, read as the program reads tables.
inline RegressionProblem readDataCsv(const std::string& name) {
  return ParseCsvProblem(name, readDataText(name + ".csv"));
}

inline QJsonObject readDataJson(const std::string& name) {
  return QJsonDocument::fromJson(QByteArray::fromStdString(readDataText(name))).object();
}

// A certified value, or array of values, of a NIST file: kept as texts, read here.
inline std::vector<double> certified(const QJsonObject& file, const char* key) {
  const QJsonValue value = file.value("certified").toObject().value(key);
  std::vector<double> values;
  for (const QJsonValue& v : value.isArray() ? value.toArray() : QJsonArray{value})
    values.push_back(parseStrict(v.toString().toStdString()));
  return values;
}

}  // namespace orvane::testing
