#pragma once
// A regression problem from a comma-separated table: a header line naming the columns,
// the first column the dependent variable and the others the independent variables in
// order, then one data set per line. Blank lines are skipped, CR LF and LF line ends
// are both read, fields may be quoted ("x 1", with "" for a quote inside).

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/RecordLine.h"
#include "regression/DataSets.h"
#include "regression/RegressionProblem.h"

namespace orvane {

// Reads the file into a new problem (X dimensioned, nothing computed). Throws
// RegressionFileError naming the file, the line and what was expected there for a
// missing file, a bad header, a row of the wrong length or a field that is not a
// number; nothing is half-read.
RegressionProblem ReadCsvProblem(const std::string& path);

// The same from the file's text; `fileName` is used in messages.
RegressionProblem ParseCsvProblem(const std::string& fileName, const std::string& text);

// The table read record by record: the header first, then the data sets. Every line
// given counts for the line numbers of messages, blank ones too.
class CsvRecords {
 public:
  explicit CsvRecords(std::string fileName) : fileName_(std::move(fileName)) {}

  // Reads the next line (without its line end). True when it held a data set, whose
  // values are then in set(): the dependent value first, as in the file. Throws
  // RegressionFileError for a bad header or data set.
  bool read(std::string_view line);
  const std::vector<double>& set() const { return set_; }

  size_t columns() const { return columns_; }
  const std::string& dependentName() const { return dependentName_; }
  const std::vector<std::string>& names() const { return names_; }

  // Refuses what the whole table lacks, once its last line has been read: a header, or
  // 3 data sets (`sets` of them were read).
  void finish(int64_t sets) const;
  // Counts `lines` more lines, read by a copy of this reader elsewhere.
  void skipLines(int lines) { lineNumber_ += lines; }
  int lineNumber() const { return lineNumber_; }
  [[noreturn]] void refuse(const std::string& expected) const;

 private:
  void readHeader(std::string_view line);
  bool readPlainSet(std::string_view line);

  std::string fileName_;
  int lineNumber_ = 0;
  size_t columns_ = 0;  // 0 until the header has been read
  std::string dependentName_;
  std::vector<std::string> names_;
  std::vector<double> set_;
  RecordFields fields_;
};

// A CSV file's data sets for a fit that reads them again for every pass, so that the
// memory it takes does not grow with the number of sets. Opening reads the file once:
// the header, every data set checked as ParseCsvProblem checks it, and their count.
class CsvFileSets : public DataSets {
 public:
  // `betweenPieces` is called after each piece of the file read (a few megabytes), where
  // a long fit may be stopped by throwing.
  explicit CsvFileSets(std::string path, std::function<void()> betweenPieces = [] {});

  int32_t m() const override { return static_cast<int32_t>(names_.size()); }
  int32_t N() const override { return n_; }
  void forEachRun(int size, const std::function<void(const SetRun&)>& use) const override;

  const std::string& dependentName() const { return dependentName_; }
  const std::vector<std::string>& names() const { return names_; }

 private:
  // Reads the whole file through `records`, handing each data set to `use`; the count.
  int64_t readSets(CsvRecords& records, const std::function<void(const std::vector<double>&)>& use) const;
  // The same for the whole lines of one piece of the file.
  int64_t readLines(std::string_view lines, CsvRecords& records,
                    const std::function<void(const std::vector<double>&)>& use) const;

  std::string path_;
  std::function<void()> betweenPieces_;
  std::string dependentName_;
  std::vector<std::string> names_;
  int32_t n_ = 0;
};

}  // namespace orvane
