#include "FuzzChecks.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/PointEvaluation.h"
#include "regression/RegressionFile.h"
#include "stereo/StereoExport.h"

namespace orvane::fuzz {

namespace {

// ---- Engine ----

struct Window {
  Class1 sh;
  ExpressionEngine engine;
  explicit Window(bool optimize) {
    engine.SetOptimize(optimize);
    engine.SetErrorHandler([](const RuntimeError&) {});
    RegisterMathObject(engine, sh);
  }
};

struct Outcome {
  double value = 0;
  int32_t number = 0;
};

template <class F>
Outcome attempt(F&& f) {
  Outcome o;
  try {
    o.value = f();
  } catch (const RuntimeError& e) {
    o.number = e.number();
  }
  return o;
}

bool same(const Outcome& a, const Outcome& b) {
  if (a.number != b.number) return false;
  if (a.number != 0) return true;
  return std::bit_cast<uint64_t>(a.value) == std::bit_cast<uint64_t>(b.value) ||
         (std::isnan(a.value) && std::isnan(b.value));
}

std::string disagreement(const Outcome& a, const Outcome& b, const char* what, std::string_view text,
                         const char* first, const char* second) {
  std::ostringstream m;
  m.precision(17);
  m << what << " of \"" << text << "\": " << first << " " << a.value << " (error " << a.number << "), " << second
    << " " << b.value << " (error " << b.number << ")";
  return m.str();
}

std::string_view takeLine(std::string_view& rest) {
  const size_t end = rest.find('\n');
  std::string_view line = rest.substr(0, end);
  rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end + 1);
  return line;
}

constexpr double kPoints[] = {0.0, 1.0, -2.5, 1e-300, 1e300, std::numeric_limits<double>::infinity()};

// ---- Files ----

std::string trimmed(const std::string& name) {
  const size_t first = name.find_first_not_of(" \t");
  if (first == std::string::npos) return {};
  return name.substr(first, name.find_last_not_of(" \t") - first + 1);
}

bool sameFields(const StereoFields& a, const StereoFields& b) {
  return a.parametric == b.parametric && a.equationZ == b.equationZ && a.equationX == b.equationX &&
         a.equationY == b.equationY && a.rangelxu == b.rangelxu && a.rangegxu == b.rangegxu &&
         a.rangelyv == b.rangelyv && a.rangegyv == b.rangegyv && a.spacexu == b.spacexu &&
         a.spaceyv == b.spaceyv && a.segsxu == b.segsxu && a.segsyv == b.segsyv && a.windowlx == b.windowlx &&
         a.windowgx == b.windowgx && a.windowly == b.windowly && a.windowgy == b.windowgy &&
         a.windowlz == b.windowlz && a.windowgz == b.windowgz && a.xrot == b.xrot && a.yrot == b.yrot &&
         a.zrot == b.zrot && a.xtr == b.xtr && a.ytr == b.ytr && a.ztr == b.ztr && a.stereo == b.stereo &&
         a.reduce == b.reduce && a.background == b.background && a.ndots == b.ndots && a.grid == b.grid &&
         a.xorigin == b.xorigin && a.yorigin == b.yorigin && a.zorigin == b.zorigin && a.divx == b.divx &&
         a.divy == b.divy && a.divz == b.divz && a.xder == b.xder && a.yder == b.yder;
}

}  // namespace

