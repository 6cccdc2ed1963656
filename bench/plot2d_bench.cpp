// Speed of the 2-D study window's two heaviest commands: one whole plot on a 600 x 400
// picture (plot step 1, grid and labels on) and an integral refined to 2^20 panels,
// both through the expression engine as the window runs them, polling a stop check
// (Esc) at every evaluation; and one wheel step on the window's picture with the plot
// it draws, as the mouse sends it.

#include <benchmark/benchmark.h>

#include "BenchRun.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QWheelEvent>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/PointEvaluation.h"
#include "platform/ScriptedDialogs.h"
#include "platform/StopCheck.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/QImageCanvas.h"
#include "plot2d/Derivatives.h"
#include "plot2d/EngineFunction.h"
#include "plot2d/Integrator.h"
#include "plot2d/PlotDrawing.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/Workbench.h"

namespace {

using namespace orvane;

constexpr const char* kFormula = "Sin(x)*Exp(-x/5)";
constexpr int kWidth = 600, kHeight = 400;
constexpr double kDpi = 96;

// The window's engine with its math object, as frmPlot sets them up, and the stop
// check its long commands poll (never told to stop here).
struct Window {
  ExpressionEngine engine;
  Class1 sh;
  StopCheck stop{[] { return false; }};
  Window() { RegisterMathObject(engine, sh); }
};

PlotRequest plotRequest() {
  PlotRequest r;
  r.setup = PlotSetup{-2, 20, -1.25f, 1.25f, 0, 0, 1, 0.25f, 1};
  r.options.grid = true;
  r.options.labelWindow = true;
  r.options.labelDivisions = true;
  r.options.fittedFunction = true;
  r.options.xlower = 0;
  r.options.xupper = 10;
  r.width = static_cast<float>(kWidth * 1440 / kDpi);
  r.height = static_cast<float>(kHeight * 1440 / kDpi);
  return r;
}

void plot600x400(benchmark::State& state) {
  Window w;
  EngineFunction f(w.engine, w.sh, kFormula);
  DerivativeEvaluator d(f);
  d.setStopCheck(&w.stop);
  QImageCanvas picture(kWidth, kHeight, kDpi);
  const PlotRequest request = plotRequest();
  for (auto _ : state) {
    picture.Cls();
    benchmark::DoNotOptimize(drawPlot(picture, d, request));
  }
}

// The study window on the same plot as plot600x400, a wheel notch in and one out in
// turn about the picture's centre, so that every step draws the same two windows.
void wheelZoom600x400(benchmark::State& state) {
  Workbench workbench;
  workbench.fitted = true;
  ScriptedDialogs dialogs;
  frmPlot window(workbench, dialogs);
  const std::pair<const char*, const char*> fields[] = {
      {"txtEquation", kFormula}, {"txtWindowlx", "-2"}, {"txtWindowgx", "20"}, {"txtWindowly", "-1.25"},
      {"txtWindowgy", "1.25"},   {"txtXorigin", "0"},   {"txtYorigin", "0"},  {"txtDivx", "2"},
      {"txtDivy", "0.25"},       {"txtPlotStep", "1"}};
  for (const auto& [name, text] : fields) window.findChild<QLineEdit*>(name)->setText(text);
  for (const char* name : {"chkGrid", "chkWindow", "chkDivisions"}) window.findChild<QCheckBox*>(name)->setChecked(true);
  auto* picture = window.findChild<PictureBox*>("Picture1");
  auto* lowX = window.findChild<QLineEdit*>("txtWindowlx");
  if (picture->canvas().pixelWidth() != kWidth || picture->canvas().pixelHeight() != kHeight) {
    state.SkipWithError("the picture is not 600 x 400");
    return;
  }
  const QPointF centre(kWidth / 2.0, kHeight / 2.0);
  int notch = 120;
  for (auto _ : state) {
    QWheelEvent wheel(centre, centre, {}, {0, notch}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(picture, &wheel);
    notch = -notch;
  }
  // Zoomed in, the window starts at 3.5; out again, at -2.
  if (lowX->text() != (notch > 0 ? "-2" : "3.5") || !window.graphDrawn())
    state.SkipWithError("the wheel did not move the window");
}

StudySettings integralSettings() {
  StudySettings s;
  s.equation = kFormula;
  s.xlower = 0;
  s.xupper = 10;
  s.n = 1 << 20;
  s.err = 1e-6;  // met long before: the minimum panel count decides the end
  s.maxcy = 30;
  return s;
}

void integral2p20(benchmark::State& state) {
  Window w;
  EngineFunction f(w.engine, w.sh, kFormula);
  DerivativeEvaluator d(f);
  d.setStopCheck(&w.stop);
  const StudySettings s = integralSettings();
  for (auto _ : state) benchmark::DoNotOptimize(integrate(d, s));
}

// The integral must be the one measured: 2^20 panels give the exact value to
// rounding.
bool integralIsRight() {
  Window w;
  EngineFunction f(w.engine, w.sh, kFormula);
  DerivativeEvaluator d(f);
  d.setStopCheck(&w.stop);
  const IntegralResult r = integrate(d, integralSettings());
  // The antiderivative of sin(x) e^(-x/5) is -e^(-x/5) (sin x / 5 + cos x) / (1 + 1/25).
  auto F = [](double x) { return -std::exp(-x / 5) * (std::sin(x) / 5 + std::cos(x)) / 1.04; };
  const double exact = F(10) - F(0);
  if (!r.computed || std::fabs(r.value - exact) > 1e-9) {
    std::fprintf(stderr, "integral %.17g, expected %.17g (error %d)\n", r.value, exact, r.error);
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  // Text and the window need an application (fonts, widgets), not a screen.
  if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  int qtArgc = 1;
  QApplication app(qtArgc, argv);
  if (!integralIsRight()) return 1;

  benchmark::RegisterBenchmark("plot_600x400", plot600x400)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("integral_2p20", integral2p20)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("wheel_zoom", wheelZoom600x400)->Unit(benchmark::kMillisecond);
  const orvane::bench::FastestRuns runs =
      orvane::bench::RunBenchmarks(argc, argv, {"--benchmark_repetitions=5"});

  if (runs.has("plot_600x400"))
    std::printf("figure plot2d.plot_600x400 %.2f ms\n", runs["plot_600x400"]);
  if (runs.has("integral_2p20"))
    std::printf("figure plot2d.integral_2p20 %.2f ms\n", runs["integral_2p20"]);
  if (runs.has("wheel_zoom")) std::printf("figure plot2d.wheel_zoom %.2f ms\n", runs["wheel_zoom"]);
  return 0;
}
