#include "platform/ui/QImageCanvas.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

// Device coordinates are rounded to whole pixels: pixel i covers [i - 0.5, i + 0.5).
int pixelOf(double v) { return static_cast<int>(std::floor(v + 0.5)); }

// The same along an axis of `size` pixels, where the scale's far edge (device coordinate
// `size`, one past the last pixel once rounded) is folded onto the last pixel: the
// whole user scale, both edges included, is on the picture, as the near edge is.
int pixelOf(double v, int size) {
  const int pixel = pixelOf(v);
  return pixel == size ? size - 1 : pixel;
}

// The on/off runs of the one-pixel pen styles, in pixels, as the old display pens drew
// them (dot: 3 on 3 off; dash: 18 on 6 off). Solid has no gaps.
bool patternOn(orvane::DrawStyle style, long step) {
  switch (style) {
    case DrawStyle::Dot:
      return step % 6 < 3;
    case DrawStyle::Dash:
      return step % 24 < 18;
    case DrawStyle::Solid:
      break;
  }
  return true;
}

// Cuts the segment to the rectangle [xmin, xmax] x [ymin, ymax] (Liang-Barsky); false
// when nothing of it is inside. t0 receives the parameter where the kept part starts.
bool clipSegment(double& x1, double& y1, double& x2, double& y2, double xmin, double ymin,
                 double xmax, double ymax, double& t0) {
  const double dx = x2 - x1, dy = y2 - y1;
  double lo = 0, hi = 1;
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {x1 - xmin, xmax - x1, y1 - ymin, ymax - y1};
  for (int i = 0; i < 4; ++i) {
    if (p[i] == 0) {
      if (q[i] < 0) return false;
      continue;
    }
    const double t = q[i] / p[i];
    if (p[i] < 0) {
      if (t > hi) return false;
      lo = std::max(lo, t);
    } else {
      if (t < lo) return false;
      hi = std::min(hi, t);
    }
  }
  x2 = x1 + hi * dx;
  y2 = y1 + hi * dy;
  x1 += lo * dx;
  y1 += lo * dy;
  t0 = lo;
  return true;
}

}  // namespace

double QImageCanvas::screenDpi() {
  if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) {
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
      const double dpi = screen->logicalDotsPerInch();
      if (dpi > 0) return dpi;
    }
  }
  return 96;
}

QImageCanvas::QImageCanvas(int widthPx, int heightPx, double dpi)
    : image_(std::max(widthPx, 1), std::max(heightPx, 1), QImage::Format_RGB32),
      dpi_(dpi > 0 ? dpi : screenDpi()) {
  const int dotsPerMeter = static_cast<int>(std::lround(dpi_ / 0.0254));
  image_.setDotsPerMeterX(dotsPerMeter);
  image_.setDotsPerMeterY(dotsPerMeter);
  image_.fill(toQColor(BackColor()));
}

QColor QImageCanvas::toQColor(Color c) {
  return QColor(static_cast<int>(c & 0xFF), static_cast<int>((c >> 8) & 0xFF),
                static_cast<int>((c >> 16) & 0xFF));
}

void QImageCanvas::showImage(const QImage& image) {
  image_ = image.convertToFormat(QImage::Format_RGB32);
  const int dotsPerMeter = static_cast<int>(std::lround(dpi_ / 0.0254));
  image_.setDotsPerMeterX(dotsPerMeter);
  image_.setDotsPerMeterY(dotsPerMeter);
  changed();
}

QImage RedCyanAnaglyph(const QImage& left, const QImage& right) {
  const QImage l = left.convertToFormat(QImage::Format_RGB32), r = right.convertToFormat(QImage::Format_RGB32);
  const int width = std::min(l.width(), r.width()), height = std::min(l.height(), r.height());
  QImage out(width, height, QImage::Format_RGB32);
  for (int y = 0; y < height; ++y) {
    const auto* from = reinterpret_cast<const QRgb*>(l.constScanLine(y));
    const auto* other = reinterpret_cast<const QRgb*>(r.constScanLine(y));
    auto* to = reinterpret_cast<QRgb*>(out.scanLine(y));
    for (int x = 0; x < width; ++x) {
      const int cyan = qGray(other[x]);
      to[x] = qRgb(qGray(from[x]), cyan, cyan);
    }
  }
  return out;
}

void QImageCanvas::resize(int widthPx, int heightPx, bool keepPixels) {
  widthPx = std::max(widthPx, 1);
  heightPx = std::max(heightPx, 1);
  if (widthPx == image_.width() && heightPx == image_.height()) return;
  QImage old = std::move(image_);
  image_ = QImage(widthPx, heightPx, QImage::Format_RGB32);
  image_.setDotsPerMeterX(old.dotsPerMeterX());
  image_.setDotsPerMeterY(old.dotsPerMeterY());
  image_.fill(toQColor(BackColor()));
  if (keepPixels) {
    QPainter painter(&image_);
    painter.drawImage(0, 0, old);
  }
  changed();
}

