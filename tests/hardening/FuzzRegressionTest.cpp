// Every seed of the fuzz targets, and every input that once made a target fail (kept in
// fuzz-findings/<target>/), through the same checks the fuzzer makes.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "../../fuzz/FuzzChecks.h"
#include "regression/RegressionTestSupport.h"
// The checks are compiled here too, so that this program needs no fuzzer.
#include "../../fuzz/FuzzChecks.cpp"

namespace orvane {
namespace {

namespace fs = std::filesystem;

fs::path sourceDir() {
  if (const char* dir = std::getenv("ORVANE_SOURCE_DIR")) return dir;
  return fs::path(__FILE__).parent_path().parent_path().parent_path();
}

// The inputs of one target: seeds and kept findings; how many were checked.
int checkAll(const std::string& target, const std::function<std::string(std::string_view)>& check) {
  int checked = 0;
  for (const fs::path& dir : {sourceDir() / "fuzz" / "corpus" / target,
                              sourceDir() / "tests" / "hardening" / "fuzz-findings" / target}) {
    if (!fs::is_directory(dir)) continue;
    for (const auto& entry : fs::directory_iterator(dir)) {
      SCOPED_TRACE(entry.path().string());
      EXPECT_EQ(check(testing::readText(entry.path())), "");
      ++checked;
    }
  }
  return checked;
}

TEST(FuzzRegression, SeedsAndKeptFindingsPassTheChecks) {
  EXPECT_GE(checkAll("fuzz_engine", fuzz::CheckEngine), 10);
  EXPECT_GE(checkAll("fuzz_regression_file", fuzz::CheckRegressionFile), 5);
  EXPECT_GE(checkAll("fuzz_stereo_import", fuzz::CheckStereoImport), 4);
}

// Findings of the fuzzer, as texts, with what the routine must now do with them.
TEST(FuzzRegression, FindingsAreRefusedWithAMessage) {
  struct Row {
    const char* what;
    std::string problemText;
    std::string data;
  };
  const Row rows[] = {
      // A dependent name with quotes, written back in quotes, could not be read again.
      {"quote in the dependent name", "2,2,#FALSE#,iii \"dep\" \n a b\"\n c \n", "2,2\n1\n2\n3\n4\n5\n6\n"},
      // A quoted name with a comma, written back one per line, became two names.
      {"comma in a name", "1,1,#FALSE#,\"y\"\n\"a,b\"\n", "1,1\n1\n2\n"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_THROW(ParseRegressionFiles("finding.reg", row.problemText, row.data), RegressionFileError);
    EXPECT_EQ(fuzz::CheckRegressionFile(row.problemText + '\0' + row.data), "");
  }
}

}  // namespace
}  // namespace orvane
