// Pixels painted by the image canvas, and the picture widget around it.

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "platform/RuntimeError.h"
#include "platform/ui/PictureBox.h"
#include "platform/ui/QImageCanvas.h"

using namespace orvane;

namespace {

QRgb rgbOf(Color c) { return QImageCanvas::toQColor(c).rgb(); }

int countPixels(const QImage& image, Color c) {
  int n = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixel(x, y) == rgbOf(c)) ++n;
  return n;
}

}  // namespace

class QImageCanvasTest : public QObject {
  Q_OBJECT

 private slots:
  void coloursKeepRedInTheLowByte() {
    QCOMPARE(QImageCanvas::toQColor(0x0000FF), QColor(255, 0, 0));
    QCOMPARE(QImageCanvas::toQColor(0xFF0000), QColor(0, 0, 255));
    QCOMPARE(QImageCanvas::toQColor(0xA0A0FF), QColor(255, 0xA0, 0xA0));
  }

  void userCornersLandOnTheCornerPixels() {
    QImageCanvas canvas(100, 50, 96);
    canvas.Scale(-5, 5, 5, -5);  // y grows upward
    canvas.PSet(-5, 5, colors::Red);
    // One pixel in from the far corner, as the frame of the 2-D plot is drawn.
    canvas.PSet(5 - 0.1f, -5 + 0.2f, colors::Blue);
    canvas.PSet(0, 0, colors::Green);
    const QImage& image = canvas.image();
    QCOMPARE(image.pixel(0, 0), rgbOf(colors::Red));
    QCOMPARE(image.pixel(99, 49), rgbOf(colors::Blue));
    QCOMPARE(image.pixel(50, 25), rgbOf(colors::Green));
    QCOMPARE(countPixels(image, colors::White), 100 * 50 - 3);
  }

  void dottedLineLeavesGaps() {
    QImageCanvas canvas(100, 10, 96);
    canvas.Scale(0, 0, 100, 10);
    canvas.SetDrawStyle(DrawStyle::Dot);
    canvas.Line(0, 5, 99, 5, colors::Black);
    int set = 0;
    for (int x = 0; x < 100; ++x)
      if (canvas.image().pixel(x, 5) == rgbOf(colors::Black)) ++set;
    QVERIFY2(set > 20 && set < 80, qPrintable(QString::number(set)));

    canvas.SetDrawStyle(DrawStyle::Solid);
    canvas.Line(0, 7, 99, 7, colors::Black);
    for (int x = 0; x < 100; ++x) QCOMPARE(canvas.image().pixel(x, 7), rgbOf(colors::Black));
  }

  void boxesOutlineOrFill() {
    QImageCanvas canvas(20, 20, 96);
    canvas.Scale(0, 0, 20, 20);
    canvas.Line(2, 2, 8, 8, colors::Red, LineKind::Box);
    canvas.Line(10, 10, 14, 14, colors::Blue, LineKind::FilledBox);
    const QImage& image = canvas.image();
    QCOMPARE(image.pixel(2, 5), rgbOf(colors::Red));
    QCOMPARE(image.pixel(8, 8), rgbOf(colors::Red));
    QCOMPARE(image.pixel(5, 5), rgbOf(colors::White));
    QCOMPARE(countPixels(image, colors::Blue), 25);  // both corners included
  }

  void filledCircleTakesTheFillColour() {
    QImageCanvas canvas(60, 60, 96);
    canvas.Scale(-3, 3, 3, -3);
    canvas.SetFillStyle(FillStyle::Solid);
    canvas.SetFillColor(colors::Magenta);
    canvas.Circle(0, 0, 1, colors::Blue);  // radius 10 pixels
    const QImage& image = canvas.image();
    QCOMPARE(image.pixel(30, 30), rgbOf(colors::Magenta));
    QCOMPARE(image.pixel(30, 20), rgbOf(colors::Blue));
    QCOMPARE(image.pixel(30, 15), rgbOf(colors::White));

    canvas.SetFillStyle(FillStyle::Transparent);
    canvas.Circle(-2, -2, 0.5f, colors::Red);
    QCOMPARE(canvas.image().pixel(10, 50), rgbOf(colors::White));  // hollow
  }

  void drawingOutsideIsClipped() {
    QImageCanvas canvas(40, 30, 96);
    canvas.Scale(0, 0, 40, 30);
    const QImage before = canvas.image().copy();
    canvas.Line(-1e30f, -5, -10, -5, colors::Red);
    canvas.Line(50, 40, 1e30f, 1e30f, colors::Red);
    canvas.PSet(-1, 10, colors::Red);
    canvas.PSet(40, 10, colors::Red);
    canvas.Circle(1e20f, 1e20f, 5, colors::Red);
    canvas.Circle(1e25f, 0, 1e30f, colors::Red);  // its outline passes far away
    canvas.Line(-1e30f, -1e30f, 1e30f, -1e30f, colors::Red, LineKind::FilledBox);
    canvas.SetCurrentX(1e30f);
    canvas.Print("far away");
    QCOMPARE(canvas.image(), before);

    // A line from far outside that crosses the picture is drawn where it crosses.
    canvas.Line(-1e6f, 15, 1e6f, 15, colors::Red);
    for (int x = 0; x < 40; ++x) QCOMPARE(canvas.image().pixel(x, 15), rgbOf(colors::Red));
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
    // Nothing above the text's top line.
    for (int y = 0; y < 5; ++y)
      for (int x = 0; x < 120; ++x) QCOMPARE(canvas.image().pixel(x, y), rgbOf(colors::White));
    QVERIFY(canvas.TextHeight("8") > 10);
  }

  void savedBitmapReadsBack() {
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
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
  }

  void resizeKeepsStateAndClears() {
    QImageCanvas canvas(10, 10, 96);
    canvas.Scale(0, 0, 1, 1);
    canvas.SetForeColor(colors::Red);
    canvas.PSet(0, 0);
    canvas.resize(20, 5);
    QCOMPARE(canvas.pixelWidth(), 20);
    QCOMPARE(canvas.ScaleWidth(), 1.0f);
    QCOMPARE(canvas.ForeColor(), colors::Red);
    QCOMPARE(canvas.image().pixel(0, 0), rgbOf(colors::White));
    canvas.PSet(0, 0);
    canvas.resize(30, 30, true);
    QCOMPARE(canvas.image().pixel(0, 0), rgbOf(colors::Red));
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
    QCOMPARE(box.imageCanvas().image().pixel(0, 0), rgbOf(colors::Red));  // kept
    QCOMPARE(box.grab().toImage().pixel(0, 0), rgbOf(colors::Red));      // and shown

    box.setFixedCanvasSize(400, 400);
    box.resize(100, 100);
    QCOMPARE(box.canvas().pixelWidth(), 400);
  }
};

QTEST_MAIN(QImageCanvasTest)
#include "QImageCanvasTest.moc"
