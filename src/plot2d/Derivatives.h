#pragma once
// f(x) and its numerical derivatives D(k, x), k = 0..9 (the value panel goes beyond),
// with the difference steps each caller sets before it evaluates.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/StopCheck.h"
#include "plot2d/FunctionOfX.h"

namespace orvane {

// i! for i = 0..33; any other i is RuntimeError 9 (subscript out of range).
double factorial(int32_t i);

// The step state shared by every evaluation of the window: step h, doubled step h2,
// squared doubled step h2sq and the high-order scale factor s.
struct DifferenceSteps {
  double h = 0;
  double h2 = 0;
  double h2sq = 0;
  double s = 0;
};

class DerivativeEvaluator {
 public:
  explicit DerivativeEvaluator(FunctionOfX& f) : f_(f) {}

  // f itself; throws RuntimeError (a non-finite value is error 6). Every evaluation of
  // every routine passes here, so this is where long work is stopped: it polls the
  // stop check first, which throws WorkInterrupted once the owner says stop.
  double f(double x);
  // f at xs[0..n) as calls of f in order would take them, up to the first point that
  // fails: returns how many leading values are in ys (FunctionOfX::tryEvalBlock), and
  // throws the first point's error when it fails itself. Polls the stop check once.
  int32_t f(const double* xs, int32_t n, double* ys);

  // The check each evaluation polls; none (the default) never stops.
  void setStopCheck(StopCheck* stop) { stop_ = stop; }
  StopCheck* stopCheck() const { return stop_; }

  // Step settings, one per use. The plot's settings depend on the derivative order;
  // orders above 33 fail with error 9 once the steps are already changed.
  void prepareForPlot(int32_t k);
  void prepareForValuePanel(int32_t k);
  void prepareForRoots();
  void prepareForExtrema();

  // The point the high orders (k >= 3) are taken at: they ignore their argument, so a
  // caller stores the point here first.
  void storePoint(double x0) { x0_ = x0; }
  double storedPoint() const { return x0_; }
  const DifferenceSteps& steps() const { return steps_; }

  // D(0, x) = f(x); 1 and 2 are the three-point central differences at x; any other k
  // is the high-order formula at the stored point. Throws RuntimeError.
  double D(int32_t k, double x);
  // The same without throwing: 0 and the value in y, or the error number.
  int32_t tryD(int32_t k, double x, double& y);
  // D(k, x) at xs[0..n) in order, up to the first point where it fails: returns how
  // many leading values are in ys, and throws the first point's error when it fails
  // itself. Orders 0 to 2 evaluate f over whole blocks; higher orders are taken at
  // each point, which becomes the stored point.
  int32_t D(int32_t k, const double* xs, int32_t n, double* ys);

 private:
  double highOrder(int32_t k);
  double firstDifference(double ahead, double behind) const;
  double secondDifference(double ahead, double here, double behind) const;

  FunctionOfX& f_;
  StopCheck* stop_ = nullptr;
  DifferenceSteps steps_;
  double x0_ = 0;
};

// What the "Evaluation of function or derivatives" frame shows after "&Value=": the
// value as text, or an empty text and the error number that ended the computation.
struct ValuePanelResult {
  std::string text;
  int32_t error = 0;
};

// derNumText is "Which derivative?" (0 = the function), xEvalText is "At x=". Orders 1
// and 2 use five-point formulas; any other non-zero order (negative ones too) is D.
ValuePanelResult computeValuePanel(DerivativeEvaluator& d, std::string_view derNumText,
                                   std::string_view xEvalText);

}  // namespace orvane
