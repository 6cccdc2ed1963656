#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "regression/RegressionFile.h"
#include "regression/Solver.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;
using testing::column;
using testing::makeProblem;

class TempDir {
 public:
  TempDir() {
    path_ = fs::temp_directory_path() / ("orvane-regfile-" + std::to_string(::getpid()) + "-" +
                                         std::to_string(counter_++));
    fs::remove_all(path_);
    fs::create_directories(path_);
  }
  ~TempDir() {
    std::error_code ignored;
    fs::permissions(path_, fs::perms::owner_all, ignored);
    fs::remove_all(path_, ignored);
  }
  std::string file(const std::string& name) const { return (path_ / name).string(); }
  const fs::path& path() const { return path_; }

 private:
  static inline int counter_ = 0;
  fs::path path_;
};

std::string readText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void writeText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string crlf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

RegressionProblem sample() {
  return makeProblem(2, {{1, 0.5, 3.5}, {2, -1.25, -3.5}, {3, 4, 0}, {4.5, 1e-7, 12}}, {"x", "t"}, "yield");
}

TEST(RegressionFile, LinesBeforeAndAfterComputing) {
  RegressionProblem p = sample();
  EXPECT_EQ(SpecificationText(p), crlf({"4,2,#FALSE#,\"yield\"", "x", "t"}));
  const std::vector<std::string> data = {"4,2",  " 1",   " 0.5", " 3.5", " 2", "-1.25", "-3.5",
                                         " 3",   " 4",   " 0",   " 4.5", " 1E-07", " 12"};
  EXPECT_EQ(DataText(p), crlf(data));

  p.computed = true;
  p.A = {-0.5, 2, 1e20, 7};
  p.statistics = {0.75, 1.5, 4.5, 3, -2.5e-5};
  EXPECT_EQ(SpecificationText(p),
            crlf({"4,2,#TRUE#,\"yield\"", "x", "t", "-0.5", " 2", " 1E+20", "0.75,1.5,4.5,3,-2.5E-05"}));
  std::vector<std::string> computedData = data;
  computedData.push_back("0.75,1.5,4.5,3,-2.5E-05");
  EXPECT_EQ(DataText(p), crlf(computedData));

  // One variable: exactly one name line.
  RegressionProblem one = makeProblem(1, {{1, 2}, {2, 3}, {3, 5}}, {"x"});
  EXPECT_EQ(SpecificationText(one), crlf({"3,1,#FALSE#,\"y\"", "x"}));
  // Saved before the sets exist: zeros, not a read outside the matrix.
  RegressionProblem bare;
  bare.m = 1;
  bare.N = 3;
  bare.names = {"x"};
  bare.dependentName = "y";
  EXPECT_EQ(DataText(bare), crlf({"3,1", " 0", " 0", " 0", " 0", " 0", " 0"}));
}

TEST(RegressionFile, RoundTripThroughDisk) {
  TempDir dir;
  const std::string spec = dir.file("study.txt");
  for (bool computed : {false, true}) {
    RegressionProblem p = sample();
    p.names = {"x", " t"};  // the blank is dropped on reading, as blanks around fields are
    if (computed) {
      ASSERT_EQ(Compute(p), FitOutcome::Computed);
    }
    WriteRegressionFiles(spec, p);
    ASSERT_TRUE(fs::exists(dir.file("study.txt.dat")));
    EXPECT_EQ(readText(spec), SpecificationText(p));
    EXPECT_EQ(readText(spec + ".dat"), DataText(p));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 2)
        << "no temporary file left behind";

    const RegressionProblem back = ReadRegressionFiles(spec);
    EXPECT_EQ(back.N, 4);
    EXPECT_EQ(back.m, 2);
    EXPECT_EQ(back.computed, computed);
    EXPECT_TRUE(back.dataDimensioned);
    EXPECT_EQ(back.dependentName, "yield");
    EXPECT_EQ(back.names, (std::vector<std::string>{"x", "t"}));
    for (int j = 1; j <= 3; ++j) EXPECT_EQ(column(back, j), column(p, j)) << j;
    if (computed) {
      // 15 significant digits survive the text; the listing reads the same.
      for (int j = 0; j <= 2; ++j) EXPECT_NEAR(back.A[j], p.A[j], std::abs(p.A[j]) * 1e-14) << j;
      EXPECT_EQ(ResultsListing(back), ResultsListing(p));
    }
  }
  EXPECT_EQ(DataFileName("study.dat"), "study.dat.dat");
}

