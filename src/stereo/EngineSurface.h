#pragma once
// The stereo routines' two views of a window's expression engine: the surface formulas
// evaluated at a point through the math object, and the setting fields evaluated as
// expressions (so that a window limit typed as pi/2 is accepted).

#include <memory>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "stereo/StereoSettings.h"
#include "stereo/SurfaceEvaluator.h"

namespace orvane {

// Puts x, y, u and v into the math object, clears its error field, evaluates, and turns
// a non-zero error field into an error of that number.
class EngineSurface : public SurfaceEvaluator {
 public:
  EngineSurface(ExpressionEngine& engine, Class1& sh) : engine_(engine), sh_(sh) {}

  double evaluate(std::string_view formula, double x, double y, double u, double v) override;
  int32_t tryEvaluate(std::string_view formula, double x, double y, double u, double v,
                      double& value) override;
  // Up to one block of points through the engine's block evaluation.
  int32_t tryEvaluateBlock(std::string_view formula, const double* x, const double* y, const double* u,
                           const double* v, int32_t n, double* values, int32_t& error) override;

 private:
  ExpressionEngine& engine_;
  Class1& sh_;
  std::unique_ptr<BlockOutcome> block_;  // made on the first block
};

// A setting field's value: the engine's Eval of its text.
class EngineReader : public ExpressionReader {
 public:
  explicit EngineReader(ExpressionEngine& engine) : engine_(engine) {}
  double evalSetting(std::string_view text) override { return engine_.Eval(text); }

 private:
  ExpressionEngine& engine_;
};

}  // namespace orvane
