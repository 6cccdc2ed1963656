// The program at its largest: one million data sets (two variables) taken along the
// user's path — saved as a file pair, opened again, computed, shown in the data-set
// editor (the grid's model, then the editor window itself) with a set deleted — and one
// study command of the 2-D window that evaluates the formula more than ten million times.
// Each stage is timed once (the big ones) or a few times (the best is kept), and its
// peak resident memory above what the process held before it is measured (Linux: the
// high-water mark is reset through /proc/self/clear_refs before each stage).
// Ends with the figures
//   figure stress.save_1e6.ms <value> ms
//   figure stress.open_1e6.ms <value> ms
//   figure stress.compute_1e6.ms <value> ms
//   figure stress.editor_1e6.ms <value> ms
//   figure stress.editor_window_1e6.ms <value> ms
//   figure stress.<stage>.peak_mb <value> MB              (one pair per data-set stage)
//   figure stress.<stage>.peak_over_matrix <value> x
//   figure stress.sets_peak_over_matrix <value> x         (the largest of them)
//   figure stress.study_1e7_evals.ms <value> ms
//   figure stress.roots_16m <value> ms                      (the same roots command; fastest of three)
//   figure stress.study_evaluations <value> evaluations
//   figure stress.study_peak_mb <value> MB
// where "matrix" is the data matrix as the problem stores it (columns 0..m+1 by rows
// 0..N of doubles); the goal is a peak under three times that.

#include <benchmark/benchmark.h>

#include "BenchRun.h"
#include <malloc.h>
#include <unistd.h>

#include <QApplication>
#include <QPixmap>
#include <QPushButton>
#include <QTableView>
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/PointEvaluation.h"
#include "platform/ScriptedDialogs.h"
#include "plot2d/Derivatives.h"
#include "plot2d/EngineFunction.h"
#include "plot2d/RootFinder.h"
#include "plot2d/StudySettings.h"
#include "regression/RegressionFile.h"
#include "regression/Solver.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"

namespace {

using namespace orvane;

constexpr int kSets = 1000000;
constexpr int kVariables = 2;
constexpr int kScreenRows = 30;  // rows the editor shows at its usual size, with some spare
constexpr const char* kFormula = "Sin(x)*x^2 - 0.3";

// ---- memory -------------------------------------------------------------------------

long statusKb(const char* key) {
  std::ifstream in("/proc/self/status");
  std::string line;
  const size_t length = std::strlen(key);
  while (std::getline(in, line))
    if (line.compare(0, length, key) == 0) return std::stol(line.substr(length));
  return -1;
}

bool peakResets = true;  // false: the kernel refused, so peaks are since the process began

// Starts a stage's measurement: freed memory goes back to the system first, so that the
// stage's own allocations show as growth, then the high-water mark drops to the present.
class PeakWatch {
 public:
  PeakWatch() {
    malloc_trim(0);
    std::ofstream clear("/proc/self/clear_refs");
    clear << "5";
    clear.flush();
    if (!clear) peakResets = false;
    baselineKb_ = statusKb("VmRSS:");
  }
  double increaseBytes() const { return static_cast<double>(statusKb("VmHWM:") - baselineKb_) * 1024.0; }

