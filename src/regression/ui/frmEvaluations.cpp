#include "regression/ui/frmEvaluations.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "platform/Dialogs.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "platform/ui/TextBox.h"
#include "regression/Solver.h"

namespace orvane {

frmEvaluations::frmEvaluations(const RegressionProblem& problem, Dialogs& dialogs, QWidget* parent)
    : QWidget(parent, Qt::Window), problem_(problem), dialogs_(dialogs) {
  setObjectName(QStringLiteral("frmEvaluations"));
  setWindowTitle(QStringLiteral("Estimates"));

  fraEval = new QGroupBox(QStringLiteral("Evaluation Point"));
  fraEval->setObjectName(QStringLiteral("fraEval"));
  fraEval->setToolTip(QStringLiteral("Enter values for each variable"));
  scrollEval = new QScrollArea();
  scrollEval->setObjectName(QStringLiteral("scrollEval"));
  scrollEval->setWidgetResizable(true);
  scrollEval->setFrameShape(QFrame::NoFrame);
  auto* frameLayout = new QVBoxLayout(fraEval);
  frameLayout->addWidget(scrollEval);

  lblAppr = new QLabel(QStringLiteral("Estimate="));
  lblAppr->setObjectName(QStringLiteral("lblAppr"));
  lblApprox = new QLabel(QStringLiteral("Derivative"));
  lblApprox->setObjectName(QStringLiteral("lblApprox"));
  lblApprox->setTextInteractionFlags(Qt::TextSelectableByMouse);
  cmdCompute = new QPushButton(QStringLiteral("Compute"));
  cmdCompute->setObjectName(QStringLiteral("cmdCompute"));
  cmdCompute->setToolTip(QStringLiteral("Evaluate approximation and function"));
  cmdExit = new QPushButton(QStringLiteral("E&xit"));
  cmdExit->setObjectName(QStringLiteral("cmdExit"));

  auto* estimate = new QHBoxLayout();
  estimate->addWidget(lblAppr);
  estimate->addWidget(lblApprox, 1);
  auto* buttons = new QHBoxLayout();
  buttons->addWidget(cmdCompute);
  buttons->addStretch();
  buttons->addWidget(cmdExit);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(fraEval, 1);
  layout->addLayout(estimate);
  layout->addLayout(buttons);

  connect(cmdCompute, &QPushButton::clicked, this, &frmEvaluations::cmdCompute_Click);
  connect(cmdExit, &QPushButton::clicked, this, &frmEvaluations::cmdExit_Click);
  Form_Load();
  TextBox::reportErrorsTo(this, dialogs_);
}

void frmEvaluations::Form_Load() {
  auto* fields = new QWidget();
  auto* grid = new QGridLayout(fields);
  const int m = std::max(0, problem_.m);
  for (int i = 0; i < m; ++i) {
    const std::string name = static_cast<size_t>(i) < problem_.names.size() ? problem_.names[static_cast<size_t>(i)] : "";
    auto* label = new QLabel(QString::fromStdString(name + "="));
    label->setObjectName(QStringLiteral("lblVarx%1").arg(i));
    auto* field = new TextBox();
    field->setObjectName(QStringLiteral("txtVarx%1").arg(i));
    field->setNumberField(true);
    grid->addWidget(label, i, 0);
    grid->addWidget(field, i, 1);
    lblVarx.push_back(label);
    txtVarx.push_back(field);
  }
  grid->setRowStretch(m, 1);
  scrollEval->setWidget(fields);
  if (!txtVarx.empty()) setTabOrder(txtVarx.back(), cmdCompute);
}

void frmEvaluations::cmdCompute_Click() {
  std::vector<std::string> texts;
  texts.reserve(txtVarx.size());
  for (const TextBox* field : txtVarx) texts.push_back(field->text().toStdString());
  try {
    lblApprox->setText(QString::fromStdString(formatGeneral(EstimateAt(problem_, texts))));
  } catch (const RuntimeError& error) {
    ShowRunTimeError(dialogs_, error);  // an estimate beyond the range of a double
  }
}

void frmEvaluations::cmdExit_Click() { close(); }

}  // namespace orvane
