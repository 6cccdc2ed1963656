#pragma once
// The decimal-separator guard. The program reads and writes numbers with a point;
// when the user's locale uses another separator, the user is warned and asked whether
// to run on. The program's own number text always uses "." (platform/NumberText), so
// running on changes nothing outside the process and "restore" leaves the user's
// settings exactly as they were found.

#include <functional>
#include <string>

namespace orvane {

class Dialogs;

class DecimalPoint {
 public:
  // Where the user's separator comes from; tests inject their own.
  using SeparatorSource = std::function<std::string()>;

  explicit DecimalPoint(Dialogs& dialogs, SeparatorSource source = userSeparator);

  // The decimal separator of the user's numeric locale (LC_ALL, LC_NUMERIC, LANG, the
  // first that is set); "." for the C locale or a locale this system does not have.
  static std::string userSeparator();
  // The warning's text: its lines joined by carriage returns.
  static std::string warningText();

  // Reads the separator and, when it is not ".", asks the user. Returns false when the
  // user refuses (No or Cancel): the program must end before any window is shown.
  bool Check();
  // Gives the user's own separator back; runs on every unload of the main window.
  void Restore();

  const std::string& savedSeparator() const { return saved_; }
  bool pointInForce() const { return pointInForce_; }
  int restoreCount() const { return restoreCount_; }

 private:
  Dialogs& dialogs_;
  SeparatorSource source_;
  std::string saved_;
  bool pointInForce_ = false;
  int restoreCount_ = 0;
};

}  // namespace orvane
