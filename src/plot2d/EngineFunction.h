#pragma once
// f(x) as the study window evaluates it: the window's formula text run through its
// expression engine, with x placed on the window's math object. A blank formula (the
// window opened before the regression was computed) has no value anywhere: error 5,
// silently, so a plot of the data alone raises no message.

#include <memory>
#include <string>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "plot2d/FunctionOfX.h"

namespace orvane {

class EngineFunction final : public FunctionOfX {
 public:
  EngineFunction(ExpressionEngine& engine, Class1& sh, std::string formula)
      : engine_(engine), sh_(sh), formula_(std::move(formula)) {}

  // RuntimeError from the engine, or with the number the math object recorded.
  double operator()(double x) override;
  // The same without throwing, for the sampling loops.
  int32_t tryEval(double x, double& y) override;
  // Whole blocks through the engine's block evaluation.
  int32_t tryEvalBlock(const double* xs, int32_t n, double* ys, int32_t& error) override;

  const std::string& formula() const { return formula_; }

 private:
  ExpressionEngine& engine_;
  Class1& sh_;
  std::string formula_;
  std::unique_ptr<BlockOutcome> block_;  // made on the first block
};

}  // namespace orvane
