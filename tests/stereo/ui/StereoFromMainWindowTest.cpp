// The whole path a user takes: two variables and their data typed in the main window,
// Compute, Plot, the fitted plane with the data sets marked, rotate, zoom, a derivative
// surface, export and import, print, copy, and Exit back to the main window.

#include <QAction>
#include <QApplication>
#include <QListWidget>
#include <QTemporaryDir>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

#include "platform/ScriptedDialogs.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/TextBox.h"
#include "regression/Solver.h"
#include "regression/ui/DataGridModel.h"
#include "regression/ui/frmEdit.h"
#include "regression/ui/frmOrvane.h"
#include "stereo/ui/frmStereoPlot.h"

using namespace orvane;

namespace {

frmStereoPlot* openStereoWindow() {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* stereo = qobject_cast<frmStereoPlot*>(w); stereo && stereo->isVisible()) return stereo;
  return nullptr;
}

bool enter(TextBox* field, const QString& text) {
  field->setFocus(Qt::TabFocusReason);
  field->selectAll();
  QTest::keyClicks(field, text);
  QTest::keyClick(field, Qt::Key_Tab);
  QCoreApplication::processEvents();
  return !field->hasFocus();
}

void typeCell(frmEdit* editor, int row, int column, const QString& text) {
  editor->MSFlexGridEdit->setCurrentIndex(editor->model()->index(row, column));
  editor->MSFlexGridEdit->setFocus();
  QTest::keyClick(editor->MSFlexGridEdit, text.at(0).toLatin1());
  QTest::keyClicks(editor->txtDataEntry, text.mid(1));
  QTest::keyClick(editor->txtDataEntry, Qt::Key_Return);
}

int countPixels(const QImage& image, QRgb color) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) n += (image.pixel(x, y) & 0xFFFFFF) == color;
  return n;
}

}  // namespace

class StereoFromMainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void fittedPlaneIsPlottedAndExitReturnsToTheMainWindow() {
    ScriptedDialogs dialogs;
    frmOrvane main(dialogs);
    main.show();
    QVERIFY(QTest::qWaitForWindowActive(&main));
    // The start-up code opens the plot window when the main window asks for it, unless
    // the main window already did.
    QObject::connect(&main, &frmOrvane::plotRequested, &main, [&](int m, const QString& text) {
      if (m != 2 || openStereoWindow()) return;
      auto* stereo = new frmStereoPlot(main.workbench(), dialogs);
      stereo->txtEquationZ->setText(text);
      QObject::connect(stereo, &frmStereoPlot::unloaded, &main, [&main, stereo] {
        main.setEnabled(true);
        stereo->deleteLater();
      });
      stereo->show();
    });

    QVERIFY(enter(main.findChild<TextBox*>("txtOrder"), "2"));
    QVERIFY(enter(main.findChild<TextBox*>("txtDepVarNam"), "z"));
    QVERIFY(enter(main.findChild<TextBox*>("txtVarNams"), "x,y"));
    QVERIFY(enter(main.findChild<TextBox*>("txtN"), "4"));
    main.findChild<QPushButton*>("cmdEditData")->click();
    frmEdit* editor = main.editor();
    QVERIFY(editor);
    // z = 1 + 2x - y at the corners of the unit square; grid column 0 is z.
    const char* rows[4][3] = {{"1", "0", "0"}, {"3", "1", "0"}, {"0", "0", "1"}, {"2", "1", "1"}};
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 3; ++c) typeCell(editor, r, c, rows[r][c]);
    editor->cmdExit->click();
    main.findChild<QPushButton*>("cmdCompute")->click();
    QVERIFY(main.workbench().fitted);

    main.findChild<QPushButton*>("cmdPlot")->click();
    frmStereoPlot* stereo = openStereoWindow();
    QVERIFY(stereo);
    QVERIFY(!main.isEnabled());
    const QString plane = QString::fromStdString(FittedFunctionText(main.workbench().problem));
    QCOMPARE(stereo->txtEquationZ->text(), plane);
    QVERIFY(plane.contains("*x+") && plane.endsWith("*y"));

    const int beeps = dialogs.beeps();
    stereo->findChild<QPushButton*>("cmdPlot")->click();
    QCOMPARE(dialogs.beeps(), beeps + 1);
    for (const char* name : {"pic(0)", "pic(1)"}) {
      const QImage image = stereo->findChild<PictureBox*>(name)->imageCanvas().image();
      QVERIFY(countPixels(image, 0x000000) > 300);  // the plane's mesh
      QVERIFY(countPixels(image, 0x0000FF) > 0);    // the data sets, blue
    }

    auto click = [&](const char* name) { stereo->findChild<QPushButton*>(name)->click(); };
    auto trigger = [&](const char* name) { stereo->findChild<QAction*>(name)->trigger(); };
    click("cmdIncRotZ");
    click("cmdZoomQ1");  // replots
    QCOMPARE(stereo->findChild<TextBox*>("txtWindowgx")->text(), QString("2.5"));
    stereo->findChild<TextBox*>("txtXder")->setText("1");  // Zx, at the High accuracy it opened with
    click("cmdPlot");
    QCOMPARE(dialogs.beeps(), beeps + 3);
    QTemporaryDir dir;
    const std::string path = dir.filePath("plane.dup").toStdString();
    dialogs.queueSaveFileName(path);
    trigger("mnuSaveAs");
    stereo->findChild<TextBox*>("txtZrot")->setText("0");
    dialogs.queueOpenFileName(path);
    trigger("mnuOpen");
    QCOMPARE(stereo->findChild<TextBox*>("txtZrot")->text(), QString("5"));
    QCOMPARE(stereo->findChild<TextBox*>("txtXder")->text(), QString("1"));
    trigger("mnuPrint");
    QCOMPARE(dialogs.printer().pictures().size(), size_t{2});
    trigger("mnuCopyLeft");
    trigger("mnuCopyRight");
    QCOMPARE(dialogs.copiedPictures().size(), size_t{2});
    QVERIFY(dialogs.messages().empty());

    QPointer<frmStereoPlot> watched(stereo);
    stereo->findChild<QPushButton*>("cmdExit")->click();
    QVERIFY(main.isEnabled());
    QTRY_VERIFY(watched.isNull());
  }
};

QTEST_MAIN(StereoFromMainWindowTest)
#include "StereoFromMainWindowTest.moc"
