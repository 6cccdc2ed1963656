#pragma once
// The math object registered in each formula window as "sh" with its members global:
// the carrier of the variables and constants, and the inverse trigonometric and
// hyperbolic functions the language lacks. A function that fails does not raise: it
// records the error number in `ierr` (and in the shared evaluation-error field when
// one is attached) and returns 0; the caller checks `ierr` after the evaluation.

#include <cstdint>
#include <vector>

#include "engine/ScriptObject.h"

namespace orvane {

class Class1 : public ScriptObject {
 public:
  double pi = 0;
  double halfpi = 0;
  double e = 0;
  double x = 0;
  double y = 0;
  double u = 0;
  double v = 0;
  int32_t ierr = 0;

  // The regression window's evaluation-error field, also written on a failure; may be null.
  int32_t* sharedError = nullptr;

  double Asin(double X);
  double Acos(double X);
  double Sinh(double X);
  double Cosh(double X);
  double Tanh(double X);
  double Asinh(double X);
  double Acosh(double X);
  double Atanh(double X);

  std::vector<ScriptMember> scriptMembers() override;
  int32_t* failureField() override { return &ierr; }

 private:
  double asinChecked(double X);
  double acosChecked(double X);
  double tanhChecked(double X);
  double finish(int32_t error, double value);
};

}  // namespace orvane
