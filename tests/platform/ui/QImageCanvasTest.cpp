// Pixels painted by the image canvas, and the picture widget around it.

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/ui/PictureBox.h"
#include "platform/ui/QImageCanvas.h"

using namespace orvane;

namespace {

QRgb rgbOf(Color c) { return QImageCanvas::toQColor(c).rgb(); }

int countPixels(const QImage& image, Color c, int row = -1) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) n += (row < 0 || y == row) && image.pixel(x, y) == rgbOf(c);
  return n;
}

}  // namespace

class QImageCanvasTest : public QObject {
  Q_OBJECT

 private slots:
  void userCornersLandOnTheCornerPixels() {
    QCOMPARE(QImageCanvas::toQColor(0xA0A0FF), QColor(255, 0xA0, 0xA0));  // red in the low byte
    QImageCanvas canvas(100, 50, 96);
    canvas.Scale(-5, 5, 5, -5);  // y grows upward
    canvas.PSet(-5, 5, colors::Red);
    canvas.PSet(5 - 0.1f, -5 + 0.2f, colors::Blue);  // one pixel in from the far corner
    canvas.PSet(0, 0, colors::Green);
    const QImage& image = canvas.image();
    QCOMPARE(image.pixel(0, 0), rgbOf(colors::Red));
    QCOMPARE(image.pixel(99, 49), rgbOf(colors::Blue));
    QCOMPARE(image.pixel(50, 25), rgbOf(colors::Green));
    QCOMPARE(countPixels(image, colors::White), 100 * 50 - 3);
    // The far corner itself, and a sliver inside it (a frame one twip in), are on the
    // last pixel too: the whole scale is on the picture.
    for (const float inset : {0.0f, 0.0067f}) {
      canvas.PSet(5 - inset, -5 + inset, colors::Magenta);
      QCOMPARE(image.pixel(99, 49), rgbOf(colors::Magenta));
      canvas.PSet(5 - 0.1f, -5 + 0.2f, colors::Blue);
    }
  }

  void linesBoxesAndCircles() {
    QImageCanvas canvas(100, 100, 96);
    canvas.Scale(0, 0, 100, 100);
    canvas.SetDrawStyle(DrawStyle::Dot);
    canvas.Line(0, 5, 99, 5, colors::Black);
    const int dotted = countPixels(canvas.image(), colors::Black, 5);
    QVERIFY2(dotted > 20 && dotted < 80, qPrintable(QString::number(dotted)));
    canvas.SetDrawStyle(DrawStyle::Solid);
    canvas.Line(0, 7, 99, 7, colors::Black);
    QCOMPARE(countPixels(canvas.image(), colors::Black, 7), 100);

    canvas.Line(2, 12, 8, 18, colors::Red, LineKind::Box);
    canvas.Line(10, 20, 14, 24, colors::Blue, LineKind::FilledBox);
    QCOMPARE(canvas.image().pixel(2, 15), rgbOf(colors::Red));
    QCOMPARE(canvas.image().pixel(8, 18), rgbOf(colors::Red));
    QCOMPARE(canvas.image().pixel(5, 15), rgbOf(colors::White));
    QCOMPARE(countPixels(canvas.image(), colors::Blue), 25);  // both corners included

    canvas.SetFillStyle(FillStyle::Solid);
    canvas.SetFillColor(colors::Magenta);
    canvas.Circle(50, 50, 10, colors::Blue);
    QCOMPARE(canvas.image().pixel(50, 50), rgbOf(colors::Magenta));
    QCOMPARE(canvas.image().pixel(50, 40), rgbOf(colors::Blue));
    QCOMPARE(canvas.image().pixel(50, 35), rgbOf(colors::White));
    canvas.SetFillStyle(FillStyle::Transparent);
    canvas.Circle(80, 80, 5, colors::Red);
    QCOMPARE(canvas.image().pixel(80, 80), rgbOf(colors::White));  // hollow
  }

