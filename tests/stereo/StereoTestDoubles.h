#pragma once
// Test doubles for the stereo routines: an expression reader driven by a table, a
// surface evaluator driven by lambdas (one per formula text), and a recording picture.

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

// Texts it knows give their value; "fail:<n>" raises error n; any other text is read as
// a plain number.
class TableReader : public ExpressionReader {
 public:
  std::map<std::string, double, std::less<>> values{{"pi/2", 1.5707963267948966}, {"pi", 3.141592653589793}};
  double evalSetting(std::string_view text) override {
    if (text.substr(0, 5) == "fail:") throw RuntimeError(static_cast<int32_t>(leadingNumber(text.substr(5))));
    if (auto it = values.find(text); it != values.end()) return it->second;
    return leadingNumber(text);
  }
};

// A formula: the value at (x, y, u, v), or throws RuntimeError for no value.
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

// The calls of one kind a picture recorded, in order.
inline std::vector<CanvasCall> callsOf(const RecordingCanvas& c, CanvasCall::Kind kind) {
  std::vector<CanvasCall> out;
  for (const CanvasCall& call : c.calls())
    if (call.kind == kind) out.push_back(call);
  return out;
}

// A stereo picture, 400 x 400 pixels as designed, that also notes whether its image was
// persistent when saved, writes a small stand-in file (its name) where it saves, and can
// be told to fail saving.
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
