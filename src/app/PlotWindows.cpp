#include "app/PlotWindows.h"

#include <QString>

#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/ui/frmOrvane.h"
#include "stereo/ui/frmStereoPlot.h"

namespace orvane {

namespace {

// Shows a study window that hands the main window back when it unloads.
template <typename Window>
void showStudy(frmOrvane& main, Window* window) {
  QObject::connect(window, &Window::unloaded, &main, [&main, window] {
    main.setEnabled(true);
    window->deleteLater();
  });
  window->show();
  window->raise();
  window->activateWindow();
}

}  // namespace

void ConnectPlotWindows(frmOrvane& main, Dialogs& dialogs) {
  QObject::connect(&main, &frmOrvane::plotRequested, &main, [&main, &dialogs](int m, const QString& text) {
    if (m == 1) {
      auto* plot = new frmPlot(main.workbench(), dialogs);
      plot->txtEquation->setText(text);
      showStudy(main, plot);
    } else if (m == 2) {
      auto* stereo = new frmStereoPlot(main.workbench(), dialogs);
      stereo->txtEquationZ->setText(text);
      showStudy(main, stereo);
    } else {
      main.setEnabled(true);  // nothing to plot for three or more variables
    }
  });
}

}  // namespace orvane
