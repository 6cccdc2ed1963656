#include "platform/ui/PictureBox.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace orvane {

PictureBox::PictureBox(QWidget* parent, int widthPx, int heightPx)
    : QWidget(parent), canvas_(widthPx, heightPx), hint_(canvas_.pixelWidth(), canvas_.pixelHeight()) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  canvas_.setChangedCallback([this] { canvasChanged(); });
}

void PictureBox::canvasChanged() {
  // Many primitives between two paints ask for one repaint.
  if (updatePending_) return;
  updatePending_ = true;
  update();
}

void PictureBox::setFixedCanvasSize(int widthPx, int heightPx) {
  followWidget_ = false;
  canvas_.resize(widthPx, heightPx, true);
  hint_ = QSize(canvas_.pixelWidth(), canvas_.pixelHeight());
  updateGeometry();
  emit Resized(canvas_.pixelWidth(), canvas_.pixelHeight());
}

void PictureBox::setCanvasFollowsWidget() {
  followWidget_ = true;
  canvas_.resize(width(), height(), true);
}

QSize PictureBox::sizeHint() const { return hint_; }

QPointF PictureBox::toUser(const QPointF& pos) const {
  const float x = canvas_.ScaleLeft() +
                  canvas_.ScaleX(static_cast<float>(pos.x()), ScaleUnit::Pixels, ScaleUnit::User);
  const float y = canvas_.ScaleTop() +
                  canvas_.ScaleY(static_cast<float>(pos.y()), ScaleUnit::Pixels, ScaleUnit::User);
  return QPointF(x, y);
}

void PictureBox::paintEvent(QPaintEvent* event) {
  updatePending_ = false;
  QPainter painter(this);
  const QImage& image = canvas_.image();
  const QRect dirty = event->rect();
  painter.fillRect(dirty, palette().window());
  const QRect shown = dirty.intersected(image.rect());
  if (!shown.isEmpty()) painter.drawImage(shown.topLeft(), image, shown);
}

void PictureBox::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (!followWidget_) return;
  const int w = std::max(width(), 1), h = std::max(height(), 1);
  if (w == canvas_.pixelWidth() && h == canvas_.pixelHeight()) return;
  canvas_.resize(w, h, true);
  emit Resized(w, h);
}

void PictureBox::mousePressEvent(QMouseEvent* event) {
  const QPointF at = toUser(event->position());
  emit MouseDown(event->button(), static_cast<float>(at.x()), static_cast<float>(at.y()));
}

void PictureBox::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = toUser(event->position());
  emit MouseMove(event->buttons(), static_cast<float>(at.x()), static_cast<float>(at.y()));
}

void PictureBox::mouseReleaseEvent(QMouseEvent* event) {
  const QPointF at = toUser(event->position());
  emit MouseUp(event->button(), static_cast<float>(at.x()), static_cast<float>(at.y()));
}

}  // namespace orvane
