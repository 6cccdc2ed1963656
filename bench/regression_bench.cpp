// The regression window's work on a million data sets of ten variables: Compute (the
// normal equations, the elimination and the five statistics), the Statistics window's
// summary (the orthogonal factorisation with its refinement, the standard errors, the
// tests and digits trusted), Save and Open of the file pair, and opening the data-set
// editor on them. The values carry four decimals, as
// measured data do. Save and Open run again on values of full precision (15 digits in
// the file), beside the floors of their number conversion on one thread: the parse
// floor (std::from_chars over the file's number texts, already in memory) and the
// format floor (the same values written in the file's number form into memory).
// Ends with the figures (the best repetition, in seconds)
//   figure regression.compute_1e6x10 <value> s
//   figure regression.stats_1e6x10 <value> s
//   figure regression.save_1e6x10 <value> s
//   figure regression.open_1e6x10 <value> s
//   figure regression.editor_open_1e6 <value> s
//   figure regression.open_full_1e6x10 <value> s
//   figure regression.save_full_1e6x10 <value> s
// and the ratios to the floors (at most 1: no slower than the bare conversion)
//   figure regression.open_full_1e6x10.vs_parse_floor <value> x
//   figure regression.save_full_1e6x10.vs_format_floor <value> x

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QApplication>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "BenchRun.h"
#include "platform/NumberText.h"
#include "platform/ScriptedDialogs.h"
#include "regression/FitSummary.h"
#include "regression/RegressionFile.h"
#include "regression/Solver.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"