 private:
  long baselineKb_ = 0;
};

// ---- the state the stages pass along, as the main window holds it -----------------

struct Stages {
  RegressionProblem problem;
  double matrixBytes = 0;
  std::filesystem::path directory;
  std::string problemFile;
  std::map<std::string, double> peakBytes;  // the largest over a stage's repetitions
  int64_t evaluations = 0;
  std::string rootsLabel;
};

Stages* stages = nullptr;

void notePeak(const std::string& stage, double bytes) {
  double& kept = stages->peakBytes[stage];
  kept = std::max(kept, bytes);
}

// y = 2 + 0.5 x1 - 2 x2 plus noise, x in [-100, 100].
void makeProblem(RegressionProblem& p) {
  p = RegressionProblem();
  p.m = kVariables;
  p.N = kSets;
  p.names = {std::string("x1"), std::string("x2")};
  p.dependentName = std::string("y");
  p.dimensionData();
  p.dataDimensioned = true;
  std::mt19937_64 random(42);
  std::uniform_real_distribution<double> x(-100, 100), noise(-1, 1);
  for (int i = 1; i <= kSets; ++i) {
    p.X(1, i) = x(random);
    p.X(2, i) = x(random);
    p.X(3, i) = 2 + 0.5 * p.X(1, i) - 2 * p.X(2, i) + noise(random);
  }
}

double matrixBytesOf(const RegressionProblem& p) {
  return static_cast<double>(p.X.lastColumn() + 1) * (p.X.lastRow() + 1) * sizeof(double);
}

// Any stage run alone (--benchmark_filter) finds what the earlier ones would have left.
void ensureProblem() {
  if (stages->problem.N >= kSets - 10) return;
  makeProblem(stages->problem);
}
void ensureFiles() {
  if (std::filesystem::exists(stages->problemFile) &&
      std::filesystem::exists(DataFileName(stages->problemFile)))
    return;
  ensureProblem();
  WriteRegressionFiles(stages->problemFile, stages->problem);
}

// ---- the data-set stages ------------------------------------------------------------

void save1e6(benchmark::State& state) {
  ensureProblem();
  PeakWatch watch;
  for (auto _ : state) WriteRegressionFiles(stages->problemFile, stages->problem);
  notePeak("save_1e6", watch.increaseBytes());
  state.counters["data_file_MB"] =
      static_cast<double>(std::filesystem::file_size(DataFileName(stages->problemFile))) / 1e6;
}

void open1e6(benchmark::State& state) {
  ensureFiles();
  PeakWatch watch;
  for (auto _ : state) {
    try {
      // As the main window does: the opened problem replaces the one it held.
      RegressionProblem opened = ReadRegressionFiles(stages->problemFile);
      stages->problem = std::move(opened);
    } catch (const RegressionFileError& e) {
      state.SkipWithError(e.what());
      return;
    }
  }
  notePeak("open_1e6", watch.increaseBytes());
  if (stages->problem.N != kSets || stages->problem.m != kVariables)
    state.SkipWithError("the opened problem is not the one saved");
}

void compute1e6(benchmark::State& state) {
  ensureProblem();
  PeakWatch watch;
  for (auto _ : state) {
    const FitOutcome outcome = Compute(stages->problem);
    benchmark::DoNotOptimize(stages->problem.statistics);
    if (outcome != FitOutcome::Computed) state.SkipWithError("the fit was singular");
  }
  notePeak("compute_1e6", watch.increaseBytes());
}

// The grid's model as the editor's view uses it: sizes, a screenful of cells with their
// row headers at the start, the middle and the end, then the Delete button's removal.
void editor1e6(benchmark::State& state) {
  ensureProblem();
  PeakWatch watch;
  int64_t characters = 0;
  for (auto _ : state) {
    DataGridModel model(stages->problem);
    const int rows = model.rowCount();
    const int columns = model.columnCount();
    for (const int first : {0, rows / 2, rows - kScreenRows}) {
      for (int r = first; r < first + kScreenRows; ++r) {
        characters += model.headerData(r, Qt::Vertical).toString().size();
        for (int c = 0; c < columns; ++c) characters += model.data(model.index(r, c)).toString().size();
      }
    }
    model.deleteSet(rows / 2);
    if (model.rowCount() != rows - 1 || stages->problem.N != rows - 1)
      state.SkipWithError("the set was not deleted");
  }
  benchmark::DoNotOptimize(characters);
  notePeak("editor_1e6", watch.increaseBytes());
}

// The editor window itself, offscreen: prepared and shown, painted at the start, the
// middle and the end, and a set deleted with its Delete button.
void editorWindow1e6(benchmark::State& state) {
  ensureProblem();
  PeakWatch watch;
  for (auto _ : state) {
    const int before = stages->problem.N;
    ScriptedDialogs dialogs;
    frmEdit window(stages->problem, dialogs);
    window.PrepareGrid(false);
    QCoreApplication::processEvents();
    const int rows = window.model()->rowCount();
    for (const int row : {0, rows - 1, rows / 2}) {
      const QModelIndex cell = window.model()->index(row, 0);
      window.MSFlexGridEdit->setCurrentIndex(cell);
      window.MSFlexGridEdit->scrollTo(cell);
      QPixmap shot = window.grab();
      benchmark::DoNotOptimize(shot);
    }
    window.cmdDelete->click();
    QCoreApplication::processEvents();
    if (stages->problem.N != before - 1) state.SkipWithError("the set was not deleted");
    window.close();
  }
  notePeak("editor_window_1e6", watch.increaseBytes());
}

// ---- the study command ---------------------------------------------------------------

// Counts what the study routine asks of the window's formula.
class CountingFunction final : public FunctionOfX {
 public:
  explicit CountingFunction(FunctionOfX& f) : f_(f) {}
  double operator()(double x) override {
    ++count;
    return f_(x);
  }
  int32_t tryEval(double x, double& y) override {
    ++count;
    return f_.tryEval(x, y);
  }
  int32_t tryEvalBlock(const double* xs, int32_t n, double* ys, int32_t& error) override {
    const int32_t taken = f_.tryEvalBlock(xs, n, ys, error);
    count += taken > 0 ? taken : 1;
    return taken;
  }
  int64_t count = 0;

