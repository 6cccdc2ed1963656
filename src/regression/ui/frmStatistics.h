#pragma once
// The Statistics window: for the current fit, the coefficient table (estimate as listed,
// standard error, t value, p value, 95% interval), the summary lines down to digits
// trusted, and the residual plot against the fitted values or one variable. It follows
// the fit: the main window refreshes it on Compute and Open and when the results are
// cleared. Print sends it to a printer or a PDF file; Copy puts it on the clipboard as
// text.

#include <QWidget>

#include "regression/Workbench.h"

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QTableWidget;

namespace orvane {

class Dialogs;
class PictureBox;

class frmStatistics : public QWidget {
  Q_OBJECT

 public:
  frmStatistics(const Workbench& workbench, Dialogs& dialogs, QWidget* parent = nullptr);

  // Shows the workbench's summary, or empties the window when there is none.
  void Refresh();

  QTableWidget* grdCoefficients;
  QListWidget* lstSummary;
  QLabel* lblWarning;
  QLabel* lblResiduals;
  QComboBox* cboResiduals;
  PictureBox* picResiduals;
  QPushButton* cmdPrint;
  QPushButton* cmdCopy;
  QPushButton* cmdExit;

 private slots:
  void cboResiduals_Click();
  void picResiduals_Resized();
  void cmdPrint_Click();
  void cmdCopy_Click();
  void cmdExit_Click();

 private:
  void fillTable(const FitSummary& summary);
  void DrawResiduals();

  const Workbench& workbench_;
  Dialogs& dialogs_;
  bool redrawPending_ = false;
};

}  // namespace orvane
