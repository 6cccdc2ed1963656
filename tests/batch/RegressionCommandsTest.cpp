// eval, fit and report through the executable: the window texts they print, the CSV
// reader's handling of real-world and hostile files, the file pair written by --save,
// and the exit status of a fit that fails.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <QDir>
#include <QTemporaryDir>
#include <cmath>
#include <filesystem>

#include "batch/BatchSupport.h"
#include "platform/NumberText.h"
#include "platform/RecordingPrinterPage.h"
#include "regression/FitSummary.h"
#include "regression/RegressionReport.h"
#include "regression/RegressionTestSupport.h"
#include "regression/Solver.h"
#include "regression/StatisticsReport.h"

namespace orvane::testing {
namespace {

// What a command line prints, whole, and its exit status: eval's values and the engine's
// errors, shown once; usage errors that say what is wrong; help for every command.
TEST(BatchCommandLine, EvalValuesEngineErrorsUsageErrorsAndHelp) {
  const struct {
    std::vector<std::string> args;
    int status;
    std::string out, err;
  } cases[] = {
      {{"eval", "--y", "2", "--u", "3", "--v", "4", "y*100+u*10+v"}, 0, "234\n", ""},
      {{"eval", "1", "+", "2"}, 0, "3\n", ""},
      {{"eval", "--const", "a=1", "--const", "a=2", "a"}, 0, "2\n", ""},
      {{"eval", "--const", "c=pi/2", "c=halfpi"}, 0, "-1\n", ""},
      // Domain errors come back through the math object's error field.
      {{"eval", "Tanh(800)"}, 1, "", "error 6: Overflow\n"},
      // Shown once, not once by the engine's event and again by the command.
      {{"eval", "foo+1"}, 1, "", "error 500: Variable is undefined: 'foo'\n"},
      {{"eval", "--const", "2a=1", "1"}, 1, "",
       "orvane-batch eval: --const: \"2a=1\" is not NAME=EXPR with a name of a letter followed by letters and "
       "digits\n"},
      {{"eval", "--x", "abc", "x"}, 1, "", "orvane-batch eval: --x: not a number: \"abc\"\n"},
      {{"eval", "--x"}, 1, "", "orvane-batch eval: --x needs 1 value\n"},
      {{"eval"}, 1, "", "orvane-batch eval: missing EXPR\n"},
      {{"frobnicate"}, 1, "", "orvane-batch: unknown command \"frobnicate\" (orvane-batch --help lists them)\n"},
      {{"fit", "--bogus", "x.csv"}, 1, "", "orvane-batch fit: unknown option --bogus\n"},
      {{"study", "x", "--error", "1", "--error", "2", "roots"}, 1, "",
       "orvane-batch study: --error is given more than once\n"},
  };
  for (const auto& c : cases) {
    const BatchRun run = runBatch(c.args);
    SCOPED_TRACE(c.args.back());
    EXPECT_EQ(run.status, c.status);
    EXPECT_EQ(run.out, c.out);
    EXPECT_EQ(run.err, c.err);
  }
  for (const std::string command : {"eval", "fit", "report", "study", "plot2d", "stereo"}) {
    const BatchRun run = runBatch({command, "--help"});
    EXPECT_EQ(run.status, 0) << command;
    EXPECT_EQ(run.out.rfind("Usage: orvane-batch " + command, 0), 0u) << command;
    EXPECT_EQ(run.err, "");
  }
  const BatchRun top = runBatch({"--help"}), none = runBatch({});
  EXPECT_EQ(top.status, 0);
  EXPECT_NE(top.out.find("stereo"), std::string::npos);
  EXPECT_TRUE(none.status == 1 && none.out.empty());
  EXPECT_EQ(none.err, top.out);  // no command: the same help, as an error
}

const char* const kLine = "y,x\n3.5,1\n4.5,2\n7.5,3\n8,4\n";

class BatchFiles : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return dir.filePath(QString::fromStdString(name)).toStdString(); }
  std::string csv(const std::string& name, const std::string& bytes) const {
    writeFile(path(name), bytes);
    return path(name);
  }
  // Four sets near a line: lineFit() below.
  std::string line() const { return csv("line.csv", kLine); }
  // A header the window would not take, separated by ";".
  std::string stack() const {
    return csv("stack.csv", "stack.loss;\"Acid Conc.\";y_1\n42;89;80\n37;86;80\n37;72;75\n28;79;62\n");
  }
  QTemporaryDir dir;
};

