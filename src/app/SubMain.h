#pragma once
// The start-up routine: the decimal-separator guard, the splash, the main window; and
// the end of the run when the main window unloads.

#include <QObject>
#include <functional>
#include <memory>
#include <string>

#include "app/DecimalPoint.h"

namespace orvane {

class Dialogs;
class frmAbout;
class frmOrvane;

class SubMain : public QObject {
  Q_OBJECT

 public:
  // Seconds since the epoch, fractional; tests inject a clock that moves on its own.
  using Clock = std::function<double()>;
  static double systemClock();

  explicit SubMain(Dialogs& dialogs, Clock clock = systemClock,
                   DecimalPoint::SeparatorSource separator = DecimalPoint::userSeparator);
  ~SubMain() override;

  // Runs the start-up sequence, then opens `fileToOpen` (a regression file pair or a
  // table of text) when one is given; false when the user refused the decimal point and
  // the program must end without showing a window.
  bool Start(const std::string& fileToOpen = {});

  DecimalPoint& decimalPoint() { return decimalPoint_; }
  frmAbout* about() const { return about_.get(); }
  frmOrvane* mainWindow() const { return main_.get(); }

 private slots:
  void mnuAbout_Click();
  void frmOrvane_Unload();

 private:
  void waitPastTwoSecondBoundaries();

  Dialogs& dialogs_;
  Clock clock_;
  DecimalPoint decimalPoint_;
  std::unique_ptr<frmAbout> about_;
  std::unique_ptr<frmOrvane> main_;
  bool unloading_ = false;
};

}  // namespace orvane
