#include "plot2d/StudySettings.h"

#include <algorithm>
#include <cmath>

#include "platform/NumberText.h"

namespace orvane {

StudySettings readStudySettings(const StudyFieldTexts& texts) {
  StudySettings s;
  s.equation = texts.equation;
  s.xlower = leadingNumber(texts.xlower);
  s.xupper = leadingNumber(texts.xupper);
  s.n = toInt32(leadingNumber(texts.subintervals));
  s.err = leadingNumber(texts.error);
  s.maxcy = toInt32(leadingNumber(texts.maxcy));
  s.k = toInt32(leadingNumber(texts.derivative));
  return s;
}

std::string subintervalsOnValidate(std::string_view text) {
  const double value = roundHalfEven(leadingNumber(text));
  if (value < 2) return "2";
  return formatGeneral(value);
}

std::string subintervalsOnLostFocus(std::string_view text) {
  const double value = leadingNumber(text);
  if (!(value >= 2)) return "2";  // validation keeps it there; never take Log of less
  double p = std::log(value) / std::log(2.0);
  if (std::floor(p) < p) p = std::floor(p) + 1;
  return formatGeneral(std::pow(2.0, p));
}

MaxcyCheck maxcyOnValidate(std::string_view maxcyText, std::string_view subintervalsText) {
  MaxcyCheck check{std::string(maxcyText), 0};
  const double subintervals = leadingNumber(subintervalsText);
  if (!(subintervals > 0)) return check;  // no logarithm to compare with
  check.log2Subintervals = std::log(subintervals) / std::log(2.0);
  if (leadingNumber(maxcyText) < check.log2Subintervals - 1) {
    check.text = formatGeneral(check.log2Subintervals - 1);
  }
  return check;
}

bool errorBoundAccepted(std::string_view text) { return leadingNumber(text) > 0; }

std::string plotStepOnValidate(std::string_view text) {
  const double value = std::clamp(roundHalfEven(leadingNumber(text)), 1.0, 80.0);
  return formatGeneral(value);
}

std::optional<LimitField> limitPairFocus(LimitField leaving, std::string_view lowerText,
                                         std::string_view upperText) {
  if (leadingNumber(upperText) > leadingNumber(lowerText)) return std::nullopt;
  return leaving == LimitField::Lower ? LimitField::Upper : LimitField::Lower;
}

}  // namespace orvane
