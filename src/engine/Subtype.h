#pragma once
// The kinds of number the script language distinguishes (a number is a Boolean, an
// Integer, a Long, a Single or a Double) and how the kind of each operation's result
// follows from its operands'. The rules are those of the language's variant
// arithmetic: the more precise operand decides, a Single meeting a Long gives a Double,
// an Integer result too large for an Integer becomes a Long, a Long one a Double, a
// Single one a Double. Values are always held as doubles; a Single is a double that
// holds a float's value.

#include <cmath>
#include <cstdint>

namespace orvane {

enum class Subtype : uint8_t {
  Boolean,
  Integer,
  Long,
  Single,
  Double,
  Variant,  // the compiler's "known only when the code runs"; never a value's kind
};

namespace vb {

// Beyond the largest single (plus half a unit in its last place) a double does not
// round to a finite single.
constexpr double SingleLimit = 3.4028235677973366e38;

inline bool fitsSingle(double v) { return std::fabs(v) < SingleLimit; }

// A Boolean counts as an Integer in arithmetic.
inline Subtype arithmetic(Subtype t) { return t == Subtype::Boolean ? Subtype::Integer : t; }

// Negation, Abs, Int, Fix and Round keep the kind, a Boolean giving an Integer.
inline Subtype signedType(Subtype t) { return arithmetic(t); }

// + - *: the more precise operand's kind, except that a Single and a Long give a Double.
inline Subtype sumType(Subtype a, Subtype b) {
  if (a == Subtype::Double || b == Subtype::Double) return Subtype::Double;
  if (a == Subtype::Variant || b == Subtype::Variant) return Subtype::Variant;
  a = arithmetic(a);
  b = arithmetic(b);
  if ((a == Subtype::Single && b == Subtype::Long) || (a == Subtype::Long && b == Subtype::Single))
    return Subtype::Double;
  return a > b ? a : b;
}

// /: a Double, unless a Single meets a Single or an Integer (or Boolean).
inline Subtype quotientType(Subtype a, Subtype b) {
  if (a == Subtype::Double || b == Subtype::Double) return Subtype::Double;
  if (a == Subtype::Variant || b == Subtype::Variant) return Subtype::Variant;
  a = arithmetic(a);
  b = arithmetic(b);
  bool single = a == Subtype::Single || b == Subtype::Single;
  bool narrow = a != Subtype::Long && b != Subtype::Long;
  return single && narrow ? Subtype::Single : Subtype::Double;
}

// \ and Mod: an Integer when both operands are Integers (or Booleans), else a Long.
inline Subtype wholeQuotientType(Subtype a, Subtype b) {
  if (a == Subtype::Variant || b == Subtype::Variant) return Subtype::Variant;
  return arithmetic(a) == Subtype::Integer && arithmetic(b) == Subtype::Integer ? Subtype::Integer : Subtype::Long;
}

// And Or Xor Eqv Imp: Boolean for two Booleans, Integer for Integers and Booleans,
// else Long.
inline Subtype bitwiseType(Subtype a, Subtype b) {
  if (a == Subtype::Variant || b == Subtype::Variant) return Subtype::Variant;
  if (a == Subtype::Boolean && b == Subtype::Boolean) return Subtype::Boolean;
  return wholeQuotientType(a, b);
}

// Not keeps a Boolean, an Integer or a Long; anything else becomes a Long.
inline Subtype notType(Subtype t) {
  return t == Subtype::Boolean || t == Subtype::Integer || t == Subtype::Variant ? t : Subtype::Long;
}

// The result's kind after overflow: an Integer beyond its range becomes a Long, a Long
// beyond its range a Double, a Single beyond its range a Double; a Single that fits is
// rounded to single precision.
inline double settle(double v, Subtype& t) {
  switch (t) {
    case Subtype::Integer:
      if (v >= -32768.0 && v <= 32767.0) return v;
      t = Subtype::Long;
      [[fallthrough]];
    case Subtype::Long:
      if (v >= -2147483648.0 && v <= 2147483647.0) return v;
      t = Subtype::Double;
      return v;
    case Subtype::Single:
      if (fitsSingle(v)) return static_cast<float>(v);
      t = Subtype::Double;
      return v;
    default:
      return v;
  }
}

// Two numbers are compared at single precision when either is a Single (both as they
// stand when one does not fit a single).
inline void alignForComparison(double& a, Subtype ta, double& b, Subtype tb) {
  if ((ta == Subtype::Single || tb == Subtype::Single) && fitsSingle(a) && fitsSingle(b)) {
    a = static_cast<float>(a);
    b = static_cast<float>(b);
  }
}

}  // namespace vb
}  // namespace orvane
