// Evaluation speed of the expression engine on the formulas the windows meet: through
// Eval(text), through the point-evaluation routine, over blocks of points, against
// native C++ computing the same arithmetic (the floor) and against muParser (the peer).

#include <benchmark/benchmark.h>
#include <muParser.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/PointEvaluation.h"
#include "engine/UserConstants.h"

namespace {

using namespace orvane;

constexpr std::array<double, 16> xs = {-0.9, -0.77, -0.65, -0.52, -0.41, -0.3,  -0.18, -0.05,
                                       0.07, 0.19,  0.31,  0.44,  0.56,  0.68,  0.79,  0.9};
constexpr std::array<double, 16> ys = {0.83, -0.12, 0.47, -0.66, 0.05,  0.71, -0.38, 0.29,
                                       -0.9, 0.61,  -0.24, 0.15,  -0.51, 0.9, 0.36,  -0.73};
constexpr double a = 2.37;  // the user constant of asintanh

const double halfpi = std::atan(1.0) * 2;

// The math object's formulas, as the engine computes them, without the error checks.
double nativeAsin(double X) {
  double N = std::fabs(X) != 1 ? -1 : 0, P = X == 1 ? -1 : 0, M = X == -1 ? -1 : 0;
  return -N * std::atan(X / std::sqrt(X * (X * N) + 1)) - halfpi * (P - M);
}
double nativeTanh(double X) {
  double m = std::exp(-X);
  return (-2 * m) / (m + std::exp(X)) + 1;
}

struct Formula {
  const char* id;
  const char* text;       // ours
  const char* muparser;   // the same in muParser's syntax
  double (*native)(double x, double y);
};

const Formula formulas[] = {
    {"poly2d", "(x-1)*x*(x+1)*(y-1)*y*(y+1)*5", "(x-1)*x*(x+1)*(y-1)*y*(y+1)*5",
     [](double x, double y) { return (x - 1) * x * (x + 1) * (y - 1) * y * (y + 1) * 5; }},
    {"sincos", "Sin(x)^2+Cos(x)^2", "sin(x)^2+cos(x)^2",
     [](double x, double) {
       double s = std::sin(x), c = std::cos(x);
       return s * s + c * c;
     }},
    {"sqrexp", "Sqr(x*x+1)/Exp(x)", "sqrt(x*x+1)/exp(x)",
     [](double x, double) { return std::sqrt(x * x + 1) / std::exp(x); }},
    {"asintanh", "Asin(x/2)+Tanh(x)*a", "Asin(x/2)+Tanh(x)*a",
     [](double x, double) { return nativeAsin(x / 2) + nativeTanh(x) * a; }},
    {"cubic", "x^3-2*x+1", "x^3-2*x+1", [](double x, double) { return x * x * x - 2 * x + 1; }},
    {"logatn", "Log(Abs(x)+1)*Atn(y)", "ln(abs(x)+1)*atan(y)",
     [](double x, double y) { return std::log(std::fabs(x) + 1) * std::atan(y); }},
};

struct Window {
  Class1 sh;
  ExpressionEngine engine;
  Window() {
    RegisterMathObject(engine, sh);
    UserConstants constants;
    constants.Add("a=2.37");
    constants.RegisterAll(engine);
  }
};

void viaEval(benchmark::State& state, const Formula& f) {
  Window w;
  std::string text = f.text;
  size_t i = 0;
  for (auto _ : state) {
    w.sh.x = xs[i & 15];
    w.sh.y = ys[i & 15];
    ++i;
    benchmark::DoNotOptimize(w.engine.Eval(text));
  }
}

void viaPointEvaluation(benchmark::State& state, const Formula& f) {
  Window w;
  std::string text = f.text;
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(EvaluateAt(w.engine, w.sh, text, xs[i & 15], ys[i & 15]));
    ++i;
  }
}

// A block of points at a time, as the sampling loops evaluate; the time is per block.
void viaBlock(benchmark::State& state, const Formula& f) {
  Window w;
  std::string text = f.text;
  double bx[BlockLanes], by[BlockLanes];
  for (int32_t i = 0; i < BlockLanes; ++i) {
    bx[i] = xs[static_cast<size_t>(i) & 15];
    by[i] = ys[static_cast<size_t>(i) & 15];
  }
  BlockOutcome outcome;
  for (auto _ : state) {
    TryEvaluateBlock(w.engine, w.sh, text, bx, by, BlockLanes, outcome);
    benchmark::DoNotOptimize(outcome.value[BlockLanes - 1]);
    benchmark::ClobberMemory();
  }
}

void viaNative(benchmark::State& state, const Formula& f) {
  size_t i = 0;
  auto fn = f.native;
  benchmark::DoNotOptimize(fn);
  for (auto _ : state) {
    double x = xs[i & 15], y = ys[i & 15];
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(y);
    benchmark::DoNotOptimize(fn(x, y));
    ++i;
  }
}

void viaMuParser(benchmark::State& state, const Formula& f) {
  mu::Parser p;
  double x = 0, y = 0, av = a;
  p.DefineVar("x", &x);
  p.DefineVar("y", &y);
  p.DefineVar("a", &av);
  // The math object's functions are part of the formulas' environment: the peer calls
  // the same formulas (natively, without error checks), so the comparison is of the
  // engines and not of two different arcsines.
  p.DefineFun("Asin", nativeAsin);
  p.DefineFun("Tanh", nativeTanh);
  p.SetExpr(f.muparser);
  p.Eval();
  size_t i = 0;
  for (auto _ : state) {
    x = xs[i & 15];
    y = ys[i & 15];
    ++i;
    benchmark::DoNotOptimize(p.Eval());
  }
}

