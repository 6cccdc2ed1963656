#pragma once
// The "Study specifications" of the 2-D window: the values every study command reads,
// and the corrections applied to the fields as the user leaves them.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// The texts of the fields the study commands read, as typed.
struct StudyFieldTexts {
  std::string equation;      // txtEquation
  std::string xlower;        // txtXlower
  std::string xupper;        // txtXupper
  std::string subintervals;  // txtSubintervals
  std::string error;         // txtError
  std::string maxcy;         // txtMaxcy
  std::string derivative;    // cboDerivative text: "Function", "1st.derivative", ...
};

struct StudySettings {
  std::string equation;
  double xlower = 0;
  double xupper = 0;
  int32_t n = 0;  // (minimum) number of subintervals
  double err = 0;
  int32_t maxcy = 0;
  int32_t k = 0;  // plotted derivative order, 0 = the function
};

// Each value is the leading number of its text (0 when there is none); the counts are
// rounded half to even. A count beyond 32 bits is RuntimeError 6.
StudySettings readStudySettings(const StudyFieldTexts& texts);

// txtSubintervals on validation: the rounded value, at least 2.
std::string subintervalsOnValidate(std::string_view text);
// txtSubintervals on losing the focus: rounded up to a power of two.
std::string subintervalsOnLostFocus(std::string_view text);

// txtMaxcy on validation: raised to log2(subintervals) - 1 when below it; the window
// keeps log2 of the subintervals as well.
struct MaxcyCheck {
  std::string text;
  double log2Subintervals = 0;
};
MaxcyCheck maxcyOnValidate(std::string_view maxcyText, std::string_view subintervalsText);

// txtError on validation: a bound that is not positive is refused (the focus stays).
bool errorBoundAccepted(std::string_view text);

// txtPlotStep on validation: the rounded value kept within 1..80, so that the curve
// always advances.
std::string plotStepOnValidate(std::string_view text);

// A pair of limit fields (txtXlower/txtXupper, txtWindowlx/txtWindowgx, ...): when the
// field being left makes the pair inverted or empty (upper <= lower), the focus goes
// to the other field of the pair; nullopt lets it leave. The texts are not changed.
enum class LimitField { Lower, Upper };
std::optional<LimitField> limitPairFocus(LimitField leaving, std::string_view lowerText,
                                         std::string_view upperText);

}  // namespace orvane
