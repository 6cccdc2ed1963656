// The whole path a user takes: one variable and five data sets typed in the main window,
// Compute, Plot, the study commands, zoom, print, export, and Exit back to the main window.

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "plot2d/ui/frmPlot.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"
#include "regression/ui/frmOrvane.h"

namespace orvane {

class PlotFromMainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void plotOpensTheStudyAndExitReturns();
};

void PlotFromMainWindowTest::plotOpensTheStudyAndExitReturns() {
  QTemporaryDir dir;
  ScriptedDialogs dialogs;
  frmOrvane main(dialogs);
  main.show();
  QVERIFY(QTest::qWaitForWindowActive(&main));
  QPointer<frmPlot> plot;
  QString handedOver;
  connect(&main, &frmOrvane::plotRequested, &main, [&](int m, const QString& text) {
    QCOMPARE(m, 1);
    handedOver = text;
    plot = new frmPlot(main.workbench(), dialogs);
    plot->txtEquation->setText(text);
    connect(plot, &frmPlot::unloaded, &main, [&] {
      main.setEnabled(true);
      plot->deleteLater();
    });
    plot->show();
  });

  auto enter = [](TextBox* field, const QString& text) {
    field->setFocus(Qt::TabFocusReason);
    field->selectAll();
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Tab);
    return !field->hasFocus();
  };
  const char* fields[][2] = {{"txtOrder", "1"}, {"txtDepVarNam", "s"}, {"txtVarNams", "t"}, {"txtN", "5"}};
  for (const auto& [name, value] : fields) QVERIFY2(enter(main.findChild<TextBox*>(name), value), name);
  main.findChild<QPushButton*>("cmdEditData")->click();
  frmEdit* editor = main.editor();
  QVERIFY(editor);
  // s = 1 + 2 t exactly; grid column 0 is the dependent value.
  for (int r = 0; r < 5; ++r)
    for (int c = 0; c < 2; ++c) {
      const QString text = QString::number(c == 0 ? 3 + 2 * r : r + 1);
      editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(r, c));
      editor->MSFlexGridEdit->setFocus();
      QTest::keyClick(editor->MSFlexGridEdit, text.at(0).toLatin1());
      QTest::keyClicks(editor->txtDataEntry, text.mid(1));
      QTest::keyClick(editor->txtDataEntry, Qt::Key_Return);
        }
  editor->cmdExit->click();
  main.findChild<QPushButton*>("cmdCompute")->click();
  QVERIFY(main.workbench().fitted);
  main.findChild<QPushButton*>("cmdPlot")->click();

  QVERIFY(plot);
  QVERIFY(!main.isEnabled());
  QVERIFY(QTest::qWaitForWindowExposed(plot.data()));
  QCOMPARE(plot->txtEquation->text(), handedOver);
  QVERIFY(handedOver.endsWith(QStringLiteral("*x")));
  QTRY_VERIFY(plot->graphDrawn());  // the fitted line at once, through the data points
  auto* picture = plot->findChild<PictureBox*>(QStringLiteral("Picture1"));
  auto colourAt = [&](float x, float y, int below = 0) {
    return picture->imageCanvas()
        .image()
        .pixelColor(int(std::lround(picture->canvas().toPixelX(x))),
                    int(std::lround(picture->canvas().toPixelY(y))) + below)
        .name();
  };
  QCOMPARE(colourAt(3, 7, 2), QStringLiteral("#0000ff"));  // the data point, beside the line
  QCOMPARE(colourAt(3.5f, 8), QStringLiteral("#000000"));

  // Study the line on [-2, 5]: its root -0.5 lies left of the data.
  auto click = [&](const char* name) { plot->findChild<QPushButton*>(QString::fromLatin1(name))->click(); };
  auto label = [&](const char* name) { return plot->findChild<QLabel*>(QString::fromLatin1(name))->text(); };
  plot->findChild<TextBox*>(QStringLiteral("txtXlower"))->setText(QStringLiteral("-2"));
  click("cmdRoots");
  QCOMPARE(label("lblRoots"), QStringLiteral("1 roots"));
  click("cmdIntegrate");
  QVERIFY(std::fabs(label("lblIntegral").toDouble() - 28) < 1e-6);  // t + t^2 from -2 to 5
  click("cmdExtrema");
  QCOMPARE(label("lblExtrema"), QStringLiteral("0 extrema"));
  click("cmdZoomIn");
  QVERIFY(plot->graphDrawn());
  plot->findChild<QAction*>(QStringLiteral("mnuPrint"))->trigger();
  QCOMPARE(dialogs.printer().endDocCount(), 1);
  dialogs.queueSaveFileName(dir.filePath(QStringLiteral("line.dat")).toStdString());
  plot->findChild<QAction*>(QStringLiteral("mnuSaveAs"))->trigger();
  QVERIFY(QFile::exists(dir.filePath(QStringLiteral("line.dat"))));
  QVERIFY(QFile::exists(dir.filePath(QStringLiteral("line.dat.bmp"))));

  click("cmdExit");
  QVERIFY(main.isEnabled());
  QTRY_VERIFY(plot.isNull());
  QVERIFY(dialogs.messages().empty());
}

}  // namespace orvane

QTEST_MAIN(orvane::PlotFromMainWindowTest)
#include "PlotFromMainWindowTest.moc"
