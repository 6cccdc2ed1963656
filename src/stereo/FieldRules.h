#pragma once
// The checks the stereo window's fields make when they validate or lose the focus,
// and what the representation switch changes on the form. No check shows a message:
// the window keeps or moves the focus on a refusal.

#include <string_view>

#include "stereo/StereoSettings.h"

namespace orvane {

// Each rule is given for the field's text, as the window checks it, and for its value,
// as an imported file is checked, so that the two never disagree.

// Range limits (x/u or y/v): both evaluated; equal limits are accepted. False also when
// either text has no value.
bool RangeLimitsValid(ExpressionReader& reader, std::string_view lower, std::string_view upper);
bool RangeLimitsValid(double lower, double upper);
// Window limits: the lower must be strictly below the upper (a zero extent would divide
// by zero in the depth slopes).
bool WindowLimitsValid(ExpressionReader& reader, std::string_view lower, std::string_view upper);
bool WindowLimitsValid(double lower, double upper);
// Spacings, segments and number of dots: a whole number of at least 1.
bool CountFieldValid(std::string_view text);
bool CountValueValid(double value);
// Number of reference lines: a whole number of at least 0.
bool GridFieldValid(std::string_view text);
bool GridValueValid(double value);
// Reduction factor: above 0 and at most 1.
bool ReduceFieldValid(ExpressionReader& reader, std::string_view text);
bool ReduceValueValid(double value);
// Order of a partial derivative: a whole number 0, 1 or 2.
bool DerivativeOrderValid(std::string_view text);
// Both orders together: their sum must not exceed 2.
bool DerivativeOrderSumValid(std::string_view xder, std::string_view yder);

// The captions, tooltips and visibility that follow chkParametric.
struct RepresentationLook {
  std::string_view lblZ;            // "z(x,y)=" / "z(u,v)="
  std::string_view equationZTip;    // tooltip of txtEquationZ
  std::string_view lblxu, lblyv;    // range frame labels
  std::string_view lblSpacexu;      // also lblSegsxu
  std::string_view lblSpaceyv;      // also lblSegsyv
  bool showParametricEquations;     // lblX, txtEquationX, lblY, txtEquationY
  bool showDerivativeFrames;        // FraDer, fraAccuracy
};

const RepresentationLook& LookFor(bool parametric);

// The tooltip of txtEquationX and txtEquationY, whatever the representation.
extern const std::string_view kParametricEquationTip;

}  // namespace orvane
