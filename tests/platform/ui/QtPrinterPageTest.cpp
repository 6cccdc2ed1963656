// A real document through the Qt printer page, written as a PDF file.

#include <QFile>
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
  void writesAPdfWithTextTabsAPictureAndPages() {
    QTemporaryDir dir;
    const QString path = dir.filePath("report.pdf");
    {
      QtPrinterPage page(path.toStdString(), "Report");
      QCOMPARE(page.FontName(), std::string("Courier New"));
      QImageCanvas picture(200, 150, 96);
      picture.Line(0, 0, 3000, 2250, colors::Red);
      page.PaintPicture(picture, 0, 0, 4320, 3240);
      RecordingCanvas notAnImage;
      page.PaintPicture(notAnImage, 0, 0, 1000, 1000);  // has no pixels: ignored
      page.SetCurrentY(4500);
      page.Write("DATA:");
      page.Tab(34);
      page.Write("ESTIMATE:");
      page.NewLine();
      QVERIFY(page.CurrentY() > 4500.0);
      QVERIFY(page.CurrentY() < 4500.0 + 720);  // a 10-point line, not an inch
      QCOMPARE(page.pagesStarted(), 1);
      for (int i = 0; i < 200; ++i) page.PrintLine("SET # " + std::to_string(i) + " :");
      QVERIFY(page.pagesStarted() >= 2);
      page.EndDoc();
    }
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.size() > 0);
    QVERIFY(file.read(5).startsWith("%PDF"));
  }

  void aDocumentNobodyEndedStillGoesOut() {
    QTemporaryDir dir;
    const QString path = dir.filePath("unended.pdf");
    QtPrinterPage(path.toStdString()).PrintLine("text");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly) && file.read(5).startsWith("%PDF"));
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
