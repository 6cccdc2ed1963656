#pragma once
// What a plot window sets up around its formulas, without the window: an engine with
// the math object registered as "sh" and the user constants. Engine errors that a
// window would show in a message box are written to the error stream instead, each
// distinct error once per command.

#include <ostream>
#include <set>
#include <string>
#include <utility>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/UserConstants.h"

namespace orvane {

// Writes "error N: DESCRIPTION" lines, each distinct one once.
class ErrorReport {
 public:
  explicit ErrorReport(std::ostream& err) : err_(err) {}
  void show(int32_t number, const std::string& description);
  void show(const RuntimeError& error) { show(error.number(), error.description()); }
  // The error that ended a command, known by its number only: written with its
  // standard description unless an error of that number has already been written.
  void failed(int32_t number);
  // A message of the program's own (a file that cannot be read, a singular system).
  void message(const std::string& text) { err_ << text << "\n"; }
  // How many distinct errors have been written.
  size_t errorsShown() const { return shown_.size(); }

 private:
  std::ostream& err_;
  std::set<std::pair<int32_t, std::string>> shown_;
};

class FormulaWindow {
 public:
  explicit FormulaWindow(ErrorReport& report);
  FormulaWindow(const FormulaWindow&) = delete;
  FormulaWindow& operator=(const FormulaWindow&) = delete;

  // Adds "name=value" as cmdAddCons does; false when the entry is refused.
  bool addConstant(const std::string& entry) { return constants_.Add(entry); }
  // Runs every constant in list order, as before each computation. RuntimeError when
  // one fails (already reported).
  void registerConstants() { constants_.RegisterAll(engine_); }
  const UserConstants& constants() const { return constants_; }

  ExpressionEngine& engine() { return engine_; }
  Class1& sh() { return sh_; }

 private:
  ErrorReport& report_;
  ExpressionEngine engine_;
  Class1 sh_;
  int32_t evaluationError_ = 0;
  UserConstants constants_;
};

}  // namespace orvane