bool QImageCanvas::SavePicture(const std::string& path) const {
  if (path.empty()) return false;
  return image_.save(QString::fromStdString(path), "BMP");
}

QPointF QImageCanvas::devicePoint(float x, float y) const {
  return QPointF(toPixelX(x), toPixelY(y));
}

void QImageCanvas::paintLine(float x1, float y1, float x2, float y2, Color color) {
  double px1 = toPixelX(x1), py1 = toPixelY(y1), px2 = toPixelX(x2), py2 = toPixelY(y2);
  if (!std::isfinite(px1) || !std::isfinite(py1) || !std::isfinite(px2) ||
      !std::isfinite(py2))
    return;
  const double origLength = std::max(std::fabs(px2 - px1), std::fabs(py2 - py1));
  const int w = image_.width(), h = image_.height();
  const double margin = DrawWidth() + 1.0;
  double t0 = 0;
  if (!clipSegment(px1, py1, px2, py2, -margin, -margin, w - 1 + margin, h - 1 + margin, t0))
    return;

  if (DrawWidth() > 1) {
    // Wide pens are always solid.
    QPainter painter(&image_);
    painter.setPen(QPen(toQColor(color), DrawWidth(), Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPoint(pixelOf(px1, w), pixelOf(py1, h)), QPoint(pixelOf(px2, w), pixelOf(py2, h)));
    changed();
    return;
  }

  // One-pixel lines are stepped here, so the dotted pattern keeps its phase across the
  // clipped-away part and both end points are set.
  const QRgb rgb = toQColor(color).rgb();
  int x = pixelOf(px1, w), y = pixelOf(py1, h);
  const int xe = pixelOf(px2, w), ye = pixelOf(py2, h);
  const int dx = std::abs(xe - x), dy = -std::abs(ye - y);
  const int sx = x < xe ? 1 : -1, sy = y < ye ? 1 : -1;
  int e = dx + dy;
  long step = std::lround(t0 * origLength);
  const orvane::DrawStyle style = DrawStyle();
  for (;;) {
    if (x >= 0 && y >= 0 && x < w && y < h && patternOn(style, step))
      reinterpret_cast<QRgb*>(image_.scanLine(y))[x] = rgb;
    if (x == xe && y == ye) break;
    const int e2 = 2 * e;
    if (e2 >= dy) {
      e += dy;
      x += sx;
    }
    if (e2 <= dx) {
      e += dx;
      y += sy;
    }
    ++step;
  }
  changed();
}

void QImageCanvas::paintBox(float x1, float y1, float x2, float y2, Color color, bool filled) {
  if (!filled) {
    // The outline as four lines keeps the pen's pattern and width.
    paintLine(x1, y1, x2, y1, color);
    paintLine(x2, y1, x2, y2, color);
    paintLine(x2, y2, x1, y2, color);
    paintLine(x1, y2, x1, y1, color);
    return;
  }
  const double px1 = toPixelX(x1), py1 = toPixelY(y1), px2 = toPixelX(x2), py2 = toPixelY(y2);
  if (!std::isfinite(px1) || !std::isfinite(py1) || !std::isfinite(px2) ||
      !std::isfinite(py2))
    return;
  const int w = image_.width(), h = image_.height();
  // Far-out corners are kept just off the picture, beyond the folded far edge.
  auto clampX = [w](double v) { return pixelOf(std::clamp(v, -1.0, w + 1.0), w); };
  auto clampY = [h](double v) { return pixelOf(std::clamp(v, -1.0, h + 1.0), h); };
  const int left = std::min(clampX(px1), clampX(px2)), right = std::max(clampX(px1), clampX(px2));
  const int top = std::min(clampY(py1), clampY(py2)), bottom = std::max(clampY(py1), clampY(py2));
  const QRect rect = QRect(QPoint(left, top), QPoint(right, bottom)).intersected(image_.rect());
  if (rect.isEmpty()) return;
  QPainter painter(&image_);
  painter.fillRect(rect, toQColor(color));
  changed();
}

void QImageCanvas::paintPoint(float x, float y, Color color) {
  const double px = toPixelX(x), py = toPixelY(y);
  if (!std::isfinite(px) || !std::isfinite(py)) return;
  const int w = image_.width(), h = image_.height();
  if (px < -DrawWidth() - 1 || py < -DrawWidth() - 1 || px > w + DrawWidth() ||
      py > h + DrawWidth())
    return;
  const QRgb rgb = toQColor(color).rgb();
  const int cx = pixelOf(px, w), cy = pixelOf(py, h);
  if (DrawWidth() <= 1) {
    if (cx >= 0 && cy >= 0 && cx < w && cy < h) {
      reinterpret_cast<QRgb*>(image_.scanLine(cy))[cx] = rgb;
      changed();
    }
    return;
  }
  // A wide pen sets a square dot of its width around the point.
  const int half = DrawWidth() / 2;
  const QRect rect =
      QRect(cx - half, cy - half, DrawWidth(), DrawWidth()).intersected(image_.rect());
  for (int row = rect.top(); row <= rect.bottom(); ++row) {
    QRgb* line = reinterpret_cast<QRgb*>(image_.scanLine(row));
    for (int col = rect.left(); col <= rect.right(); ++col) line[col] = rgb;
  }
  changed();
}

void QImageCanvas::paintCircle(float x, float y, float radius, Color color) {
  const QPointF centre = devicePoint(x, y);
  const double r = std::fabs(ScaleX(radius, ScaleUnit::User, ScaleUnit::Pixels));
  if (!std::isfinite(centre.x()) || !std::isfinite(centre.y()) || !std::isfinite(r)) return;
  const double w = image_.width(), h = image_.height();
  if (centre.x() + r < -1 || centre.y() + r < -1 || centre.x() - r > w + 1 ||
      centre.y() - r > h + 1)
    return;
  if (r > 4 * (w + h)) {
    // Far larger than the picture: its outline is out of sight unless it crosses the
    // picture, which is left undrawn rather than handing huge numbers to the painter;
    // a solid one covering the whole picture fills it.
    const double farthest = std::max({std::hypot(centre.x(), centre.y()),
                                      std::hypot(centre.x() - w, centre.y()),
                                      std::hypot(centre.x(), centre.y() - h),
                                      std::hypot(centre.x() - w, centre.y() - h)});
    if (FillStyle() == FillStyle::Solid && farthest < r) {
      image_.fill(toQColor(FillColor()));
      changed();
    }
    return;
  }
  const double rr = r;
  QPainter painter(&image_);
  painter.setClipRect(image_.rect());
  QPen pen(toQColor(color));
  pen.setWidth(DrawWidth());
  if (DrawWidth() == 1) {
    if (DrawStyle() == DrawStyle::Dot) pen.setStyle(Qt::DotLine);
    if (DrawStyle() == DrawStyle::Dash) pen.setStyle(Qt::DashLine);
  }
  painter.setPen(pen);
  if (FillStyle() == FillStyle::Solid)
    painter.setBrush(toQColor(FillColor()));
  else
    painter.setBrush(Qt::NoBrush);
  const QPointF c(pixelOf(centre.x(), image_.width()), pixelOf(centre.y(), image_.height()));
  painter.drawEllipse(c, rr, rr);
  painter.end();
  changed();
}

QFont QImageCanvas::currentFont() const {
  QFont font(QString::fromStdString(FontName()));
  const QString lower = font.family().toLower();
  if (lower.contains("courier") || lower.contains("mono")) {
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
  }
  if (FontPixelHeight() > 0) {
    font.setPixelSize(FontPixelHeight());
    if (FontPixelWidth() > 0) {
      // The logical font asks for an average character width: stretch to it.
      const double natural = QFontMetricsF(font, &image_).averageCharWidth();
      if (natural > 0) {
        const int stretch = static_cast<int>(std::lround(FontPixelWidth() * 100.0 / natural));
        font.setStretch(std::clamp(stretch, 1, 4000));
      }
    }
  } else {
    font.setPointSizeF(FontSize() > 0 ? FontSize() : 8.25);
  }
  return font;
}

void QImageCanvas::paintText(float x, float y, std::string_view text) {
  const QPointF at = devicePoint(x, y);
  if (!std::isfinite(at.x()) || !std::isfinite(at.y())) return;
  const double w = image_.width(), h = image_.height();
  if (at.x() > w || at.y() > h || at.x() < -100000 || at.y() < -100000) return;
  QPainter painter(&image_);
  painter.setClipRect(image_.rect());
  painter.setFont(currentFont());
  painter.setPen(toQColor(ForeColor()));
  const QString s = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  painter.drawText(QRectF(pixelOf(at.x()), pixelOf(at.y()), 100000, 100000),
                   Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, s);
  painter.end();
  changed();
}

void QImageCanvas::paintClear() {
  image_.fill(toQColor(BackColor()));
  changed();
}

double QImageCanvas::textPixelWidth(std::string_view text) const {
  const QString s = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  return QFontMetricsF(currentFont(), &image_).horizontalAdvance(s);
}

double QImageCanvas::textPixelHeight(std::string_view) const {
  return QFontMetricsF(currentFont(), &image_).height();
}

}  // namespace orvane