// Formulas of 10,000 and 100,000 terms, Sin(x)+Sin(x)+...: the first Eval of a text
// compiles it (and runs it once, a small part of the time). Ten times the text should
// take about ten times as long: compilation is linear in the length of the formula.

std::string sumOfSines(int terms) {
  std::string text = "Sin(x)";
  text.reserve(7 * static_cast<size_t>(terms));
  for (int i = 1; i < terms; ++i) text += "+Sin(x)";
  return text;
}

void compileLongFormula(benchmark::State& state, int terms) {
  const std::string text = sumOfSines(terms);
  for (auto _ : state) {
    Window w;
    benchmark::DoNotOptimize(w.engine.Eval(text));
  }
}

// Keeps the fastest repetition's time per iteration, in nanoseconds, by benchmark name
// (the machine is shared; the minimum is the least disturbed measurement).
class Recorder : public benchmark::ConsoleReporter {
 public:
  Recorder() : ConsoleReporter(OO_Tabular) {}  // no colour codes, whatever the flags say
  std::map<std::string, double> ns;
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.run_type != Run::RT_Iteration) continue;
      std::string name = r.run_name.function_name;
      double t = r.GetAdjustedRealTime();
      if (!ns.count(name) || t < ns[name]) ns[name] = t;
    }
    ConsoleReporter::ReportRuns(runs);
  }
};

// The native functions must agree with the engine, or the floor measures something else;
// a block must give the points' own values.
bool nativeAgrees() {
  Window w;
  bool ok = true;
  BlockOutcome block;
  for (const Formula& f : formulas) {
    TryEvaluateBlock(w.engine, w.sh, f.text, xs.data(), ys.data(), static_cast<int32_t>(xs.size()), block);
    for (size_t i = 0; i < xs.size(); ++i)
      if (BlockPointError(block, static_cast<int32_t>(i)) || block.value[i] != f.native(xs[i], ys[i])) {
        std::fprintf(stderr, "%s differs in a block at x=%g y=%g\n", f.id, xs[i], ys[i]);
        ok = false;
      }
    for (size_t i = 0; i < xs.size(); ++i) {
      double ours = EvaluateAt(w.engine, w.sh, f.text, xs[i], ys[i]);
      double native = f.native(xs[i], ys[i]);
      if (ours != native) {
        std::fprintf(stderr, "%s differs at x=%g y=%g: %.17g vs %.17g\n", f.id, xs[i], ys[i], ours, native);
        ok = false;
      }
    }
  }
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (!nativeAgrees()) return 1;
  for (const Formula& f : formulas) {
    std::string id = f.id;
    benchmark::RegisterBenchmark(("eval/" + id).c_str(), [&f](benchmark::State& s) { viaEval(s, f); });
    benchmark::RegisterBenchmark(("point/" + id).c_str(), [&f](benchmark::State& s) { viaPointEvaluation(s, f); });
    benchmark::RegisterBenchmark(("block/" + id).c_str(), [&f](benchmark::State& s) { viaBlock(s, f); });
    benchmark::RegisterBenchmark(("native/" + id).c_str(), [&f](benchmark::State& s) { viaNative(s, f); });
    benchmark::RegisterBenchmark(("muparser/" + id).c_str(), [&f](benchmark::State& s) { viaMuParser(s, f); });
  }
  benchmark::RegisterBenchmark("compile/sum_of_sines_10k", [](benchmark::State& s) { compileLongFormula(s, 10000); });
  benchmark::RegisterBenchmark("compile/sum_of_sines_100k", [](benchmark::State& s) { compileLongFormula(s, 100000); });
  // Unless the command line says otherwise: many short repetitions, interleaved at
  // random, so a burst of load from elsewhere hits every variant alike.
  std::vector<char*> args(argv, argv + argc);
  std::vector<std::string> defaults = {"--benchmark_repetitions=12", "--benchmark_min_time=0.05",
                                       "--benchmark_enable_random_interleaving=true", "--benchmark_color=false"};
  for (std::string& flag : defaults) {
    std::string name = flag.substr(0, flag.find('='));
    bool given = false;
    for (int i = 1; i < argc; ++i) given |= std::string(argv[i]).starts_with(name);
    if (!given) args.push_back(flag.data());
  }
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());
  Recorder recorder;
  benchmark::RunSpecifiedBenchmarks(&recorder);
  benchmark::Shutdown();

  for (const Formula& f : formulas) {
    std::string id = f.id;
    double ours = recorder.ns["point/" + id];
    double native = recorder.ns["native/" + id];
    double peer = recorder.ns["muparser/" + id];
    if (ours <= 0 || native <= 0 || peer <= 0) continue;  // filtered out on the command line
    std::printf("figure engine.%s.ns %.2f ns\n", f.id, ours);
    std::printf("figure engine.%s.vs_native %.2f x\n", f.id, ours / native);
    std::printf("figure engine.%s.vs_muparser %.2f x\n", f.id, ours / peer);
    if (double block = recorder.ns["block/" + id] / BlockLanes; block > 0) {
      std::printf("figure engine.%s.block_ns %.2f ns\n", f.id, block);
      std::printf("figure engine.%s.block_vs_native %.2f x\n", f.id, block / native);
    }
  }
  if (double compile = recorder.ns["compile/sum_of_sines_100k"]; compile > 0) {
    std::printf("figure engine.compile_100k_terms %.1f ms\n", compile / 1e6);
    if (double tenth = recorder.ns["compile/sum_of_sines_10k"]; tenth > 0)
      std::printf("figure engine.compile_100k_vs_10k_terms %.1f x\n", compile / tenth);
  }
  return 0;
}
