#include "engine/Class1.h"

#include <cmath>

#include "engine/VbMath.h"

namespace orvane {

// The formulas are evaluated step by step in the language's own order, through its
// checked operations, so each raises the error the script would have met first.
// N, P and M are comparisons used as numbers (-1 true, 0 false): at |X| = 1 the
// radicand becomes exactly 1 and the Atn term is multiplied by 0.

// Asin, Acos and Tanh sit in sampling loops: they compute with plain arithmetic first
// (the same operations in the same order, so the same bits) and redo the computation
// step by step only when a non-finite value or a zero divisor shows something failed.

double Class1::Asin(double X) {
  double N = vb::boolean(std::fabs(X) != 1), P = vb::boolean(X == 1), M = vb::boolean(X == -1);
  double s = std::sqrt(X * (X * N) + 1);
  double r = -N * std::atan(X / s) - halfpi * (P - M);
  if (std::isfinite(r) && s > 0) [[likely]]
    return r;
  return asinChecked(X);
}

double Class1::asinChecked(double X) {
  int32_t err = 0;
  double N = vb::boolean(std::fabs(X) != 1), P = vb::boolean(X == 1), M = vb::boolean(X == -1);
  double t = vb::mul(X, N, err);
  t = vb::mul(X, t, err);
  t = vb::add(t, 1, err);
  t = vb::sqr(t, err);
  t = vb::div(X, t, err);
  double left = vb::mul(-N, vb::atn(t), err);
  double right = vb::mul(halfpi, P - M, err);
  return finish(err, vb::sub(left, right, err));
}

double Class1::Acos(double X) {
  double N = vb::boolean(std::fabs(X) != 1), P = vb::boolean(X == 1), M = vb::boolean(X == -1);
  double ends = (P - M) * halfpi;
  double s = std::sqrt(X * (X * N) + 1);
  double r = halfpi + (ends + N * std::atan(X / s));
  if (std::isfinite(r) && s > 0) [[likely]]
    return r;
  return acosChecked(X);
}

double Class1::acosChecked(double X) {
  int32_t err = 0;
  double N = vb::boolean(std::fabs(X) != 1), P = vb::boolean(X == 1), M = vb::boolean(X == -1);
  double ends = vb::mul(P - M, halfpi, err);
  double t = vb::mul(X, N, err);
  t = vb::mul(X, t, err);
  t = vb::add(t, 1, err);
  t = vb::sqr(t, err);
  t = vb::div(X, t, err);
  double inner = vb::add(ends, vb::mul(N, vb::atn(t), err), err);
  return finish(err, vb::add(halfpi, inner, err));
}

double Class1::Sinh(double X) {
  int32_t err = 0;
  double a = vb::exp(X, err);
  double b = vb::exp(-X, err);
  return finish(err, vb::mul(vb::sub(a, b, err), 0.5, err));
}

double Class1::Cosh(double X) {
  int32_t err = 0;
  double a = vb::exp(X, err);
  double b = vb::exp(-X, err);
  return finish(err, vb::mul(vb::add(a, b, err), 0.5, err));
}

// Written as 1 - 2e^-X / (e^X + e^-X), so both exponentials are computed and a large
// |X| overflows rather than giving +-1. Exp(-X) appears twice in the formula; it is
// the same value both times, so it is computed once.
double Class1::Tanh(double X) {
  double a = std::exp(-X);
  double b = std::exp(X);
  double r = (-2 * a) / (a + b) + 1;
  if (std::isfinite(a) && std::isfinite(b) && std::isfinite(r)) [[likely]]
    return r;
  return tanhChecked(X);
}

double Class1::tanhChecked(double X) {
  int32_t err = 0;
  double a = vb::exp(-X, err);
  double numerator = vb::mul(-2, a, err);
  double b = vb::exp(X, err);
  double q = vb::div(numerator, vb::add(a, b, err), err);
  return finish(err, vb::add(q, 1, err));
}

double Class1::Asinh(double X) {
  int32_t err = 0;
  double t = vb::add(vb::mul(X, X, err), 1, err);
  t = vb::add(X, vb::sqr(t, err), err);
  return finish(err, vb::log(t, err));
}

double Class1::Acosh(double X) {
  int32_t err = 0;
  double t = vb::sub(vb::mul(X, X, err), 1, err);
  t = vb::add(X, vb::sqr(t, err), err);
  return finish(err, vb::log(t, err));
}

double Class1::Atanh(double X) {
  int32_t err = 0;
  double a = vb::add(1, X, err);
  double b = vb::sub(1, X, err);
  double t = vb::log(vb::div(a, b, err), err);
  return finish(err, vb::mul(t, 0.5, err));
}

double Class1::finish(int32_t error, double value) {
  if (error == 0) return value;
  ierr = error;
  if (sharedError) *sharedError = error;
  return 0;
}

namespace {

template <double (Class1::*F)(double)>
double thunk(ScriptObject& self, double argument, int32_t&) {
  return (static_cast<Class1&>(self).*F)(argument);
}

}  // namespace

std::vector<ScriptMember> Class1::scriptMembers() {
  return {
      ScriptMember::field("pi", pi),
      ScriptMember::field("halfpi", halfpi),
      ScriptMember::field("e", e),
      ScriptMember::field("x", x),
      ScriptMember::field("y", y),
      ScriptMember::field("u", u),
      ScriptMember::field("v", v),
      ScriptMember::field("ierr", ierr),
      ScriptMember::method("Asin", thunk<&Class1::Asin>),
      ScriptMember::method("Acos", thunk<&Class1::Acos>),
      ScriptMember::method("Sinh", thunk<&Class1::Sinh>),
      ScriptMember::method("Cosh", thunk<&Class1::Cosh>),
      ScriptMember::method("Tanh", thunk<&Class1::Tanh>),
      ScriptMember::method("Asinh", thunk<&Class1::Asinh>),
      ScriptMember::method("Acosh", thunk<&Class1::Acosh>),
      ScriptMember::method("Atanh", thunk<&Class1::Atanh>),
  };
}

}  // namespace orvane