TEST(RegressionFile, NamesWithQuotesReadBack) {
  TempDir dir;
  RegressionProblem p = makeProblem(3, {{1, 2, 3, 4}}, {"\"x", "a\"b\"c", "\"q\"r"});
  WriteRegressionFiles(dir.file("q"), p);
  EXPECT_EQ(ReadRegressionFiles(dir.file("q")).names, p.names);
}

// Each bad pair must be refused with a message naming the file and the line.
TEST(RegressionFile, MalformedFilesNameFileAndLine) {
  const std::string goodSpec = crlf({"3,1,#FALSE#,\"y\"", "x"});
  const std::string goodData = crlf({"3,1", " 1", " 2", " 2", " 4", " 3", " 6"});
  const std::string computedSpec = crlf({"3,1,#TRUE#,\"y\"", "x", " 0", " 2", "1,0,0,4,4"});
  struct Case {
    const char* what;
    std::string spec, data;
    std::string file;  // "spec" or "data"
    int line;
  };
  const std::vector<Case> cases = {
      {"empty specification", "", goodData, "spec", 1},
      {"letters for N", crlf({"three,1,#FALSE#,\"y\"", "x"}), goodData, "spec", 1},
      {"negative N", crlf({"-3,1,#FALSE#,\"y\"", "x"}), goodData, "spec", 1},
      {"no variables", crlf({"3,0,#FALSE#,\"y\"", "x"}), goodData, "spec", 1},
      {"negative m", crlf({"3,-2,#FALSE#,\"y\"", "x"}), goodData, "spec", 1},
      {"fractional m", crlf({"3,1.5,#FALSE#,\"y\"", "x"}), goodData, "spec", 1},
      {"flag not a boolean", crlf({"3,1,1,\"y\"", "x"}), goodData, "spec", 1},
      {"field missing", crlf({"3,1,#FALSE#", "x"}), goodData, "spec", 1},
      {"open quote", crlf({"3,1,#FALSE#,\"y", "x"}), goodData, "spec", 1},
      {"ends before the names", crlf({"3,2,#FALSE#,\"y\"", "x"}), goodData, "spec", 3},
      {"huge m, ends early", crlf({"3,2000000000,#FALSE#,\"y\"", "x"}), goodData, "spec", 3},
      {"coefficient not a number", crlf({"3,1,#TRUE#,\"y\"", "x", " 0", "two", "1,0,0,4,4"}), goodData, "spec", 4},
      {"ends before the statistics", crlf({"3,1,#TRUE#,\"y\"", "x", " 0", " 2"}), goodData, "spec", 5},
      {"four statistics", crlf({"3,1,#TRUE#,\"y\"", "x", " 0", " 2", "1,0,0,4"}), goodData, "spec", 5},
      {"empty data file", goodSpec, "", "data", 1},
      {"N differs", goodSpec, crlf({"4,1", " 1", " 2", " 2", " 4", " 3", " 6", " 4", " 8"}), "data", 1},
      {"m differs", goodSpec, crlf({"3,2", " 1", " 2", " 2", " 4", " 3", " 6"}), "data", 1},
      {"text for a value", goodSpec, crlf({"3,1", " 1", " 2", " 2", "four", " 3", " 6"}), "data", 5},
      {"two values on a line", goodSpec, crlf({"3,1", " 1", " 2", " 2", "4,5", " 3", " 6"}), "data", 5},
      {"value out of range", goodSpec, crlf({"3,1", " 1", " 2", " 2", " 1E+999", " 3", " 6"}), "data", 5},
      {"ends early", goodSpec, crlf({"3,1", " 1", " 2", " 2", " 4"}), "data", 6},
      {"ends before its statistics", computedSpec, goodData, "data", 8},
      {"huge N", crlf({"2000000000,1,#FALSE#,\"y\"", "x"}), crlf({"2000000000,1", " 1"}), "data", 3},
      {"binary garbage", std::string("\x7f" "ELF\x02\x01\x01\0\0\xff\xfe,,\"\r\n", 16), goodData, "spec", 1},
      {"binary data file", goodSpec, "3,1\r\n" + std::string("\0\0\x01\xff", 4) + crlf({"", " 2", " 2", " 4", " 3", " 6"}),
       "data", 2},
  };
  for (const Case& c : cases) {
    try {
      ParseRegressionFiles("/tmp/study.txt", c.spec, c.data);
      ADD_FAILURE() << c.what << ": read without complaint";
    } catch (const RegressionFileError& e) {
      const std::string message = e.what();
      const std::string file = c.file == "spec" ? "/tmp/study.txt, " : "/tmp/study.txt.dat";
      EXPECT_NE(message.find(file), std::string::npos) << c.what << ": " << message;
      if (c.file == "spec") {
        EXPECT_EQ(message.find(".dat"), std::string::npos) << c.what << ": " << message;
      }
      if (c.what != std::string("huge N")) {
        EXPECT_NE(message.find("line " + std::to_string(c.line) + ":"), std::string::npos) << c.what << ": " << message;
      }
    }
  }
}

