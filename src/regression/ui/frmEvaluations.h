#pragma once
// The evaluation window: the fitted model's estimate at a point the user types in,
// one field per independent variable (as many as the problem has; the list scrolls).

#include <QWidget>
#include <vector>

#include "regression/RegressionProblem.h"

class QGroupBox;
class QLabel;
class QPushButton;
class QScrollArea;

namespace orvane {

class Dialogs;
class TextBox;

class frmEvaluations : public QWidget {
  Q_OBJECT

 public:
  // Evaluates the problem's fit; closed by the main window when the fit is cleared.
  frmEvaluations(const RegressionProblem& problem, Dialogs& dialogs, QWidget* parent = nullptr);

  QGroupBox* fraEval;
  QScrollArea* scrollEval;
  std::vector<QLabel*> lblVarx;   // objectName "lblVarx0", "lblVarx1", ...
  std::vector<TextBox*> txtVarx;  // objectName "txtVarx0", "txtVarx1", ...
  QLabel* lblAppr;
  QLabel* lblApprox;
  QPushButton* cmdCompute;
  QPushButton* cmdExit;

 private slots:
  void cmdCompute_Click();
  void cmdExit_Click();

 private:
  void Form_Load();

  const RegressionProblem& problem_;
  Dialogs& dialogs_;
};

}  // namespace orvane
