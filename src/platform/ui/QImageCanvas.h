#pragma once
// A Canvas that paints into an image: what the picture widgets show, and what is
// printed, saved as a bitmap and copied to the clipboard.

#include <QImage>
#include <functional>

#include "platform/Canvas.h"

class QPainter;

namespace orvane {

class QImageCanvas : public Canvas {
 public:
  // A white image of the given size; dpi <= 0 takes the screen's logical dpi (96 when
  // there is no screen).
  explicit QImageCanvas(int widthPx = 600, int heightPx = 400, double dpi = 0);

  int pixelWidth() const override { return image_.width(); }
  int pixelHeight() const override { return image_.height(); }
  double dpi() const override { return dpi_; }

  // Saves the image as a BMP file.
  bool SavePicture(const std::string& path) const override;

  const QImage& image() const { return image_; }
  // New size: the drawing state and the scale stay, the image is cleared to BackColor;
  // with keepPixels the old image is kept at the top-left corner.
  void resize(int widthPx, int heightPx, bool keepPixels = false);

  // Shows the pixels of `image` (the surface takes its size); the drawing state stays.
  void showImage(const QImage& image);

  // Called after every change of the pixels (a widget showing the image repaints).
  void setChangedCallback(std::function<void()> callback) { changed_ = std::move(callback); }

  static QColor toQColor(Color c);

  // The screen's logical dpi, or 96 without a screen.
  static double screenDpi();

 protected:
  void paintLine(float x1, float y1, float x2, float y2, Color color) override;
  void paintBox(float x1, float y1, float x2, float y2, Color color, bool filled) override;
  void paintPoint(float x, float y, Color color) override;
  void paintCircle(float x, float y, float radius, Color color) override;
  void paintText(float x, float y, std::string_view text) override;
  void paintClear() override;
  double textPixelWidth(std::string_view text) const override;
  double textPixelHeight(std::string_view text) const override;

 private:
  QFont currentFont() const;
  void preparePen(QPainter& painter, Color color) const;
  QPointF devicePoint(float x, float y) const;

  void changed() const {
    if (changed_) changed_();
  }

  QImage image_;
  double dpi_;
  std::function<void()> changed_;
};

// One picture of a stereo pair for red-cyan glasses (red over the left eye): the left
// picture's grey level in red, the right picture's in green and blue. The pictures have
// the same size; where they do not, the result covers the part they share.
QImage RedCyanAnaglyph(const QImage& left, const QImage& right);

}  // namespace orvane
