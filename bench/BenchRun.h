#pragma once
// What every benchmark program here does around its benchmarks: run them with default
// flags the command line may override, and keep each benchmark's fastest repetition for
// the closing "figure" lines.

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace orvane::bench {

// The fastest repetition's adjusted real time by benchmark name, in the benchmark's
// unit; failed runs are left out.
class FastestRuns : public benchmark::ConsoleReporter {
 public:
  // A reporter given to the library keeps its own options, whatever --benchmark_color says:
  // without colours, so that no codes run into the "figure" lines printed after the table.
  FastestRuns() : ConsoleReporter(OO_Tabular) {}

  std::map<std::string, double> times;

  bool has(const std::string& name) const { return times.count(name) > 0; }
  double operator[](const std::string& name) const { return times.at(name); }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.run_type != Run::RT_Iteration || r.error_occurred) continue;
      const std::string name = r.run_name.function_name;
      const double t = r.GetAdjustedRealTime();
      const auto found = times.find(name);
      if (found == times.end() || t < found->second) times[name] = t;
    }
    ConsoleReporter::ReportRuns(runs);
  }
};

// Runs the registered benchmarks; each of `defaults` ("--flag=value") applies unless
// the command line gives that flag itself.
// Colour codes are always off, so that they never reach the "figure" lines.
inline FastestRuns RunBenchmarks(int argc, char** argv, std::vector<std::string> defaults = {}) {
  defaults.push_back("--benchmark_color=false");
  std::vector<char*> args(argv, argv + argc);
  for (std::string& flag : defaults) {
    const std::string name = flag.substr(0, flag.find('='));
    bool given = false;
    for (int i = 1; i < argc; ++i) given |= std::string(argv[i]).starts_with(name);
    if (!given) args.push_back(flag.data());
  }
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());
  FastestRuns runs;
  benchmark::RunSpecifiedBenchmarks(&runs);
  benchmark::Shutdown();
  return runs;
}

}  // namespace orvane::bench
