#include "regression/ui/frmStatistics.h"

#include <QComboBox>
#include <QFont>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <cmath>
#include <new>

#include "platform/Dialogs.h"
#include "platform/NumberText.h"
#include "platform/PrinterPage.h"
#include "platform/RuntimeError.h"
#include "platform/ui/PictureBox.h"
#include "regression/ResidualPlot.h"
#include "regression/StatisticsReport.h"

namespace orvane {

namespace {

QString qs(const std::string& text) { return QString::fromStdString(text); }

template <typename T>
T* named(T* widget, const char* name) {
  widget->setObjectName(QString::fromLatin1(name));
  return widget;
}

// A cell: the program's number form, empty where the figure has no value.
QString cellText(double v) {
  if (std::isnan(v)) return {};
  if (std::isinf(v)) return v > 0 ? QStringLiteral("Inf") : QStringLiteral("-Inf");
  return qs(formatGeneral(v));
}

}  // namespace

frmStatistics::frmStatistics(const Workbench& workbench, Dialogs& dialogs, QWidget* parent)
    : QWidget(parent, Qt::Window), workbench_(workbench), dialogs_(dialogs) {
  setObjectName(QStringLiteral("frmStatistics"));
  setWindowTitle(QStringLiteral("Statistics"));

  grdCoefficients = named(new QTableWidget(0, 7), "grdCoefficients");
  grdCoefficients->setHorizontalHeaderLabels({QStringLiteral("Coefficient"), QStringLiteral("Estimate"),
                                              QStringLiteral("Std. Error"), QStringLiteral("t value"),
                                              QStringLiteral("Pr(>|t|)"), QStringLiteral("2.5 %"),
                                              QStringLiteral("97.5 %")});
  grdCoefficients->verticalHeader()->setVisible(false);
  grdCoefficients->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grdCoefficients->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  lstSummary = named(new QListWidget(), "lstSummary");
  QFont fixed(QStringLiteral("Courier New"));
  fixed.setStyleHint(QFont::TypeWriter);
  lstSummary->setFont(fixed);
  // Room for the summary's lines, no more: the table and the plot take the rest.
  lstSummary->setFixedHeight(QFontMetrics(fixed).lineSpacing() * 9 + 2 * lstSummary->frameWidth() + 6);
  lblWarning = named(new QLabel(), "lblWarning");
  lblWarning->setStyleSheet(QStringLiteral("color: #c00000"));
  lblWarning->setWordWrap(true);
  lblWarning->setVisible(false);
  lblResiduals = named(new QLabel(QStringLiteral("&Residuals against:")), "lblResiduals");
  cboResiduals = named(new QComboBox(), "cboResiduals");
  cboResiduals->setToolTip(QStringLiteral("Plot the residuals against the fitted values or a variable"));
  lblResiduals->setBuddy(cboResiduals);
  picResiduals = named(new PictureBox(nullptr, 560, 260), "picResiduals");
  cmdPrint = named(new QPushButton(QStringLiteral("&Print")), "cmdPrint");
  cmdPrint->setToolTip(QStringLiteral("Print the statistics and the residual plot"));
  cmdCopy = named(new QPushButton(QStringLiteral("&Copy")), "cmdCopy");
  cmdCopy->setToolTip(QStringLiteral("Copy the statistics as text"));
  cmdExit = named(new QPushButton(QStringLiteral("E&xit")), "cmdExit");

  auto* residualRow = new QHBoxLayout();
  residualRow->addWidget(lblResiduals);
  residualRow->addWidget(cboResiduals, 1);
  auto* buttons = new QHBoxLayout();
  buttons->addWidget(cmdPrint);
  buttons->addWidget(cmdCopy);
  buttons->addStretch();
  buttons->addWidget(cmdExit);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(grdCoefficients, 2);
  layout->addWidget(lstSummary);
  layout->addWidget(lblWarning);
  layout->addLayout(residualRow);
  layout->addWidget(picResiduals, 3);
  layout->addLayout(buttons);
  resize(1060, 760);

  connect(cboResiduals, &QComboBox::currentIndexChanged, this, &frmStatistics::cboResiduals_Click);
  connect(picResiduals, &PictureBox::Resized, this, &frmStatistics::picResiduals_Resized);
  connect(cmdPrint, &QPushButton::clicked, this, &frmStatistics::cmdPrint_Click);
  connect(cmdCopy, &QPushButton::clicked, this, &frmStatistics::cmdCopy_Click);
  connect(cmdExit, &QPushButton::clicked, this, &frmStatistics::cmdExit_Click);
  Refresh();
}

void frmStatistics::Refresh() {
  const std::optional<FitSummary>& summary = workbench_.summary;
  grdCoefficients->setRowCount(0);
  lstSummary->clear();
  {
    const QSignalBlocker quiet(cboResiduals);
    cboResiduals->clear();
    if (summary) {
      cboResiduals->addItem(QStringLiteral("Fitted values"));
      for (const std::string& name : workbench_.problem.names) cboResiduals->addItem(qs(name));
    }
  }
  const std::string warning = summary ? DigitsWarning(*summary) : std::string();
  lblWarning->setText(qs(warning));
  lblWarning->setVisible(!warning.empty());
  cmdPrint->setEnabled(summary.has_value());
  cmdCopy->setEnabled(summary.has_value());
  if (summary) {
    fillTable(*summary);
    for (const std::string& line : SummaryLines(*summary)) lstSummary->addItem(qs(line));
  }
  DrawResiduals();
}

void frmStatistics::fillTable(const FitSummary& s) {
  grdCoefficients->setRowCount(s.m + 1);
  for (int j = 0; j <= s.m; ++j) {
    const CoefficientStatistics& c = s.coefficients[j];
    const QString cells[] = {qs(CoefficientName(workbench_.problem.names, j)), cellText(c.estimate),
                             cellText(c.stdError), cellText(c.t),
                             std::isnan(c.p) ? QString() : qs(PValueText(c.p, 15)), cellText(c.low),
                             cellText(c.high)};
    for (int k = 0; k < 7; ++k) {
      auto* item = new QTableWidgetItem(cells[k]);
      if (k > 0) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      grdCoefficients->setItem(j, k, item);
    }
  }
}

void frmStatistics::DrawResiduals() {
  Canvas& picture = picResiduals->canvas();
  picture.Cls();
  if (!workbench_.summary || !workbench_.problem.computed) return;
  try {
    DrawResidualPlot(picture, ResidualsAgainst(workbench_.problem, cboResiduals->currentIndex()));
  } catch (const std::bad_alloc&) {
    picture.Cls();  // no room for the points: the picture stays empty
  } catch (const RuntimeError&) {
    picture.Cls();
  }
}

void frmStatistics::cboResiduals_Click() { DrawResiduals(); }

void frmStatistics::picResiduals_Resized() {
  // Drawn again for the picture's new size, once the resizing settles.
  if (redrawPending_) return;
  redrawPending_ = true;
  QTimer::singleShot(0, this, [this] {
    redrawPending_ = false;
    DrawResiduals();
  });
}

void frmStatistics::cmdPrint_Click() {
  if (!workbench_.summary) return;
  std::unique_ptr<PrinterPage> page = dialogs_.OpenPrinter("Statistics");
  if (!page) return;
  try {
    PrintStatistics(*page, *workbench_.summary, workbench_.problem.names, picResiduals->canvas());
  } catch (const RuntimeError& error) {
    dialogs_.MsgBox(error.description(), mb::Critical);
  }
}

void frmStatistics::cmdCopy_Click() {
  if (!workbench_.summary) return;
  std::string text;
  for (const std::string& line : StatisticsText(*workbench_.summary, workbench_.problem.names, true))
    text += line + "\n";
  dialogs_.CopyText(text);
}

void frmStatistics::cmdExit_Click() { close(); }

}  // namespace orvane