  void drawingOutsideIsClipped() {
    QImageCanvas canvas(40, 30, 96);
    canvas.Scale(0, 0, 40, 30);
    const QImage before = canvas.image().copy();
    canvas.Line(-1e30f, -5, -10, -5, colors::Red);
    canvas.Line(50, 40, 1e30f, 1e30f, colors::Red);
    canvas.PSet(-1, 10, colors::Red);
    canvas.PSet(40.5f, 10, colors::Red);  // half a pixel beyond the far edge
    canvas.Circle(1e20f, 1e20f, 5, colors::Red);
    canvas.Circle(1e25f, 0, 1e30f, colors::Red);  // its outline passes far away
    canvas.Line(-1e30f, -1e30f, 1e30f, -1e30f, colors::Red, LineKind::FilledBox);
    canvas.Line(45, 0, 1e30f, 30, colors::Red, LineKind::FilledBox);  // wholly right of it
    canvas.SetCurrentX(1e30f);
    canvas.Print("far away");
    QCOMPARE(canvas.image(), before);
    canvas.Line(-1e6f, 15, 1e6f, 15, colors::Red);  // crossing from far outside: drawn where it crosses
    QCOMPARE(countPixels(canvas.image(), colors::Red, 15), 40);
  }

  void textIsWrittenInForeColorBelowTheCurrentPoint() {
    QImageCanvas canvas(120, 40, 96);
    canvas.Scale(0, 0, 120, 40);
    canvas.SetPixelFont("verdana", -20, -16);
    canvas.SetForeColor(0xC0C000);
    canvas.SetCurrentX(10);
    canvas.SetCurrentY(5);
    canvas.Print("88", false);
    QVERIFY(countPixels(canvas.image(), 0xC0C000) > 10);
    QVERIFY(canvas.CurrentX() > 10);
    QCOMPARE(canvas.CurrentY(), 5.0f);
    QCOMPARE(countPixels(canvas.image().copy(0, 0, 120, 5), colors::White), 120 * 5);  // nothing above
    QVERIFY(canvas.TextHeight("8") > 10);
  }

  void savedBitmapReadsBackAndResizeKeepsState() {
    QTemporaryDir dir;
    QImageCanvas canvas(30, 20, 96);
    canvas.SetBackColor(colors::Yellow);
    canvas.Scale(0, 0, 30, 20);
    canvas.PSet(3, 4, colors::Blue);
    const QString path = dir.filePath("plot.bmp");
    QVERIFY(canvas.SavePicture(path.toStdString()));
    QImage read(path, "BMP");
    QCOMPARE(read.size(), QSize(30, 20));
    QCOMPARE(read.pixel(3, 4), rgbOf(colors::Blue));
    QCOMPARE(read.pixel(0, 0), rgbOf(colors::Yellow));
    QVERIFY(!canvas.SavePicture(dir.filePath("no/such/folder/x.bmp").toStdString()));

    canvas.SetForeColor(colors::Red);
    canvas.resize(20, 5);
    QCOMPARE(canvas.pixelWidth(), 20);
    QCOMPARE(canvas.ScaleWidth(), 30.0f);
    QCOMPARE(canvas.ForeColor(), colors::Red);
    QCOMPARE(canvas.image().pixel(3, 4), rgbOf(colors::Yellow));  // cleared
    canvas.PSet(0, 0);
    canvas.resize(30, 30, true);
    QCOMPARE(canvas.image().pixel(0, 0), rgbOf(colors::Red));  // kept
  }

  void pictureBoxReportsUserCoordinatesAndFollowsItsSize() {
    PictureBox box(nullptr, 200, 100);
    box.resize(200, 100);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    box.canvas().Scale(-10, 10, 10, -10);
    QSignalSpy down(&box, &PictureBox::MouseDown);
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(150, 25));
    QCOMPARE(down.count(), 1);
    QCOMPARE(down[0][0].value<Qt::MouseButton>(), Qt::LeftButton);
    QCOMPARE(down[0][1].toFloat(), 5.0f);
    QCOMPARE(down[0][2].toFloat(), 5.0f);

    box.canvas().PSet(-10, 10, colors::Red);
    QSignalSpy resized(&box, &PictureBox::Resized);
    box.resize(300, 120);
    QCOMPARE(resized.count(), 1);
    QCOMPARE(box.canvas().pixelWidth(), 300);
    QCOMPARE(box.grab().toImage().pixel(0, 0), rgbOf(colors::Red));  // kept and shown
    box.setFixedCanvasSize(400, 400);
    box.resize(100, 100);
    QCOMPARE(box.canvas().pixelWidth(), 400);
  }
};

QTEST_MAIN(QImageCanvasTest)
#include "QImageCanvasTest.moc"
