#pragma once
// The numeric operations of the script language with their run-time error rules.
// Each takes an error slot that it sets (never clears) when the operation fails; the
// returned value is then meaningless. The evaluator, the constant folder and the math
// object all compute through these, so a formula gives the same bits and the same
// error number whichever path computed it.

#include <cmath>
#include <cstdint>

#include "platform/RuntimeError.h"

namespace orvane::vb {

constexpr double True = -1.0;
constexpr double False = 0.0;

inline double boolean(bool b) { return b ? True : False; }

// The first error of a computation is the one reported.
inline void raise(int32_t& error, int32_t number) {
  if (!error) error = number;
}

inline double checked(double r, int32_t& error) {
  if (!std::isfinite(r)) [[unlikely]]
    raise(error, err::Overflow);
  return r;
}

inline double add(double a, double b, int32_t& error) { return checked(a + b, error); }
inline double sub(double a, double b, int32_t& error) { return checked(a - b, error); }
inline double mul(double a, double b, int32_t& error) { return checked(a * b, error); }

// 0/0 is reported as overflow, as the language always has; any other x/0 is error 11.
inline double div(double a, double b, int32_t& error) {
  if (b == 0) [[unlikely]] {
    raise(error, a == 0 ? err::Overflow : err::DivisionByZero);
    return 0;
  }
  return checked(a / b, error);
}

// Squares and cubes are exact products so that x^2 and x*x agree to the last bit.
inline double pow(double a, double b, int32_t& error) {
  if (b == 2) return checked(a * a, error);
  if (b == 3) return checked(a * a * a, error);
  if ((a < 0 && b != std::trunc(b)) || (a == 0 && b < 0)) [[unlikely]] {
    raise(error, err::InvalidCall);
    return 0;
  }
  return checked(std::pow(a, b), error);
}

// Rounds half to even into the 32-bit range (the default rounding mode is to nearest
// even, which is the language's rule); out of range is overflow.
inline int32_t toLong(double a, int32_t& error) {
  double r = std::nearbyint(a);
  if (!(r >= -2147483648.0 && r <= 2147483647.0)) [[unlikely]] {
    raise(error, err::Overflow);
    return 0;
  }
  return static_cast<int32_t>(r);
}

inline int16_t toInteger(double a, int32_t& error) {
  double r = std::nearbyint(a);
  if (!(r >= -32768.0 && r <= 32767.0)) [[unlikely]] {
    raise(error, err::Overflow);
    return 0;
  }
  return static_cast<int16_t>(r);
}

inline double intDiv(double a, double b, int32_t& error) {
  int32_t x = toLong(a, error), y = toLong(b, error);
  if (error) return 0;
  if (y == 0) {
    raise(error, err::DivisionByZero);
    return 0;
  }
  return static_cast<double>(static_cast<int64_t>(x) / y);  // INT_MIN \ -1 fits a double
}

inline double mod(double a, double b, int32_t& error) {
  int32_t x = toLong(a, error), y = toLong(b, error);
  if (error) return 0;
  if (y == 0) {
    raise(error, err::DivisionByZero);
    return 0;
  }
  return static_cast<double>(static_cast<int64_t>(x) % y);  // sign of the dividend
}

inline double bitNot(double a, int32_t& error) { return ~toLong(a, error); }
inline double bitAnd(double a, double b, int32_t& error) { return toLong(a, error) & toLong(b, error); }
inline double bitOr(double a, double b, int32_t& error) { return toLong(a, error) | toLong(b, error); }
inline double bitXor(double a, double b, int32_t& error) { return toLong(a, error) ^ toLong(b, error); }
inline double bitEqv(double a, double b, int32_t& error) { return ~(toLong(a, error) ^ toLong(b, error)); }
inline double bitImp(double a, double b, int32_t& error) { return ~toLong(a, error) | toLong(b, error); }

inline double sqr(double a, int32_t& error) {
  if (!(a >= 0)) [[unlikely]] {
    raise(error, err::InvalidCall);
    return 0;
  }
  return std::sqrt(a);
}

inline double log(double a, int32_t& error) {
  if (!(a > 0)) [[unlikely]] {
    raise(error, err::InvalidCall);
    return 0;
  }
  return std::log(a);
}

inline double exp(double a, int32_t& error) { return checked(std::exp(a), error); }
inline double atn(double a) { return std::atan(a); }
inline double sin(double a) { return std::sin(a); }
inline double cos(double a) { return std::cos(a); }
// Both at once: compilers turn the pair into one library call that shares the argument
// reduction, and its results are those of sin and cos themselves.
inline void sinCos(double a, double& s, double& c) {
  s = std::sin(a);
  c = std::cos(a);
}
inline double tan(double a, int32_t& error) { return checked(std::tan(a), error); }
inline double abs(double a) { return std::fabs(a); }
inline double sgn(double a) { return a > 0 ? 1.0 : (a < 0 ? -1.0 : 0.0); }
inline double intPart(double a) { return std::floor(a); }  // Int floors
inline double fix(double a) { return std::trunc(a); }      // Fix truncates

inline double round(double a) { return std::nearbyint(a); }

// Round(a, places): half to even at the given number of decimal places.
inline double round(double a, double places, int32_t& error) {
  int32_t n = toLong(places, error);
  if (error) return 0;
  if (n < 0) {
    raise(error, err::InvalidCall);
    return 0;
  }
  if (n > 22) return a;
  double scale = std::pow(10.0, n);
  double scaled = a * scale;
  if (!std::isfinite(scaled)) return a;
  return std::nearbyint(scaled) / scale;
}

inline double cint(double a, int32_t& error) { return toInteger(a, error); }
inline double clng(double a, int32_t& error) { return toLong(a, error); }
// Beyond the largest single (plus half a unit in the last place) is overflow.
inline double csng(double a, int32_t& error) {
  if (!(std::fabs(a) < 3.4028235677973366e38)) [[unlikely]] {
    raise(error, err::Overflow);
    return 0;
  }
  return static_cast<float>(a);
}
inline double cbool(double a) { return boolean(a != 0); }

}  // namespace orvane::vb
