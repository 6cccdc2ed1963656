// Saves that cannot complete, in ways that hold for every user, root included: a folder
// that is a file, a name the file system refuses, a folder that does not exist, a device
// with no room at all or that fills up during the write. Each ends in a message naming
// the file, and the previous files stay as they were, with no temporary file left behind.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include "platform/RuntimeError.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionTestSupport.h"
#include "stereo/StereoExport.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

RegressionProblem problemOf(int sets) {
  std::vector<std::vector<double>> rows;
  for (int i = 1; i <= sets; ++i) rows.push_back({i * 0.1 + 1, i * 0.1 + 2, i * 0.1 + 3});
  return testing::makeProblem(2, rows, {"a", "b"});
}

// Files may grow to `bytes` only, as on a device that is nearly full (/dev/full cannot
// stand in: a save goes to a temporary file beside its target and renames it, so it
// never writes into the target); the signal the limit raises is ignored so the write
// fails instead.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    previous_ = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = saved_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, previous_);
  }

 private:
  rlimit saved_{};
  void (*previous_)(int) = nullptr;
};

TEST(SaveFailure, AMessageNamingTheFileAndThePreviousFilesIntact) {
  const fs::path dir = fs::temp_directory_path() / ("orvane-save-" + std::to_string(::getpid()));
  fs::remove_all(dir);
  fs::create_directories(dir);
  const std::string problem = (dir / "old.reg").string(), stereo = (dir / "old.ste").string();
  WriteRegressionFiles(problem, problemOf(3));
  WriteStereoFile(stereo, StereoSettings{}, {"a=1"});
  const std::string oldFiles[] = {contents(problem), contents(problem + ".dat"), contents(stereo)};
  StereoSettings longer;
  longer.equationZ = std::string(100000, 'x');

  const std::string tooLong = (dir / (std::string(300, 'n') + ".reg")).string();
  const struct {
    const char* what;
    std::string problem, stereo;
    rlim_t room;
    int sets;
  } rows[] = {
      {"a folder that is a file", problem + ".dat/new.reg", stereo + "/new.ste", RLIM_INFINITY, 5},
      {"a name too long", tooLong, tooLong, RLIM_INFINITY, 5},
      {"no such folder", (dir / "none/x.reg").string(), (dir / "none/x.ste").string(), RLIM_INFINITY, 5},
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
    EXPECT_EQ(contents(problem), oldFiles[0]);
    EXPECT_EQ(contents(problem + ".dat"), oldFiles[1]);
    EXPECT_EQ(contents(stereo), oldFiles[2]);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 3) << "left behind";
  }
  fs::remove_all(dir);
}

}  // namespace
}  // namespace orvane