// That table fitted by the window's routines.
RegressionProblem lineFit() {
  RegressionProblem p = ParseCsvProblem("line.csv", kLine);
  Compute(p);
  return p;
}

TEST_F(BatchFiles, CsvWithQuotedNamesBlankLinesAndCrLfGivesTheWindowsListing) {
  const std::string messy =
      csv("messy.txt", "\xEF\xBB\xBF\"y\" , \"x\"\r\n\r\n 3.5 ,1\r\n   \r\n4.5,\"2\"\r\n7.5,3\r\n8,4\r\n\r\n");
  for (const std::string& file : {line(), messy}) {
    const BatchRun run = runBatch({"fit", file});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.outLines(), ResultsListing(lineFit())) << file;
  }
}

// A refusal exits with 1, prints nothing and says why: a bad table names the file and
// the line; names the window would not take are refused with the names it offers; what
// is no regular file is refused at once by every reader (a pipe without a writer must
// not hold it, nor /dev/zero fill the memory), as is a pair without its data file.
TEST_F(BatchFiles, RefusalsSayWhyAndPrintNothing) {
  std::vector<std::pair<std::vector<std::string>, std::string>> rows;
  const auto badTable = [&](const std::string& bytes, const std::string& expected) {  // after "<file>, "
    const std::string file = csv("bad" + std::to_string(rows.size()) + ".csv", bytes);
    rows.push_back({{"fit", file}, file + ", " + expected});
  };
  badTable("y,x\r\n1,2\r\n\r\n2,abc\r\n3,4\r\n", "line 4: expected a number in column 2 (x), not \"abc\".\n");
  badTable("", "line 1: expected a header line naming the columns.\n");
  badTable("y\n1\n2\n3\n", "line 1: expected a header naming the dependent variable and at least one "
                          "independent variable, separated by \",\", \";\" or tabs.\n");
  badTable("y;x\n1;2\n2;3,5\n3;4\n", "line 3: expected a number in column 2 (x), not \"3,5\".\n");
  badTable("y\tx\n1\t2\n2\t3\t4\n3\t4\n", "line 3: expected 2 numbers separated by tabs, found 3 fields.\n");
  badTable("y,\"x\n1,2\n", "line 1: expected a closing quote.\n");
  badTable("y,x\n1,nan\n2,3\n3,4\n", "line 2: expected a number in column 2 (x), not \"nan\".\n");
  const std::string stack = this->stack();
  const std::string dependent = csv("dep.csv", "y,x1,x2\n1,1,1\n2,2,2\n3,3,3\n4,4,4\n");
  const std::string pipe = path("pipe"), folder = dir.path().toStdString(), none = path("none.csv");
  const std::string pairHead = "3,1,#FALSE#,\"y\"\r\nx\r\n";
  const std::string lonely = csv("lonely.txt", pairHead), piped = csv("piped.txt", pairHead);
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0644), 0);
  ASSERT_EQ(::mkfifo((piped + ".dat").c_str(), 0644), 0);
  rows.insert(rows.end(), {
      {{"fit", none}, "Cannot read the file " + none + ": No such file or directory\n"},
      {{"fit", stack}, stack + ": the column names \"stack.loss\", \"Acid Conc.\", \"y_1\" are not a letter followed "
                               "by letters and digits, each a name of its own; --rename takes stackloss, AcidConc, "
                               "y1 instead\n"},
      {{"fit", "--json", dependent}, "YIELDS LINEARLY DEPENDENT SYSTEM\n"},
      {{"fit", "--stats", "--json", line()}, "orvane-batch fit: give --stats or --json, not both\n"},
      {{"report", line()}, "orvane-batch report: give --pdf OUT.pdf or --text\n"},
      {{"report", line(), "--pdf", path("no/r.pdf")},
       "Cannot write \"" + path("no/r.pdf") + "\": No such file or directory\n"},
      {{"fit", pipe}, "Cannot read the file " + pipe + ": not a regular file\n"},
      {{"fit", "--csv", "/dev/zero"}, "Cannot read the file /dev/zero: not a regular file\n"},
      {{"report", "--text", "/dev/zero"}, "Cannot read the file /dev/zero: not a regular file\n"},
      {{"fit", lonely}, "Cannot read the file " + lonely + ".dat: No such file or directory\n"},
      {{"fit", piped}, "Cannot read the file " + piped + ".dat: not a regular file\n"},
      {{"report", "--text", folder}, "Cannot read the file " + folder + ": Is a directory\n"},
      {{"plot2d", "--data", pipe, "--out", path("p.png")}, "Cannot read the file " + pipe + ": not a regular file\n"},
      {{"stereo", "--import", pipe, "--out", path("s")}, "Cannot open \"" + pipe + "\": not a regular file.\n"},
  });
  for (const auto& [args, err] : rows) {
    SCOPED_TRACE(args.front() + " " + args[1]);
    const BatchRun run = runBatch(args);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, err);
  }
}

