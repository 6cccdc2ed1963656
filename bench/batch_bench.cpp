// orvane-batch at its largest: `fit` of a CSV table of ten million data sets of ten
// variables (random values of full precision, about 2 GB of text, written into a
// temporary folder and removed at the end), run as the user runs it, as a program of
// its own. Without --save the table is read pass by pass, never held, so the peak
// resident memory of the child, as the system reports it when the child ends, must not
// grow with the number of sets. Ends with the figures
//   figure batch.fit_csv_1e7x10_peak_mb <value> MB     (goal: under 64)
//   figure batch.fit_csv_1e7x10 <value> s

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "BenchRun.h"

namespace {

constexpr long long kSets = 10000000;
constexpr int kVariables = 10;
constexpr auto kNeededBytes = std::uintmax_t{3} << 30;  // the table and room to spare

struct {
  std::filesystem::path directory;
  std::string table;
  double peakMegabytes = -1;
} state;

// y = 2 + x1 - 2 x2 + 3 x3 ... plus noise, x in [-100, 100], at full precision.
bool writeTable(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return false;
  std::string text = "y";
  for (int j = 1; j <= kVariables; ++j) text += ",x" + std::to_string(j);
  text += "\n";
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> x(-100, 100), noise(-1, 1);
  double values[kVariables + 1];
  char number[32];
  bool ok = true;
  for (long long i = 0; i < kSets && ok; ++i) {
    values[0] = 2 + noise(random);
    for (int j = 1; j <= kVariables; ++j) {
      values[j] = x(random);
      values[0] += (j % 2 ? 1 : -1) * j * values[j];
    }
    for (int j = 0; j <= kVariables; ++j) {
      text.append(number, std::to_chars(number, number + sizeof number, values[j]).ptr);
      text += j < kVariables ? ',' : '\n';
    }
    if (text.size() > (size_t{8} << 20)) {
      ok = std::fwrite(text.data(), 1, text.size(), file) == text.size();
      text.clear();
    }
  }
  ok = ok && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && ok;
}

// Runs the program with `args`, its output to /dev/null; its exit status and peak
// resident memory in megabytes.
int runChild(const std::vector<std::string>& args, double& peakMegabytes) {
  const pid_t child = fork();
  if (child == 0) {
    const int null = ::open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    std::vector<char*> argv;
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child) return -1;
  peakMegabytes = static_cast<double>(usage.ru_maxrss) / 1024.0;  // reported in kilobytes
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void fitCsv(benchmark::State& state) {
  for (auto _ : state) {
    double peak = -1;
    if (runChild({ORVANE_BATCH_PROGRAM, "fit", ::state.table}, peak) != 0)
      state.SkipWithError("orvane-batch fit did not give its listing");
    ::state.peakMegabytes = std::max(::state.peakMegabytes, peak);
  }
}

}  // namespace

int main(int argc, char** argv) {
  state.directory = std::filesystem::temp_directory_path() / ("orvane-batch-bench-" + std::to_string(getpid()));
  std::filesystem::create_directories(state.directory);
  std::error_code ignored;
  if (std::filesystem::space(state.directory, ignored).available < kNeededBytes) {
    std::printf("note: less than 3 GB free in %s: the table is not written\n", state.directory.c_str());
    std::filesystem::remove_all(state.directory, ignored);
    return 0;
  }
  state.table = (state.directory / "table.csv").string();
  const bool written = writeTable(state.table);
  if (written) {
    benchmark::RegisterBenchmark("fit_csv_1e7x10", fitCsv)->Unit(benchmark::kSecond)->Iterations(1);
    const orvane::bench::FastestRuns runs = orvane::bench::RunBenchmarks(argc, argv);
    if (runs.has("fit_csv_1e7x10")) std::printf("figure batch.fit_csv_1e7x10 %.2f s\n", runs["fit_csv_1e7x10"]);
  } else {
    std::printf("note: the table could not be written in %s\n", state.directory.c_str());
  }
  std::filesystem::remove_all(state.directory, ignored);
  if (state.peakMegabytes >= 0) std::printf("figure batch.fit_csv_1e7x10_peak_mb %.1f MB\n", state.peakMegabytes);
  return written ? 0 : 1;
}
