#include "app/SubMain.h"

#include <QApplication>
#include <QList>
#include <QPointer>
#include <QWidget>
#include <chrono>
#include <cmath>

#include "app/PlotWindows.h"
#include "app/frmAbout.h"
#include "platform/Dialogs.h"
#include "regression/ui/frmOrvane.h"

namespace orvane {

double SubMain::systemClock() {
  using namespace std::chrono;
  return duration<double>(system_clock::now().time_since_epoch()).count();
}

SubMain::SubMain(Dialogs& dialogs, Clock clock, DecimalPoint::SeparatorSource separator)
    : dialogs_(dialogs), clock_(std::move(clock)), decimalPoint_(dialogs, std::move(separator)) {}

SubMain::~SubMain() = default;

bool SubMain::Start(const std::string& fileToOpen) {
  if (!decimalPoint_.Check()) return false;

  about_ = std::make_unique<frmAbout>();
  about_->show();
  about_->PrintSplash();
  dialogs_.DoEvents();
  waitPastTwoSecondBoundaries();
  about_->close();

  main_ = std::make_unique<frmOrvane>(dialogs_);
  connect(main_.get(), &frmOrvane::aboutRequested, this, &SubMain::mnuAbout_Click);
  connect(main_.get(), &frmOrvane::unloaded, this, &SubMain::frmOrvane_Unload);
  ConnectPlotWindows(*main_, dialogs_);
  main_->show();
  if (!fileToOpen.empty()) main_->OpenFile(fileToOpen);  // a file that will not open is reported there
  return true;
}

// A busy wait on purpose: no events run, so the splash cannot be clicked away. It ends
// once more than two whole-second boundaries have passed since the start.
void SubMain::waitPastTwoSecondBoundaries() {
  const double start = std::floor(clock_());
  while (std::floor(clock_()) - start <= 2) {
  }
}

void SubMain::mnuAbout_Click() {
  about_->show();
  about_->raise();
  about_->PrintSplash();
}

void SubMain::frmOrvane_Unload() {
  if (unloading_) return;
  unloading_ = true;
  decimalPoint_.Restore();
  // Closing one window may delete another, so each is held by a guarded pointer.
  QList<QPointer<QWidget>> windows;
  for (QWidget* window : QApplication::topLevelWidgets()) windows.append(window);
  for (const QPointer<QWidget>& window : windows)
    if (window && window != main_.get() && window->isVisible()) window->close();
  QCoreApplication::exit(0);
}

}  // namespace orvane
