// The regression window's work on a million data sets of ten variables: Compute (the
// normal equations, the elimination and the five statistics), the Statistics window's
// summary (the orthogonal factorisation with its refinement, the standard errors, the
// tests and digits trusted), Save and Open of the file pair, and opening the data-set
// editor on them. The values carry four decimals, as
// measured data do. Ends with the figures (the best repetition, in seconds)
//   figure regression.compute_1e6x10 <value> s
//   figure regression.stats_1e6x10 <value> s
//   figure regression.save_1e6x10 <value> s
//   figure regression.open_1e6x10 <value> s
//   figure regression.editor_open_1e6 <value> s

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QApplication>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "BenchRun.h"
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

// y = 2 + 0.5 x1 - 2 x2 + 1.5 x3 ... plus noise, x in [-100, 100].
RegressionProblem makeProblem() {
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
      p.X(j, i) = fourDecimals(x(random));
      y += (j % 2 ? 0.5 : -1.0) * j * p.X(j, i);
    }
    p.X(p.m + 1, i) = fourDecimals(y);
  }
  return p;
}

RegressionProblem& problem() {
  static RegressionProblem p = makeProblem();
  return p;
}

const std::string& savedFile() {
  static const std::string file = [] {
    const auto dir = std::filesystem::temp_directory_path() / ("orvane-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(dir);
    const std::string path = (dir / "million.txt").string();
    orvane::WriteRegressionFiles(path, problem());
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

void save(benchmark::State& state) {
  const std::string& file = savedFile();
  for (auto _ : state) orvane::WriteRegressionFiles(file, problem());
}

void open(benchmark::State& state) {
  const std::string& file = savedFile();
  for (auto _ : state) {
    RegressionProblem read = orvane::ReadRegressionFiles(file);
    if (read.N != kSets) state.SkipWithError("the file read short");
    benchmark::DoNotOptimize(read.X(1, 1));
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
      {"compute_1e6x10", compute}, {"stats_1e6x10", stats}, {"save_1e6x10", save}, {"open_1e6x10", open}, {"editor_open_1e6", editorOpen}};
  for (const auto& [name, run] : stages)
    benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kSecond)->Iterations(1)->Repetitions(3);
  const orvane::bench::FastestRuns runs = orvane::bench::RunBenchmarks(argc, argv);

  std::error_code ignored;
  std::filesystem::remove_all(std::filesystem::path(savedFile()).parent_path(), ignored);
  for (const auto& [name, run] : stages)
    if (runs.has(name)) std::printf("figure regression.%s %.3f s\n", name, runs[name]);
  return 0;
}
