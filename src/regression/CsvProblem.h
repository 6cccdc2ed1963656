#pragma once
// A regression problem from a table of text: a header line naming the columns, the
// first column the dependent variable and the others the independent variables in
// order, then one data set per line. The separator is ",", ";" or a tab, whichever the
// header uses most (outside quotes); numbers take "." as the decimal point. Blank lines
// are skipped, CR LF and LF line ends are both read, fields may be quoted ("x 1", with
// "" for a quote inside).
//
// The reader has two parts, the header and the records, so that a caller reading line
// by line uses the same rules as the whole-file reader.
//
// The header's names are taken as they stand; a name the problem cannot take (not a
// letter followed by letters and digits, or the same as another name in any case) is
// found by NameCorrections, which offers a name in its place.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/RecordLine.h"
#include "regression/DataSets.h"
#include "regression/RegressionProblem.h"

namespace orvane {

struct CsvHeader {
  char separator = ',';
  std::vector<std::string> names;  // the dependent variable first
};

// The header line (after any byte-order mark): the separator detected and the names
// split. Throws RegressionFileError naming the file and the line for fewer than two
// columns, more than a fit can solve, or a malformed line.
CsvHeader ReadCsvHeader(std::string_view line, const std::string& fileName, int lineNumber);

// One data set: as many numbers as the header has names, in the file's order, into
// `values` (its previous contents replaced). `fields` is scratch space kept between
// calls. Throws RegressionFileError for a line of another length or a field that is not
// a finite number.
void ReadCsvRecord(std::string_view line, const CsvHeader& header, std::vector<double>& values, RecordFields& fields,
                   const std::string& fileName, int lineNumber);

// The table read line by line: the header first, then the data sets, each through
// ReadCsvHeader and ReadCsvRecord (a line of plain numbers is read in one step, with the
// same result). Every line given counts for the line numbers of messages, blank ones too.
class CsvRecords {
 public:
  explicit CsvRecords(std::string fileName) : fileName_(std::move(fileName)) {}

  // Reads the next line (without its line end). True when it held a data set, whose
  // values are then in set(): the dependent value first, as in the file. Throws
  // RegressionFileError for a bad header or data set.
  bool read(std::string_view line);
  const std::vector<double>& set() const { return set_; }

  const CsvHeader& header() const { return header_; }
  size_t columns() const { return header_.names.size(); }  // 0 until the header is read

  // Refuses what the whole table lacks, once its last line has been read: a header, or
  // 3 data sets (`sets` of them were read).
  void finish(int64_t sets) const;
  // Counts `lines` more lines, read by a copy of this reader elsewhere.
  void skipLines(int lines) { lineNumber_ += lines; }
  int lineNumber() const { return lineNumber_; }
  [[noreturn]] void refuse(const std::string& expected) const;

 private:
  bool readPlainSet(std::string_view line);

  std::string fileName_;
  int lineNumber_ = 0;
  CsvHeader header_;
  std::vector<double> set_;
  RecordFields fields_;
};

// Reads the whole text into a new problem (X dimensioned, nothing computed, names as
// in the header). Throws RegressionFileError naming the file, the line and what was
// expected there; nothing is half-read. `fileName` is used in messages.
RegressionProblem ParseCsvProblem(const std::string& fileName, const std::string& text);

// The same from a file.
RegressionProblem ReadCsvProblem(const std::string& path);

// A CSV file's data sets for a fit that reads them again for every pass, so that the
// memory it takes does not grow with the number of sets. Opening reads the file once:
// the header, every data set checked as ParseCsvProblem checks it, and their count.
class CsvFileSets : public DataSets {
 public:
  // `betweenPieces` is called after each piece of the file read (a few megabytes), where
  // a long fit may be stopped by throwing.
  explicit CsvFileSets(std::string path, std::function<void()> betweenPieces = [] {});

  int32_t m() const override { return static_cast<int32_t>(columnNames_.size()) - 1; }
  int32_t N() const override { return n_; }
  void forEachRun(int size, const std::function<void(const SetRun&)>& use) const override;

  // The header's names, the dependent variable first, as they stand.
  const std::vector<std::string>& columnNames() const { return columnNames_; }

 private:
  // Reads the whole file through `records`, handing each data set to `use`; the count.
  int64_t readSets(CsvRecords& records, const std::function<void(const std::vector<double>&)>& use) const;
  // The same for the whole lines of one piece of the file.
  int64_t readLines(std::string_view lines, CsvRecords& records,
                    const std::function<void(const std::vector<double>&)>& use) const;

  std::string path_;
  std::function<void()> betweenPieces_;
  std::vector<std::string> columnNames_;
  int32_t n_ = 0;
};

// Whether FILE is read as a table rather than as a regression file pair: never when its
// data file is beside it; otherwise when its name ends in .csv or its first field is not
// a number (the first file of a pair starts with the number of data sets).
bool ReadsAsCsv(const std::string& path);

// A name of the header the problem cannot take, and the one offered in its place.
struct NameCorrection {
  size_t column = 0;  // 0 the dependent variable, j the independent variable j
  std::string given;
  std::string offered;
};

// The rule a header name must meet, among the other names (`names`, dependent first).
bool IsAcceptedColumnName(const std::vector<std::string>& names, size_t column);

// Every name that breaks the rule, each with an offered name: its ASCII letters and
// digits, led by "y" (dependent) or "x" when it would start with a digit or be empty,
// and numbered on when it would equal another name.
std::vector<NameCorrection> NameCorrections(const std::vector<std::string>& names);

// The problem's names (dependent first), for corrections to apply to.
std::vector<std::string> ColumnNames(const RegressionProblem& problem);
// Gives the problem the names (dependent first, m + 1 of them).
void RenameColumns(RegressionProblem& problem, std::vector<std::string> names);

// The problem's sets as a table with a header, "," separated, one set a line (LF ends),
// each number in the general form; names quoted when they hold a separator, a quote or
// blanks at an end.
std::string CsvText(const RegressionProblem& problem);

}  // namespace orvane
