#pragma once
// Test doubles for the stereo routines: a table-driven expression reader, a surface of
// lambdas (one per formula text) and a recording picture that can save a stand-in file.

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/RecordingCanvas.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "stereo/StereoSettings.h"
#include "stereo/SurfaceEvaluator.h"

namespace orvane::testing {

// Known texts give their value, "fail:<n>" raises error n, others read as a plain number.
class TableReader : public ExpressionReader {
 public:
  std::map<std::string, double, std::less<>> values{{"pi/2", 1.5707963267948966}, {"pi", 3.141592653589793}};
  double evalSetting(std::string_view text) override {
    if (text.substr(0, 5) == "fail:") throw RuntimeError(static_cast<int32_t>(leadingNumber(text.substr(5))));
    if (auto it = values.find(text); it != values.end()) return it->second;
    return leadingNumber(text);
  }
};

using Formula = std::function<double(double x, double y, double u, double v)>;

class LambdaSurface : public SurfaceEvaluator {
 public:
  std::map<std::string, Formula, std::less<>> formulas;
  int calls = 0;
  double evaluate(std::string_view formula, double x, double y, double u, double v) override {
    ++calls;
    auto it = formulas.find(formula);
    if (it == formulas.end()) throw RuntimeError(424, "Object required");
    return it->second(x, y, u, v);
  }
};

// Each value within 1e-5 of the one expected.
inline bool near(const std::vector<float>& got, const std::vector<float>& expected) {
  return std::ranges::equal(got, expected, [](float a, float b) { return std::fabs(a - b) < 1e-5f; });
}

inline std::vector<CanvasCall> callsOf(const RecordingCanvas& c, CanvasCall::Kind kind) {
  std::vector<CanvasCall> out;
  for (const CanvasCall& call : c.calls())
    if (call.kind == kind) out.push_back(call);
  return out;
}

// 400 x 400; notes whether its image was persistent when saved and writes its name there.
class StereoPicture : public RecordingCanvas {
 public:
  StereoPicture() : RecordingCanvas(400, 400) {}
  mutable std::vector<bool> persistentAtSave;
  bool saveFails = false;
  std::string name = "picture";
  bool SavePicture(const std::string& path) const override {
    persistentAtSave.push_back(AutoRedraw());
    RecordingCanvas::SavePicture(path);
    if (saveFails) return false;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << name;
    return static_cast<bool>(out);
  }
};

}  // namespace orvane::testing