// Squares of 1e300 overflow: the window lists what its error trap left (a residual sum
// of 0 among it); the tool lists it too, but fails and says why, and saves nothing.
TEST_F(BatchFiles, OverflowingFitsExitWithTheReason) {
  const std::string huge = csv("huge.csv", "y,x\n1e300,1\n-1e300,2\n1e300,3\n-1e300,4\n");
  const std::string why =
      "The fit's sums overflowed: the values are too large to square and add, so the results listed are not those "
      "of the data.\n";
  const BatchRun fit = runBatch({"fit", huge, "--save", path("huge.txt")});
  EXPECT_EQ(fit.status, 1);
  EXPECT_EQ(fit.outLines().size(), 9u);  // the listing all the same
  EXPECT_EQ(fit.err, why);
  EXPECT_FALSE(std::filesystem::exists(path("huge.txt")));
  const BatchRun report = runBatch({"report", huge, "--pdf", path("huge.pdf")});
  EXPECT_EQ(report.status, 1);
  EXPECT_EQ(report.err, why);
  EXPECT_FALSE(std::filesystem::exists(path("huge.pdf")));
}

// --stats adds the statistics after the listing, --json gives them instead as one object.
TEST_F(BatchFiles, StatisticsBesideOrInsteadOfTheListing) {
  const RegressionProblem p = lineFit();
  const FitSummary summary = SummarizeFit(p);
  std::vector<std::string> expected = ResultsListing(p);
  expected.push_back("");
  for (const std::string& line : StatisticsText(summary, p.names, false)) expected.push_back(line);
  const BatchRun stats = runBatch({"fit", "--stats", line()}), json = runBatch({"fit", "--json", line()});
  EXPECT_EQ(stats.status, 0);
  EXPECT_EQ(stats.err, "");
  EXPECT_EQ(stats.outLines(), expected);
  EXPECT_EQ(json.status, 0);
  EXPECT_EQ(json.out, StatisticsJson(summary, p) + "\n");
}

