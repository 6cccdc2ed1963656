#pragma once
// The way from the regression window to the study windows: Plot opens the 2-D study for
// one variable or the stereo surface for two, with the fitted function written into its
// formula field; the main window stays disabled until the study window closes.

namespace orvane {

class Dialogs;
class frmOrvane;

void ConnectPlotWindows(frmOrvane& main, Dialogs& dialogs);

}  // namespace orvane