TEST(RegressionFile, MissingDataFileIsAnError) {
  TempDir dir;
  writeText(dir.file("lonely"), crlf({"3,1,#FALSE#,\"y\"", "x"}));
  try {
    ReadRegressionFiles(dir.file("lonely"));
    FAIL() << "read without its data file";
  } catch (const RegressionFileError& e) {
    EXPECT_NE(std::string(e.what()).find(dir.file("lonely.dat")), std::string::npos) << e.what();
  }
  EXPECT_THROW(ReadRegressionFiles(dir.file("nothing")), RegressionFileError);
}

TEST(RegressionFile, FailedSaveLeavesThePreviousPair) {
  TempDir dir;
  const std::string spec = dir.file("keep.txt");
  RegressionProblem before = sample();
  WriteRegressionFiles(spec, before);
  const std::string oldSpec = readText(spec), oldData = readText(spec + ".dat");
  RegressionProblem after = sample();
  after.N = 3;
  after.dependentName = "other";

  // The data file cannot be replaced (a directory stands in its way): neither file changes.
  TempDir blocked;
  const std::string blockedSpec = blocked.file("keep.txt");
  WriteRegressionFiles(blockedSpec, before);
  fs::remove(blockedSpec + ".dat");
  fs::create_directory(blockedSpec + ".dat");
  fs::create_directory(blockedSpec + ".dat/inside");
  EXPECT_THROW(WriteRegressionFiles(blockedSpec, after), RegressionFileError);
  EXPECT_EQ(readText(blockedSpec), oldSpec);
  EXPECT_EQ(std::distance(fs::directory_iterator(blocked.path()), fs::directory_iterator()), 2)
      << "no temporary file left behind";

  // A folder that does not exist.
  EXPECT_THROW(WriteRegressionFiles(dir.file("no/such/folder/x"), after), RegressionFileError);

  // A read-only folder (permissions mean nothing to the superuser, so only then).
  if (::geteuid() != 0) {
    fs::permissions(dir.path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_THROW(WriteRegressionFiles(spec, after), RegressionFileError);
    fs::permissions(dir.path(), fs::perms::owner_all);
    EXPECT_EQ(readText(spec), oldSpec);
    EXPECT_EQ(readText(spec + ".dat"), oldData);
  }
  // A device that takes nothing.
  if (fs::exists("/dev/full") && ::access("/dev", W_OK) != 0) {
    EXPECT_THROW(WriteRegressionFiles("/dev/full", after), RegressionFileError);
  }
}

}  // namespace
}  // namespace orvane
