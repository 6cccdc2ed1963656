#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RegressionTestSupport.h"
#include "regression/RegressionFile.h"
#include "regression/Solver.h"

namespace orvane {
namespace {

using testing::column;
using testing::makeProblem;
using testing::readText;
using testing::TempDir;

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
  EXPECT_EQ(ProblemText(p), crlf({"4,2,#FALSE#,\"yield\"", "x", "t"}));
  std::vector<std::string> data = {"4,2", " 1", " 0.5", " 3.5", " 2",   "-1.25",  "-3.5",
                                   " 3",  " 4", " 0",   " 4.5", " 1E-07", " 12"};
  EXPECT_EQ(DataText(p), crlf(data));

  p.computed = true;
  p.A = {-0.5, 2, 1e20, 7};
  p.statistics = {0.75, 1.5, 4.5, 3, -2.5e-5};
  EXPECT_EQ(ProblemText(p),
            crlf({"4,2,#TRUE#,\"yield\"", "x", "t", "-0.5", " 2", " 1E+20", "0.75,1.5,4.5,3,-2.5E-05"}));
  data.push_back("0.75,1.5,4.5,3,-2.5E-05");
  EXPECT_EQ(DataText(p), crlf(data));

  // Saved before the sets exist: zeros, not a read outside the matrix.
  RegressionProblem bare = makeProblem(1, {}, {"x"});
  bare.X = {};
  bare.N = 3;
  EXPECT_EQ(ProblemText(bare), crlf({"3,1,#FALSE#,\"y\"", "x"}));
  EXPECT_EQ(DataText(bare), crlf({"3,1", " 0", " 0", " 0", " 0", " 0", " 0"}));
}

// Written and read back, before and after computing: blanks around names are dropped as
// around any field; names the writer can give back as they were survive; a problem of no
// sets reads back empty.
TEST(RegressionFile, RoundTripThroughDisk) {
  TempDir dir;
  const std::string path = dir.file("study.txt");
  RegressionProblem computed = sample();
  computed.names = {"x", " t"};
  ASSERT_EQ(Compute(computed), FitOutcome::Computed);
  const std::vector<std::string> odd = {"a\"b", "a\"", "\"x", "a\"b\"c", "it's", "x;y", "\xc3\xa9t\xc3\xa9", "a b"};
  const struct {
    RegressionProblem p;
    std::vector<std::string> names;  // as read back
  } cases[] = {
      {sample(), {"x", "t"}},
      {computed, {"x", "t"}},
      {makeProblem(8, {{1, 2, 3, 4, 5, 6, 7, 8, -3}}, odd), odd},
      {makeProblem(2, {}), {"x1", "x2"}},
  };
  for (const auto& [p, names] : cases) {
    WriteRegressionFiles(path, p);
    EXPECT_EQ(readText(path), ProblemText(p));
    EXPECT_EQ(readText(path + ".dat"), DataText(p));
    EXPECT_EQ(dir.entries(), 2) << "no temporary file left behind";

    const RegressionProblem back = ReadRegressionFiles(path);
    EXPECT_TRUE(back.N == p.N && back.m == p.m && back.computed == p.computed && back.dataDimensioned);
    EXPECT_EQ(back.dependentName, p.dependentName);
    EXPECT_EQ(back.names, names);
    for (int j = 1; j <= p.m + 1; ++j) EXPECT_EQ(column(back, j), column(p, j)) << j;
    if (p.computed) {  // 15 significant digits survive the text; the listing reads the same
      for (int j = 0; j <= p.m; ++j) EXPECT_NEAR(back.A[j], p.A[j], std::abs(p.A[j]) * 1e-14) << j;
      EXPECT_EQ(ResultsListing(back), ResultsListing(p));
    }
  }
}

// Files of megabytes are written and read in parts at once: the sets come back in their
// places, and a bad or short file is reported as reading it from the start reports it.
TEST(RegressionFile, LargeFilesKeepTheirOrderAndTheirFirstFault) {
  TempDir dir;
  constexpr int kSets = 300000;  // several blocks of sets to write, parts to read
  RegressionProblem big = makeProblem(1, {}, {"x"});
  big.N = kSets;
  big.dimensionData();
  for (int i = 1; i <= kSets; ++i) big.X(1, i) = i * 0.25, big.X(2, i) = -i - 0.5;
  ASSERT_EQ(Compute(big), FitOutcome::Computed);
  WriteRegressionFiles(dir.file("big"), big);
  const RegressionProblem back = ReadRegressionFiles(dir.file("big"));
  EXPECT_EQ(column(back, 1), column(big, 1));
  EXPECT_EQ(column(back, 2), column(big, 2));
  EXPECT_EQ(ResultsListing(back), ResultsListing(big)) << "the statistics after the values";

  const std::string main = crlf({std::to_string(kSets) + ",1,#FALSE#,\"y\"", "x"});
  std::vector<std::string> lines(2 * kSets, " 1.23456789012345");
  const auto data = [&](const std::vector<std::pair<size_t, std::string>>& changes, size_t drop = 0) {
    std::vector<std::string> changed = lines;
    for (const auto& [at, text] : changes) changed[at] = text;
    changed.resize(changed.size() - drop);
    changed.insert(changed.begin(), std::to_string(kSets) + ",1");
    return crlf(changed);
  };
  const struct {
    const char* what;
    std::string data;
    std::string message;
  } cases[] = {
      {"bad early and late", data({{10, "x"}, {500000, "1,2"}}), "line 12: expected the value of x in data set 6."},
      {"bad last line", data({{599999, "1e999"}}), "line 600001: expected the value of y in data set 300000."},
      {"short and bad", data({{10, "x"}}, 3), "line 12: expected the value of x in data set 6."},
      {"short", data({}, 3), "line 599999: expected value 2 of data set 299999 (the file ends before it)."},
  };
  for (const auto& c : cases)
    EXPECT_EQ(testing::refusal("/tmp/study.txt", main, c.data), "/tmp/study.txt.dat, " + c.message) << c.what;
}

}  // namespace
}  // namespace orvane
