// One whole stereo plot, as the Plot button draws it, into two 400 x 400 images: the
// default surface with its mesh and 5,000 random dots, and the same with the mixed
// derivative Zxy by the five-point formulas (16 evaluations of the formula per point).
// Then what a drag on a picture does for each move of the pointer: one rotation step
// written to the fields, the settings read again and both pictures redrawn (and, for
// red-cyan viewing, the one picture composed from them).

#include <benchmark/benchmark.h>

#include "BenchRun.h"

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/PointEvaluation.h"
#include "platform/StopCheck.h"
#include "platform/ui/QImageCanvas.h"
#include "stereo/EngineSurface.h"
#include "stereo/StereoRender.h"
#include "stereo/StereoSettings.h"
#include "stereo/ViewControls.h"

namespace {

using namespace orvane;

// The stereo window's share of a plot: its engine, math object, pictures and settings.
struct StereoWindow {
  ExpressionEngine engine;
  Class1 sh;
  EngineSurface surface{engine, sh};
  EngineReader reader{engine};
  QImageCanvas left{400, 400, 96}, right{400, 400, 96};
  SurfaceParameters uv;
  DotGenerator random{12345};
  StopCheck stop{[] { return false; }};  // polled at every evaluation, as the window's
  StereoSettings settings;

  explicit StereoWindow(const StereoFields& fields) {
    RegisterMathObject(engine, sh);
    settings = ReadPlotSettings(fields, reader).settings;
  }

  void plot() {
    left.Cls();
    right.Cls();
    ApplyPlotAppearance(left, right, settings);
    const StereoPlot plot{settings, surface, uv, random, {}, true, &stop};
    DrawStereoPlot(left, right, plot);
  }

  // One move of the pointer during a drag, a few pixels right and down.
  void dragStep(StereoFields& fields, ViewAngles& angles) {
    angles = DragRotation(angles, 3, 1);
    ShowAngles(angles, fields);
    settings = ReadPlotSettings(fields, reader, settings).settings;
    plot();
  }
};

StereoFields withDots(int xder, int yder) {
  StereoFields f;
  f.lines = true;
  f.dots = true;
  f.ndots = "5000";
  f.xder = std::to_string(xder);
  f.yder = std::to_string(yder);
  f.accuracy = kAccuracyHigh;
  return f;
}

void plotDefault(benchmark::State& state) {
  StereoWindow w(withDots(0, 0));
  for (auto _ : state) w.plot();
}

void plotZxyHigh(benchmark::State& state) {
  StereoWindow w(withDots(1, 1));
  for (auto _ : state) w.plot();
}

void dragRedraw(benchmark::State& state) {
  StereoFields fields = withDots(0, 0);
  StereoWindow w(fields);
  ViewAngles angles;
  for (auto _ : state) w.dragStep(fields, angles);
}

void dragRedrawAnaglyph(benchmark::State& state) {
  StereoFields fields = withDots(0, 0);
  StereoWindow w(fields);
  QImageCanvas anaglyph(400, 400, 96);
  ViewAngles angles;
  for (auto _ : state) {
    w.dragStep(fields, angles);
    anaglyph.showImage(RedCyanAnaglyph(w.left.image(), w.right.image()));
  }
}

// A plot that drew nothing would be fast for the wrong reason.
bool drawsTheSurface(const StereoFields& fields) {
  StereoWindow w(fields);
  w.plot();
  const QImage& image = w.right.image();
  int ink = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) ink += (image.pixel(x, y) & 0xFFFFFF) == 0;
  if (ink < 3000) std::fprintf(stderr, "only %d pixels of the surface drawn\n", ink);
  return ink >= 3000;
}

}  // namespace

int main(int argc, char** argv) {
  if (!drawsTheSurface(withDots(0, 0)) || !drawsTheSurface(withDots(1, 1))) return 1;
  benchmark::RegisterBenchmark("plot_5000dots", plotDefault)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("plot_zxy_high_5000dots", plotZxyHigh)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("drag_redraw", dragRedraw)->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("drag_redraw_anaglyph", dragRedrawAnaglyph)->Unit(benchmark::kMillisecond);
  const orvane::bench::FastestRuns runs =
      orvane::bench::RunBenchmarks(argc, argv, {"--benchmark_repetitions=5"});
  for (const char* name : {"plot_5000dots", "plot_zxy_high_5000dots", "drag_redraw", "drag_redraw_anaglyph"})
    if (runs.has(name)) std::printf("figure stereo.%s %.2f ms\n", name, runs[name]);
  return 0;
}
