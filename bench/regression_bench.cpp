// The least-squares fit over a million data sets: building the normal equations, the
// elimination and the five statistics, as Compute does when the user presses Compute.
// Ends with the figures
//   figure regression.fit_1e6_m1.ms <value> ms
//   figure regression.fit_1e6_m5.ms <value> ms
// (the best repetition, in milliseconds per fit).

#include <benchmark/benchmark.h>

#include "BenchRun.h"

#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "regression/Solver.h"

namespace {

using orvane::RegressionProblem;

constexpr int kSets = 1000000;

// y = 2 + 0.5 x1 - x2 + ... plus noise, x in [-100, 100].
RegressionProblem makeProblem(int m) {
  RegressionProblem p;
  p.m = m;
  p.N = kSets;
  for (int j = 1; j <= m; ++j) p.names.push_back("x" + std::to_string(j));
  p.dependentName = "y";
  p.dimensionData();
  std::mt19937_64 random(42 + m);
  std::uniform_real_distribution<double> x(-100, 100), noise(-1, 1);
  for (int i = 1; i <= kSets; ++i) {
    double y = 2 + noise(random);
    for (int j = 1; j <= m; ++j) {
      p.X(j, i) = x(random);
      y += (j % 2 ? 0.5 : -1.0) * j * p.X(j, i);
    }
    p.X(m + 1, i) = y;
  }
  return p;
}

void fit(benchmark::State& state, int m) {
  RegressionProblem p = makeProblem(m);
  for (auto _ : state) {
    const orvane::FitOutcome outcome = orvane::Compute(p);
    benchmark::DoNotOptimize(p.statistics);
    if (outcome != orvane::FitOutcome::Computed) state.SkipWithError("the fit was singular");
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kSets));
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::RegisterBenchmark("fit_1e6_m1", [](benchmark::State& s) { fit(s, 1); })
      ->Unit(benchmark::kMillisecond)
      ->Repetitions(5);
  benchmark::RegisterBenchmark("fit_1e6_m5", [](benchmark::State& s) { fit(s, 5); })
      ->Unit(benchmark::kMillisecond)
      ->Repetitions(5);
  const orvane::bench::FastestRuns runs = orvane::bench::RunBenchmarks(argc, argv);
  for (const char* name : {"fit_1e6_m1", "fit_1e6_m5"})
    if (runs.has(name)) std::printf("figure regression.%s.ms %.2f ms\n", name, runs[name]);
  return 0;
}