namespace {

using orvane::RegressionProblem;

constexpr int kSets = 1000000;
constexpr int kVariables = 10;

double fourDecimals(double v) { return std::round(v * 1e4) / 1e4; }
double fullPrecision(double v) { return v; }

// y = 2 + 0.5 x1 - 2 x2 + 1.5 x3 ... plus noise, x in [-100, 100], each value kept as
// `kept` makes it.
RegressionProblem makeProblem(double (*kept)(double)) {
  RegressionProblem p;
  p.m = kVariables;
  p.N = kSets;
  for (int j = 1; j <= p.m; ++j) p.names.push_back("x" + std::to_string(j));
  p.dependentName = "y";
  p.dimensionData();
  std::mt19937_64 random(42);
  std::uniform_real_distribution<double> x(-100, 100), noise(-1, 1);
  for (int i = 1; i <= kSets; ++i) {
    double y = 2 + noise(random);
    for (int j = 1; j <= p.m; ++j) {
      p.X(j, i) = kept(x(random));
      y += (j % 2 ? 0.5 : -1.0) * j * p.X(j, i);
    }
    p.X(p.m + 1, i) = kept(y);
  }
  return p;
}

RegressionProblem& problem() {
  static RegressionProblem p = makeProblem(fourDecimals);
  return p;
}

RegressionProblem& fullProblem() {
  static RegressionProblem p = makeProblem(fullPrecision);
  return p;
}

const std::filesystem::path& benchFolder() {
  static const std::filesystem::path dir = [] {
    auto path = std::filesystem::temp_directory_path() / ("orvane-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    return path;
  }();
  return dir;
}

const std::string& savedFile() {
  static const std::string file = [] {
    const std::string path = (benchFolder() / "million.txt").string();
    orvane::WriteRegressionFiles(path, problem());
    return path;
  }();
  return file;
}

const std::string& savedFullFile() {
  static const std::string file = [] {
    const std::string path = (benchFolder() / "full.txt").string();
    orvane::WriteRegressionFiles(path, fullProblem());
    return path;
  }();
  return file;
}

void compute(benchmark::State& state) {
  RegressionProblem& p = problem();
  for (auto _ : state) {
    if (orvane::Compute(p) != orvane::FitOutcome::Computed) state.SkipWithError("the fit was singular");
    benchmark::DoNotOptimize(p.statistics);
  }
}

void stats(benchmark::State& state) {
  RegressionProblem& p = problem();
  if (!p.computed && orvane::Compute(p) != orvane::FitOutcome::Computed) state.SkipWithError("the fit was singular");
  for (auto _ : state) {
    const orvane::FitSummary summary = orvane::SummarizeFit(p);
    if (summary.digitsTrusted < 10) state.SkipWithError("the summary does not trust the listing");
    benchmark::DoNotOptimize(summary.fPValue);
  }
}

void savePair(benchmark::State& state, const std::string& file, const RegressionProblem& p) {
  for (auto _ : state) orvane::WriteRegressionFiles(file, p);
}
void save(benchmark::State& state) { savePair(state, savedFile(), problem()); }
void saveFull(benchmark::State& state) { savePair(state, savedFullFile(), fullProblem()); }

void openPair(benchmark::State& state, const std::string& file) {
  for (auto _ : state) {
    RegressionProblem read = orvane::ReadRegressionFiles(file);
    if (read.N != kSets) state.SkipWithError("the file read short");
    benchmark::DoNotOptimize(read.X(1, 1));
  }
}
void open(benchmark::State& state) { openPair(state, savedFile()); }
void openFull(benchmark::State& state) { openPair(state, savedFullFile()); }

// std::from_chars over every number text of the full-precision data file, in memory
// before the clock starts, into doubles ready to take them.
void parseFloor(benchmark::State& state) {
  const std::string text = orvane::DataText(fullProblem());
  const size_t count = size_t{kSets} * (kVariables + 1);
  std::vector<std::string_view> numbers;
  numbers.reserve(count);
  for (size_t at = text.find('\n') + 1; numbers.size() < count; at = text.find('\n', at) + 1) {
    const size_t first = text[at] == ' ' ? at + 1 : at;
    numbers.emplace_back(text.data() + first, text.find('\r', first) - first);
  }
  std::vector<double> values(numbers.size(), 1.0);
  for (auto _ : state) {
    for (size_t k = 0; k < numbers.size(); ++k)
      std::from_chars(numbers[k].data(), numbers[k].data() + numbers[k].size(), values[k]);
    benchmark::DoNotOptimize(values.data());
  }
  if (values[1] != orvane::parseStrict(orvane::formatGeneral(fullProblem().X(2, 1))))
    state.SkipWithError("the floor read another number");
}

// The full-precision values written in the file's number form, one after the other
// into memory made ready before the clock starts.
void formatFloor(benchmark::State& state) {
  const RegressionProblem& p = fullProblem();
  std::string text(size_t{kSets} * (kVariables + 1) * orvane::kNumberTextRoom, ' ');
  for (auto _ : state) {
    char* out = text.data();
    for (int i = 1; i <= p.N; ++i)
      for (int j = 1; j <= p.m + 1; ++j) out += orvane::formatGeneralInto(out, p.X(j, i));
    benchmark::DoNotOptimize(out);
  }
}

// Edit data: the window built and shown with its grid over all the sets.
void editorOpen(benchmark::State& state) {
  RegressionProblem& p = problem();
  for (auto _ : state) {
    orvane::ScriptedDialogs dialogs;
    orvane::frmEdit editor(p, dialogs);
    editor.PrepareGrid(false);
    QCoreApplication::processEvents();
    if (editor.model()->rowCount() != kSets) state.SkipWithError("the grid does not hold every set");
    state.PauseTiming();
    editor.close();
    state.ResumeTiming();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  int qtArgc = 1;
  QApplication app(qtArgc, argv);

  const std::pair<const char*, void (*)(benchmark::State&)> stages[] = {
      {"compute_1e6x10", compute},        {"stats_1e6x10", stats},         {"save_1e6x10", save},
      {"open_1e6x10", open},              {"editor_open_1e6", editorOpen}, {"open_full_1e6x10", openFull},
      {"save_full_1e6x10", saveFull},     {"parse_floor", parseFloor},     {"format_floor", formatFloor}};
  for (const auto& [name, run] : stages)
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kSecond)->Iterations(1)->Repetitions(3);
  const orvane::bench::FastestRuns runs = orvane::bench::RunBenchmarks(argc, argv);

  std::error_code ignored;
  std::filesystem::remove_all(benchFolder(), ignored);
  for (const auto& [name, run] : stages)
    if (runs.has(name) && !std::string(name).ends_with("_floor"))
      std::printf("figure regression.%s %.3f s\n", name, runs[name]);
  const auto ratio = [&runs](const char* stage, const char* floor) {
    if (runs.has(stage) && runs.has(floor))
      std::printf("figure regression.%s.vs_%s %.2f x\n", stage, floor, runs[stage] / runs[floor]);
  };
  ratio("open_full_1e6x10", "parse_floor");
  ratio("save_full_1e6x10", "format_floor");
  return 0;
}