 private:
  FunctionOfX& f_;
};

// "&Roots" as the 2-D window runs it, with the fields as a user leaves them after typing
// 10000000 subintervals (raised to the next power of two on leaving the field).
void study1e7(benchmark::State& state) {
  ExpressionEngine engine;
  Class1 sh;
  int32_t sharedError = 0;
  sh.sharedError = &sharedError;
  RegisterMathObject(engine, sh);
  const std::string subintervals = subintervalsOnLostFocus("10000000");
  const StudyFieldTexts texts{std::string(kFormula), std::string("0"), std::string("100"), subintervals,
                              std::string("0.000001"), maxcyOnValidate("20", subintervals).text,
                              std::string("Function")};

  PeakWatch watch;
  for (auto _ : state) {
    sh.ierr = 0;
    EngineFunction f(engine, sh, texts.equation);
    CountingFunction counted(f);
    DerivativeEvaluator d(counted);
    const RootResult result = findRoots(d, texts);
    stages->evaluations = counted.count;
    stages->rootsLabel = result.label.value_or("(no label, error " + std::to_string(result.error) + ")");
    if (result.error != 0) state.SkipWithError("the root scan ended with an error");
  }
  notePeak("study_1e7", watch.increaseBytes());
  state.counters["evaluations"] = static_cast<double>(stages->evaluations);
}

}  // namespace

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  int qtArgc = 1;
  QApplication app(qtArgc, argv);

  Stages state;
  stages = &state;
  state.directory = std::filesystem::temp_directory_path() / ("orvane-stress-" + std::to_string(getpid()));
  std::filesystem::create_directories(state.directory);
  state.problemFile = (state.directory / "million.orv").string();
  makeProblem(state.problem);
  state.matrixBytes = matrixBytesOf(state.problem);

  const auto once = [](benchmark::internal::Benchmark* b) {
    b->Unit(benchmark::kMillisecond)->Iterations(1);
  };
  once(benchmark::RegisterBenchmark("save_1e6", save1e6));
  once(benchmark::RegisterBenchmark("open_1e6", open1e6));
  once(benchmark::RegisterBenchmark("compute_1e6", compute1e6)->Repetitions(3));
  once(benchmark::RegisterBenchmark("editor_1e6", editor1e6)->Repetitions(3));
  once(benchmark::RegisterBenchmark("editor_window_1e6", editorWindow1e6));
  once(benchmark::RegisterBenchmark("study_1e7", study1e7)->Repetitions(3));
  const orvane::bench::FastestRuns runs = orvane::bench::RunBenchmarks(argc, argv);

  std::error_code ignored;
  std::filesystem::remove_all(state.directory, ignored);

  if (!peakResets) std::printf("note: the peak could not be reset; peaks count from the start\n");
  std::printf("data matrix: %.1f MB (%d sets, %d variables)\n", state.matrixBytes / 1e6, kSets, kVariables);
  if (!state.rootsLabel.empty())
    std::printf("study: %s over [0, 100] of %s, %lld evaluations\n", state.rootsLabel.c_str(), kFormula,
                static_cast<long long>(state.evaluations));
  for (const char* name : {"save_1e6", "open_1e6", "compute_1e6", "editor_1e6", "editor_window_1e6"})
    if (runs.has(name)) std::printf("figure stress.%s.ms %.2f ms\n", name, runs[name]);
  double worst = -1;
  for (const char* name : {"save_1e6", "open_1e6", "compute_1e6", "editor_1e6", "editor_window_1e6"}) {
    if (!state.peakBytes.count(name)) continue;
    const double ratio = state.peakBytes[name] / state.matrixBytes;
    worst = std::max(worst, ratio);
    std::printf("figure stress.%s.peak_mb %.1f MB\n", name, state.peakBytes[name] / 1e6);
    std::printf("figure stress.%s.peak_over_matrix %.2f x\n", name, ratio);
  }
  if (worst >= 0) std::printf("figure stress.sets_peak_over_matrix %.2f x\n", worst);
  if (runs.has("study_1e7")) {
    std::printf("figure stress.study_1e7_evals.ms %.2f ms\n", runs["study_1e7"]);
    std::printf("figure stress.roots_16m %.2f ms\n", runs["study_1e7"]);
    std::printf("figure stress.study_evaluations %lld evaluations\n", static_cast<long long>(state.evaluations));
  }
  if (state.peakBytes.count("study_1e7"))
    std::printf("figure stress.study_peak_mb %.1f MB\n", state.peakBytes["study_1e7"] / 1e6);
  return 0;
}
