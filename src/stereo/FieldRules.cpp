#include "stereo/FieldRules.h"

#include <cmath>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"

namespace orvane {

const std::string_view kParametricEquationTip = "Function must be entered in terms of \"u\" and \"v\"";

namespace {

constexpr RepresentationLook kExplicitLook{
    "z(x,y)=", "Function must be entered in terms of \"x\" and \"y\"", "<=x<=", "<=y<=", "x:", "y:",
    false, true};
constexpr RepresentationLook kParametricLook{
    "z(u,v)=", "Function must be entered in terms of \"u\" and \"v\"", "<=u<=", "<=v<=", "u:", "v:",
    true, false};

// Evaluates both limits; false when either has no value.
bool evaluatePair(ExpressionReader& reader, std::string_view lower, std::string_view upper,
                  double& lo, double& hi) {
  try {
    lo = reader.evalSetting(lower);
    hi = reader.evalSetting(upper);
  } catch (const RuntimeError&) {
    return false;
  }
  return !std::isnan(lo) && !std::isnan(hi);
}

bool wholeNumber(double v) { return std::isfinite(v) && v == std::floor(v); }

}  // namespace

bool RangeLimitsValid(double lower, double upper) { return lower <= upper; }

bool RangeLimitsValid(ExpressionReader& reader, std::string_view lower, std::string_view upper) {
  double lo = 0, hi = 0;
  return evaluatePair(reader, lower, upper, lo, hi) && RangeLimitsValid(lo, hi);
}

bool WindowLimitsValid(double lower, double upper) { return lower < upper; }

bool WindowLimitsValid(ExpressionReader& reader, std::string_view lower, std::string_view upper) {
  double lo = 0, hi = 0;
  return evaluatePair(reader, lower, upper, lo, hi) && WindowLimitsValid(lo, hi);
}

bool CountValueValid(double v) { return wholeNumber(v) && v >= 1 && v <= 2147483647.0; }

bool CountFieldValid(std::string_view text) { return CountValueValid(leadingNumber(text)); }

bool GridValueValid(double v) { return wholeNumber(v) && v >= 0 && v <= 2147483647.0; }

bool GridFieldValid(std::string_view text) { return GridValueValid(leadingNumber(text)); }

bool ReduceValueValid(double v) { return v > 0 && v <= 1; }

bool ReduceFieldValid(ExpressionReader& reader, std::string_view text) {
  try {
    return ReduceValueValid(reader.evalSetting(text));
  } catch (const RuntimeError&) {
    return false;
  }
}

bool DerivativeOrderValid(std::string_view text) {
  const double v = leadingNumber(text);
  return wholeNumber(v) && v >= 0 && v <= 2;
}

bool DerivativeOrderSumValid(std::string_view xder, std::string_view yder) {
  return leadingNumber(xder) + leadingNumber(yder) <= 2;
}

const RepresentationLook& LookFor(bool parametric) {
  return parametric ? kParametricLook : kExplicitLook;
}

}  // namespace orvane
