// Every "$ orvane-batch" example of README.md, run as written with the built tool on the
// PATH, must print what the README shows under it: standard output, then standard error.
// A line "..." stands for any lines, a line ending in "..." for any line that starts so.
// An example that shows no output must succeed. The examples run in order in a folder
// that mirrors the repository root, so nothing is written into the repository.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Example {
  std::string command;             // without the "$ "
  std::vector<std::string> shown;  // the lines under it
};

// The examples of the fenced blocks: a "$ orvane-batch" line and the lines under it up
// to the next "$ " line or the end of the block.
std::vector<Example> readmeExamples(const fs::path& readme) {
  std::ifstream in(readme);
  std::vector<Example> examples;
  bool inBlock = false, inExample = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("```")) {
      inBlock = !inBlock;
      inExample = false;
    } else if (inBlock && line.starts_with("$ ")) {
      inExample = line.starts_with("$ orvane-batch ");
      if (inExample) examples.push_back({line.substr(2), {}});
    } else if (inExample) {
      examples.back().shown.push_back(line);
    }
  }
  return examples;
}

// Whether printed[p...] matches shown[s...].
bool outputMatches(const std::vector<std::string>& shown, size_t s, const std::vector<std::string>& printed, size_t p) {
  if (s == shown.size()) return p == printed.size();
  if (shown[s] == "...") {
    for (size_t skip = p; skip <= printed.size(); ++skip)
      if (outputMatches(shown, s + 1, printed, skip)) return true;
    return false;
  }
  if (p == printed.size()) return false;
  const std::string& line = shown[s];
  const bool start = line.size() > 3 && line.ends_with("...");  // a line that starts so
  return (start ? printed[p].starts_with(line.substr(0, line.size() - 3)) : line == printed[p]) &&
         outputMatches(shown, s + 1, printed, p + 1);
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// The single-quoted form of a text for sh.
std::string quoted(const std::string& text) {
  std::string out = "'";
  for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

}  // namespace

TEST(ReadmeExamples, PrintWhatTheReadmeShows) {
  const fs::path root = ORVANE_SOURCE_ROOT;
  const std::vector<Example> examples = readmeExamples(root / "README.md");
  ASSERT_FALSE(examples.empty()) << "no \"$ orvane-batch\" example in README.md";

  const fs::path folder = fs::temp_directory_path() / ("readme-examples-" + std::to_string(::getpid()));
  fs::create_directories(folder);
  for (const fs::directory_entry& entry : fs::directory_iterator(root))
    if (entry.path().filename() != ".git") fs::create_directory_symlink(entry.path(), folder / entry.path().filename());

  for (const Example& example : examples) {
    SCOPED_TRACE("$ " + example.command);
    const std::string run = "cd " + quoted(folder.string()) + " && PATH=" + quoted(ORVANE_BATCH_FOLDER) +
                            ":\"$PATH\" sh -c " + quoted(example.command) + " >.out 2>.err";
    const int status = std::system(run.c_str());
    std::vector<std::string> printed;
    for (const char* stream : {".out", ".err"}) {
      std::ifstream in(folder / stream);
      for (std::string line; std::getline(in, line);) printed.push_back(line);
    }
    EXPECT_TRUE(outputMatches(example.shown, 0, printed, 0))
        << "README shows:\n" << joined(example.shown) << "printed:\n" << joined(printed);
    EXPECT_TRUE(!example.shown.empty() || status == 0) << "an example without output must succeed\n" << joined(printed);
  }
  fs::remove_all(folder);
}