std::string CheckEngine(std::string_view input) {
  std::string_view rest = input;
  const std::string_view statements = takeLine(rest);
  const std::string_view expression = takeLine(rest);
  const std::string_view code = rest;

  Window fast(true), slow(false);
  Window* both[] = {&fast, &slow};

  Outcome ran[2];
  for (int k = 0; k < 2; ++k)
    ran[k] = attempt([&] {
      both[k]->engine.ExecuteStatement(statements);
      return 0.0;
    });
  if (!same(ran[0], ran[1])) return disagreement(ran[0], ran[1], "ExecuteStatement", statements, "optimized", "plain");

  for (double x : kPoints) {
    Outcome byEval[2], byPoint[2], byTry[2], bySurface[2];
    for (int k = 0; k < 2; ++k) {
      Window& w = *both[k];
      w.sh.x = x;
      byEval[k] = attempt([&] { return w.engine.Eval(expression); });
      byPoint[k] = attempt([&] { return EvaluateAt(w.engine, w.sh, expression, x); });
      double value = 0;
      byTry[k].number = TryEvaluateAt(w.engine, w.sh, expression, x, value);
      byTry[k].value = byTry[k].number ? 0 : value;
      bySurface[k] = attempt([&] { return EvaluateAt(w.engine, w.sh, expression, x, -x, SurfaceVariables::UV); });
    }
    if (!same(byEval[0], byEval[1])) return disagreement(byEval[0], byEval[1], "Eval", expression, "optimized", "plain");
    if (!same(byPoint[0], byPoint[1]))
      return disagreement(byPoint[0], byPoint[1], "EvaluateAt", expression, "optimized", "plain");
    if (!same(byTry[0], byTry[1]))
      return disagreement(byTry[0], byTry[1], "TryEvaluateAt", expression, "optimized", "plain");
    if (!same(bySurface[0], bySurface[1]))
      return disagreement(bySurface[0], bySurface[1], "EvaluateAt(u, v)", expression, "optimized", "plain");
    // The throwing and the non-throwing point evaluation are one computation.
    if (!same(byPoint[0], byTry[0]))
      return disagreement(byPoint[0], byTry[0], "point evaluation", expression, "EvaluateAt", "TryEvaluateAt");
  }

  // A block of all the points at once (failing ones among them) gives each point's own
  // outcome, in x alone and in (u, v).
  constexpr int32_t kCount = static_cast<int32_t>(std::size(kPoints));
  double minus[kCount];
  for (int32_t i = 0; i < kCount; ++i) minus[i] = -kPoints[i];
  BlockOutcome block;
  for (int k = 0; k < 2; ++k) {
    Window& w = *both[k];
    for (bool surface : {false, true}) {
      const SurfaceVariables variables = surface ? SurfaceVariables::UV : SurfaceVariables::XY;
      TryEvaluateBlock(w.engine, w.sh, expression, kPoints, surface ? minus : nullptr, kCount, block, variables);
      for (int32_t i = 0; i < kCount; ++i) {
        Outcome point;
        point.number = surface ? TryEvaluateAt(w.engine, w.sh, expression, kPoints[i], minus[i], point.value, variables)
                               : TryEvaluateAt(w.engine, w.sh, expression, kPoints[i], point.value);
        const Outcome lane{BlockPointError(block, i) ? 0 : block.value[i], BlockPointError(block, i)};
        if (point.number) point.value = 0;
        if (!same(lane, point)) return disagreement(lane, point, "a block's lane", expression, "block", "point");
      }
    }
  }

  for (int k = 0; k < 2; ++k)
    ran[k] = attempt([&] {
      both[k]->engine.AddCode(code);
      return 0.0;
    });
  if (!same(ran[0], ran[1])) return disagreement(ran[0], ran[1], "AddCode", code, "optimized", "plain");
  // The variables the code made are seen by the expression in both engines alike.
  const Outcome after[2] = {attempt([&] { return fast.engine.Eval(expression); }),
                            attempt([&] { return slow.engine.Eval(expression); })};
  if (!same(after[0], after[1]))
    return disagreement(after[0], after[1], "Eval after AddCode", expression, "optimized", "plain");
  return "";
}

std::string CheckRegressionFile(std::string_view input) {
  const size_t split = input.find('\0');
  const std::string problemText(input.substr(0, split));
  const std::string dataText(split == std::string_view::npos ? std::string_view{} : input.substr(split + 1));

  RegressionProblem problem;
  try {
    problem = ParseRegressionFiles("fuzz.reg", problemText, dataText);
  } catch (const RegressionFileError& e) {
    return std::string_view(e.what()).empty() ? "a refusal without a message" : "";
  }
  if (problem.m < 1 || problem.N < 0) return "counts out of range accepted";
  if (problem.names.size() != static_cast<size_t>(problem.m)) return "names do not match m";
  if (problem.A.size() < static_cast<size_t>(problem.m) + 1) return "coefficients shorter than m + 1";
  if (problem.X.lastColumn() != problem.m + 1 || problem.X.lastRow() != problem.N)
    return "data matrix of the wrong shape";

  // Blanks around a name are not kept by the file (the window's names have none).
  for (std::string& name : problem.names) name = trimmed(name);
  const std::string problemOut = ProblemText(problem);
  const std::string dataOut = DataText(problem);
  RegressionProblem again;
  try {
    again = ParseRegressionFiles("fuzz.reg", problemOut, dataOut);
  } catch (const RegressionFileError& e) {
    return std::string("an accepted problem cannot be read back once written: ") + e.what();
  }
  if (ProblemText(again) != problemOut || DataText(again) != dataOut)
    return "writing and reading again changes the files";
  return "";
}

std::string CheckStereoImport(std::string_view input) {
  const std::string text(input);
  const StereoFields current;
  const StereoImport read = ParseStereoFile(text, "fuzz.ste", current);
  switch (read.status) {
    case ImportStatus::Ok:
      if (!read.message.empty() || read.line != 0) return "a full read with a fault message";
      break;
    case ImportStatus::Incompatible:
      if (read.message != kIncompatibleFile || !sameFields(read.fields, current) || !read.constants.empty())
        return "an incompatible file changed the fields";
      break;
    case ImportStatus::Malformed:
      if (read.message.empty() || read.line < 1) return "a malformed file without line or message";
      if (read.message.size() > 2000) return "a message too long for a message box";
      break;
    case ImportStatus::Unreadable:
      return "text cannot be unreadable";
  }
  if (read.status == ImportStatus::Ok) {
    const StereoImport again = ParseStereoFile(text, "fuzz.ste", read.fields);
    if (again.status != ImportStatus::Ok || !sameFields(again.fields, read.fields) ||
        again.constants != read.constants)
      return "reading the same file twice differs";
  }
  return "";
}

}  // namespace orvane::fuzz
