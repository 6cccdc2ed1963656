// A real document through the Qt printer page, written as a PDF file.

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/RecordingCanvas.h"
#include "platform/RuntimeError.h"
#include "platform/ui/QImageCanvas.h"
#include "platform/ui/QtPrinterPage.h"

using namespace orvane;

class QtPrinterPageTest : public QObject {
  Q_OBJECT

 private slots:
  void writesAPdfWithTextTabsAndAPicture() {
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath("report.pdf");
    {
      QtPrinterPage page(path.toStdString(), "Report");
      QCOMPARE(page.FontName(), std::string("Courier New"));
      QImageCanvas picture(200, 150, 96);
      picture.Scale(0, 0, 1, 1);
      picture.Line(0, 0, 1, 1, colors::Red);
      page.PaintPicture(picture, 0, 0, 4320, 3240);
      RecordingCanvas notAnImage;
      page.PaintPicture(notAnImage, 0, 0, 1000, 1000);  // has no pixels: ignored

      page.SetCurrentY(4500);
      QCOMPARE(page.CurrentY(), 4500.0);
      page.Write("DATA:");
      page.Tab(34);
      page.Write("ESTIMATE:");
      page.Tab(57);
      page.Write("RESIDUAL:");
      page.NewLine();
      QVERIFY(page.CurrentY() > 4500.0);
      QVERIFY(page.CurrentY() < 4500.0 + 720);  // a 10-point line, not an inch
      page.PrintLine();
      page.EndDoc();
      QCOMPARE(page.pagesStarted(), 1);
    }
    const QFileInfo info(path);
    QVERIFY(info.exists());
    QVERIFY(info.size() > 0);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.read(5).startsWith("%PDF"));
  }

  void longReportsOverflowToNewPages() {
    QTemporaryDir dir;
    QtPrinterPage page(dir.filePath("long.pdf").toStdString());
    for (int i = 0; i < 200; ++i) page.PrintLine("SET # " + std::to_string(i) + " :");
    QVERIFY(page.pagesStarted() >= 2);
    page.EndDoc();
  }

  void unwritableFileIsAPrinterError() {
    QtPrinterPage page("/nonexistent-folder/x/report.pdf");
    try {
      page.PrintLine("text");
      page.EndDoc();
      QFAIL("no error");
    } catch (const RuntimeError& e) {
      QCOMPARE(e.number(), 482);
    }
  }
};

QTEST_MAIN(QtPrinterPageTest)
#include "QtPrinterPageTest.moc"
