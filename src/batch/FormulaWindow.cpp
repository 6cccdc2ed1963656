#include "batch/FormulaWindow.h"

#include "engine/PointEvaluation.h"

namespace orvane {

void ErrorReport::show(int32_t number, const std::string& description) {
  if (!shown_.emplace(number, description).second) return;
  err_ << "error " << number << ": " << description << "\n";
}

void ErrorReport::failed(int32_t number) {
  for (const auto& shown : shown_)
    if (shown.first == number) return;
  show(RuntimeError(number));
}

FormulaWindow::FormulaWindow(ErrorReport& report) : report_(report) {
  // As the plot windows' error event: the numbers met while sampling stay silent.
  engine_.SetErrorHandler([this](const RuntimeError& e) {
    if (!isSilencedError(e.number())) report_.show(e);
  });
  sh_.sharedError = &evaluationError_;
  RegisterMathObject(engine_, sh_);
}

}  // namespace orvane
