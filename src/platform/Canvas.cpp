#include "platform/Canvas.h"

#include <cmath>

#include "platform/RuntimeError.h"

namespace orvane {

namespace {
constexpr double kTwipsPerInch = 1440.0;
}

void Canvas::Scale(float x1, float y1, float x2, float y2) {
  const float width = x2 - x1;
  const float height = y2 - y1;
  if (!std::isfinite(x1) || !std::isfinite(y1) || !std::isfinite(width) ||
      !std::isfinite(height))
    throw RuntimeError(err::Overflow);
  // A scale without extent would put every point at infinity.
  if (width == 0 || height == 0) throw RuntimeError(err::InvalidCall);
  userScale_ = true;
  scaleLeft_ = x1;
  scaleTop_ = y1;
  scaleWidth_ = width;
  scaleHeight_ = height;
}

void Canvas::ScaleTwips() {
  userScale_ = false;
  scaleLeft_ = scaleTop_ = 0;
  scaleWidth_ = scaleHeight_ = 0;
}

float Canvas::ScaleWidth() const {
  if (userScale_) return scaleWidth_;
  return static_cast<float>(pixelWidth() * kTwipsPerInch / dpi());
}

float Canvas::ScaleHeight() const {
  if (userScale_) return scaleHeight_;
  return static_cast<float>(pixelHeight() * kTwipsPerInch / dpi());
}

namespace {

// Pixels in one unit of the given kind along an axis whose user extent is `userExtent`
// over `pixels` device pixels. Zero when the axis has no extent (an empty surface).
double pixelsPerUnit(ScaleUnit unit, double userExtent, int pixels, double dpi) {
  switch (unit) {
    case ScaleUnit::Pixels:
      return 1.0;
    case ScaleUnit::Twips:
      return dpi / kTwipsPerInch;
    case ScaleUnit::User:
      return userExtent == 0 ? 0.0 : pixels / userExtent;
  }
  return 1.0;
}

float convert(float value, ScaleUnit from, ScaleUnit to, double userExtent, int pixels,
              double dpi) {
  if (from == to) return value;
  const double toPixels = pixelsPerUnit(from, userExtent, pixels, dpi);
  const double perPixel = pixelsPerUnit(to, userExtent, pixels, dpi);
  if (perPixel == 0) return 0;
  return static_cast<float>(value * toPixels / perPixel);
}

}  // namespace

float Canvas::ScaleX(float width, ScaleUnit from, ScaleUnit to) const {
  return convert(width, from, to, ScaleWidth(), pixelWidth(), dpi());
}

float Canvas::ScaleY(float height, ScaleUnit from, ScaleUnit to) const {
  return convert(height, from, to, ScaleHeight(), pixelHeight(), dpi());
}

double Canvas::toPixelX(float x) const {
  const double width = ScaleWidth();
  if (width == 0) return 0;
  return (static_cast<double>(x) - scaleLeft_) * pixelWidth() / width;
}

double Canvas::toPixelY(float y) const {
  const double height = ScaleHeight();
  if (height == 0) return 0;
  return (static_cast<double>(y) - scaleTop_) * pixelHeight() / height;
}

void Canvas::SetBackColor(Color c) {
  backColor_ = c & 0xFFFFFFu;
  paintClear();
}

void Canvas::SetFont(std::string_view face, float points) {
  fontName_ = std::string(face);
  fontSize_ = points > 0 ? points : fontSize_;
  fontPixelHeight_ = fontPixelWidth_ = 0;
}

void Canvas::SetPixelFont(std::string_view face, int heightPx, int widthPx) {
  fontName_ = std::string(face);
  // The old logical-font records gave sizes as negative numbers for "character
  // height"; the magnitude is what counts.
  fontPixelHeight_ = std::abs(heightPx);
  fontPixelWidth_ = std::abs(widthPx);
  if (fontPixelHeight_ > 0) fontSize_ = static_cast<float>(fontPixelHeight_ * 72.0 / dpi());
}

void Canvas::Line(float x1, float y1, float x2, float y2, Color color, LineKind kind) {
  const Color c = resolve(color);
  switch (kind) {
    case LineKind::Line:
      paintLine(x1, y1, x2, y2, c);
      break;
    case LineKind::Box:
      paintBox(x1, y1, x2, y2, c, false);
      break;
    case LineKind::FilledBox:
      paintBox(x1, y1, x2, y2, c, true);
      break;
  }
  currentX_ = x2;
  currentY_ = y2;
}

void Canvas::LineTo(float x2, float y2, Color color) {
  Line(currentX_, currentY_, x2, y2, color);
}

void Canvas::LineStep(float dx, float dy, Color color) {
  Line(currentX_, currentY_, currentX_ + dx, currentY_ + dy, color);
}

void Canvas::PSet(float x, float y, Color color) {
  paintPoint(x, y, resolve(color));
  currentX_ = x;
  currentY_ = y;
}

void Canvas::Circle(float x, float y, float radius, Color color) {
  paintCircle(x, y, std::fabs(radius), resolve(color));
  currentX_ = x;
  currentY_ = y;
}

void Canvas::Print(std::string_view text, bool newline) {
  if (!text.empty()) paintText(currentX_, currentY_, text);
  if (newline) {
    // The line height is taken from a character even for an empty line.
    currentY_ += TextHeight(text.empty() ? std::string_view("X") : text);
    currentX_ = scaleLeft_;
  } else {
    currentX_ += TextWidth(text);
  }
}

// Text extents carry the sign of the scale's axis, so CurrentY + TextHeight is the line
// below on screen whichever way y grows.
float Canvas::TextWidth(std::string_view text) const {
  return ScaleX(static_cast<float>(textPixelWidth(text)), ScaleUnit::Pixels, ScaleUnit::User);
}

float Canvas::TextHeight(std::string_view text) const {
  return ScaleY(static_cast<float>(textPixelHeight(text)), ScaleUnit::Pixels, ScaleUnit::User);
}

void Canvas::Cls() {
  paintClear();
  currentX_ = 0;
  currentY_ = 0;
}

}  // namespace orvane
