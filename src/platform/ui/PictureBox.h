#pragma once
// A picture on a window: it owns a QImageCanvas that the drawing routines paint on and
// shows the canvas's pixels, which therefore survive being covered. The canvas follows
// the widget's size unless a fixed size is kept. Mouse presses and moves are reported
// in the canvas's user coordinates (click-to-centre, position tooltips).

#include <QWidget>

#include "platform/ui/QImageCanvas.h"

namespace orvane {

class PictureBox : public QWidget {
  Q_OBJECT

 public:
  explicit PictureBox(QWidget* parent = nullptr, int widthPx = 600, int heightPx = 400);

  Canvas& canvas() { return canvas_; }
  QImageCanvas& imageCanvas() { return canvas_; }

  // Keeps the canvas at this size whatever the widget's size (the stereo pictures).
  void setFixedCanvasSize(int widthPx, int heightPx);
  // Lets the canvas follow the widget's size again.
  void setCanvasFollowsWidget();
  bool canvasFollowsWidget() const { return followWidget_; }

  // Where a widget position lies in the canvas's user coordinates.
  QPointF toUser(const QPointF& widgetPos) const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return QSize(20, 20); }

 signals:
  void MouseDown(Qt::MouseButton button, float x, float y);
  void MouseMove(Qt::MouseButtons buttons, float x, float y);
  void MouseUp(Qt::MouseButton button, float x, float y);
  // The canvas took a new size (its pixels were kept where they still fit).
  void Resized(int widthPx, int heightPx);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void canvasChanged();

  QImageCanvas canvas_;
  QSize hint_;
  bool followWidget_ = true;
  bool updatePending_ = false;
};

}  // namespace orvane
