// Saves that cannot complete, in ways that hold for every user, root included: a folder
// that is a file or does not exist, a device with no room at all or that fills up during
// the write. Each ends in a message naming the file, and the previous files stay as they
// were, with no temporary file left behind.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <optional>
#include <string>

#include "platform/RuntimeError.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionTestSupport.h"
#include "stereo/StereoExport.h"

namespace orvane {
namespace {

RegressionProblem problemOf(int sets) {
  std::vector<std::vector<double>> rows;
  for (int i = 1; i <= sets; ++i) rows.push_back({i * 0.1 + 1, i * 0.1 + 2, i * 0.1 + 3});
  return testing::makeProblem(2, rows, {"a", "b"});
}

// Files may grow to `bytes` only, as on a device that is nearly full (/dev/full cannot
// stand in: a save goes to a temporary file beside its target and renames it, so it
// never writes into the target); the signal the limit raises is ignored so the write
// fails instead.
struct FileSizeLimit {
  rlimit saved{};
  void (*previous)(int) = std::signal(SIGXFSZ, SIG_IGN);
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &saved);
    rlimit limit = saved;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);
  }
};

TEST(SaveFailure, AMessageNamingTheFileAndThePreviousFilesIntact) {
  const testing::TempDir dir;
  const std::string problem = dir.file("old.reg"), stereo = dir.file("old.ste");
  WriteRegressionFiles(problem, problemOf(3));
  WriteStereoFile(stereo, StereoSettings{}, {"a=1"});
  const std::string oldFiles[] = {testing::readText(problem), testing::readText(problem + ".dat"),
                                  testing::readText(stereo)};
  StereoSettings longer;
  longer.equationZ = std::string(100000, 'x');

  const struct {
    const char* what;
    std::string problem, stereo;
    rlim_t room;
    int sets;
  } rows[] = {
      {"a folder that is a file", problem + ".dat/new.reg", stereo + "/new.ste", RLIM_INFINITY, 5},
      {"no such folder", dir.file("none/x.reg"), dir.file("none/x.ste"), RLIM_INFINITY, 5},
      {"no room at all", problem, stereo, 0, 5},
      {"full during the write", problem, stereo, 4096, 20000},
      // The problem file fits, its data file does not: neither may change, or the pair
      // would no longer belong together.
      {"only the data file too large", problem, stereo, 8192, 20000},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    std::optional<FileSizeLimit> room;
    if (row.room != RLIM_INFINITY) room.emplace(row.room);
    try {
      WriteRegressionFiles(row.problem, problemOf(row.sets));
      ADD_FAILURE() << "saved";
    } catch (const RegressionFileError& e) {
      EXPECT_NE(std::string(e.what()).find(row.problem), std::string::npos) << e.what();
    }
    try {
      WriteStereoFile(row.stereo, row.sets > 5 ? longer : StereoSettings{}, {"a=2"});
      ADD_FAILURE() << "saved";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), err::PathFileAccess);
      EXPECT_NE(e.description().find(row.stereo.substr(0, 40)), std::string::npos) << e.description();
    }
    room.reset();
    EXPECT_EQ(testing::readText(problem), oldFiles[0]);
    EXPECT_EQ(testing::readText(problem + ".dat"), oldFiles[1]);
    EXPECT_EQ(testing::readText(stereo), oldFiles[2]);
    EXPECT_EQ(dir.entries(), 3) << "left behind";
  }
}

}  // namespace
}  // namespace orvane