// --save writes the pair the regression window's Open reads, with the header's names as
// --rename corrects them (the window's offer, whatever the separator).
TEST_F(BatchFiles, SavedPairOpensWithTheSameListing) {
  const std::string source = stack(), rule = path("saved.txt");
  const BatchRun fit = runBatch({"fit", "--rename", source, "--save", rule});
  ASSERT_EQ(fit.status, 0) << fit.err;
  const RegressionProblem opened = ReadRegressionFiles(rule);
  EXPECT_EQ(opened.dependentName, "stackloss");
  EXPECT_EQ(opened.names, (std::vector<std::string>{"AcidConc", "y1"}));
  EXPECT_EQ(ResultsListing(opened), fit.outLines());

  // A save that cannot be written says so and leaves nothing behind.
  const BatchRun unwritable = runBatch({"fit", "--rename", source, "--save", path("no/such/dir/x.txt")});
  EXPECT_EQ(unwritable.status, 1);
  EXPECT_NE(unwritable.err.find("x.txt"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(path("no")));
}

// The printed report as text (its lines: RegressionReportTest), or a PDF written whole
// or not at all.
TEST_F(BatchFiles, ReportAsTextOrAWholePdf) {
  const std::string file = line();
  const BatchRun run = runBatch({"report", file, "--text"});
  EXPECT_EQ(run.status, 0) << run.err;
  RecordingPrinterPage page;
  PrintRegressionReport(page, lineFit(), 4);
  EXPECT_EQ(run.outLines(), page.texts());

  const std::string pdf = path("report.pdf");
  ASSERT_EQ(runBatch({"report", file, "--pdf", pdf}).status, 0);
  EXPECT_EQ(readText(pdf).substr(0, 5), "%PDF-");
  EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), (QStringList{"line.csv", "report.pdf"}));  // no temporary left
}

// Without --save a table is read pass by pass instead of held: what fit prints must be
// the held fit's to the byte, on NIST's linear sets (1 to 10 variables) and on a table of
// megabytes (read in halves at once) with a byte-order mark, blank lines, CR LF and quoted
// fields, and with a bad field late in it. Ill-conditioned data warn on standard error and
// still succeed.
TEST(BatchCsv, AStreamedFitPrintsWhatTheHeldFitPrints) {
  QTemporaryDir dir;
  std::vector<std::string> tables;
  for (const char* name : {"Norris", "Pontius", "Longley", "Filip", "Wampler4"})
    tables.push_back(std::string(ORVANE_BATCH_DATA) + "/../../regression/data/" + name + ".csv");
  std::string text = "\xEF\xBB\xBFy,a,b,c\r\n\r\n";
  for (int i = 1; i <= 40000; ++i) {
    const double a = std::sin(i) * 100, b = std::cos(i * 0.7), c = i * 1e-3;
    text += formatGeneral(1 + 2 * a - 3 * b + 0.5 * c + std::sin(i * 1.3)) + (i % 997 ? "," : ",\"") +
            formatGeneral(a) + (i % 997 ? "," : "\" ,") + formatGeneral(b) + "," + formatGeneral(c) +
            (i % 3 ? "\r\n" : "\n");
  }
  tables.push_back(dir.filePath("many.csv").toStdString());
  writeFile(tables.back(), text);
  tables.push_back(dir.filePath("bad.csv").toStdString());
  writeFile(tables.back(), text.insert(text.size() * 3 / 4, "x"));
  for (const std::string& table : tables) {
    for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--json"}}) {
      std::vector<std::string> streamed = {"fit"}, held = {"fit", "--save", dir.filePath("held").toStdString()};
      for (auto* args : {&streamed, &held}) {
        args->insert(args->end(), options.begin(), options.end());
        args->push_back(table);
      }
      const BatchRun a = runBatch(streamed), b = runBatch(held);
      SCOPED_TRACE(table);
      EXPECT_EQ(a.status, b.status);
      EXPECT_EQ(a.out, b.out);
      EXPECT_EQ(a.err, b.err);
      EXPECT_EQ(b.status, table.ends_with("bad.csv") ? 1 : 0) << b.err;
      EXPECT_EQ(b.err.starts_with("Warning: only about 0 digits"), table.ends_with("Filip.csv")) << b.err;
    }
  }
}

}  // namespace
}  // namespace orvane::testing
