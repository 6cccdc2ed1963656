#pragma once
// The drawing surface every picture of the program is painted on: the 2-D picture, the
// two stereo pictures, the printer page and off-screen images. It keeps a user
// coordinate scale, a current point, colours and styles; the routines draw in user
// coordinates and never see a pixel. Coordinates are single precision, and anything
// drawn outside the surface is clipped.
//
// The base class implements the scale, the current point and the drawing state once;
// an implementation paints the primitives (QImageCanvas) or records them
// (RecordingCanvas).

#include <cstdint>
#include <string>
#include <string_view>

namespace orvane {

// 24-bit colour with red in the low byte: 0x0000FF red, 0x00FF00 green, 0xFF0000 blue.
using Color = uint32_t;
namespace colors {
constexpr Color Black = 0x000000;
constexpr Color White = 0xFFFFFF;
constexpr Color Red = 0x0000FF;
constexpr Color Green = 0x00FF00;
constexpr Color Blue = 0xFF0000;
constexpr Color Yellow = 0x00FFFF;
constexpr Color Magenta = 0xFF00FF;
}  // namespace colors

enum class DrawStyle { Solid = 0, Dash = 1, Dot = 2 };
enum class FillStyle { Solid = 0, Transparent = 1 };
// Units for ScaleX/ScaleY: the user scale, twips (1440 to the inch) or pixels.
enum class ScaleUnit { User = 0, Twips = 1, Pixels = 3 };
enum class LineKind { Line, Box, FilledBox };

class Canvas {
 public:
  virtual ~Canvas() = default;

  // The surface's size in device pixels and its logical dots per inch.
  virtual int pixelWidth() const = 0;
  virtual int pixelHeight() const = 0;
  virtual double dpi() const = 0;

  // User scale: (x1, y1) is the upper-left corner, (x2, y2) the lower-right one;
  // y grows upward when y2 < y1. Without a call the scale is twips from (0, 0).
  // A scale without width or height is RuntimeError 5, a non-finite one 6.
  void Scale(float x1, float y1, float x2, float y2);
  void ScaleTwips();  // back to the default twips scale
  float ScaleLeft() const { return scaleLeft_; }
  float ScaleTop() const { return scaleTop_; }
  float ScaleWidth() const;
  float ScaleHeight() const;
  // Converts a width (ScaleX) or height (ScaleY) between units.
  float ScaleX(float width, ScaleUnit from, ScaleUnit to) const;
  float ScaleY(float height, ScaleUnit from, ScaleUnit to) const;

  // Drawing state.
  float CurrentX() const { return currentX_; }
  float CurrentY() const { return currentY_; }
  void SetCurrentX(float x) { currentX_ = x; }
  void SetCurrentY(float y) { currentY_ = y; }
  Color ForeColor() const { return foreColor_; }
  void SetForeColor(Color c) { foreColor_ = c; }
  Color BackColor() const { return backColor_; }
  void SetBackColor(Color c);  // also clears the surface to the new colour
  Color FillColor() const { return fillColor_; }
  void SetFillColor(Color c) { fillColor_ = c; }
  orvane::FillStyle FillStyle() const { return fillStyle_; }
  void SetFillStyle(orvane::FillStyle s) { fillStyle_ = s; }
  orvane::DrawStyle DrawStyle() const { return drawStyle_; }
  void SetDrawStyle(orvane::DrawStyle s) { drawStyle_ = s; }
  int DrawWidth() const { return drawWidth_; }
  void SetDrawWidth(int pixels) { drawWidth_ = pixels < 1 ? 1 : pixels; }
  bool AutoRedraw() const { return autoRedraw_; }
  void SetAutoRedraw(bool on) { autoRedraw_ = on; }

  // Font by face name and size in points; or a logical font given by its character
  // height and width in pixels (the small label fonts of the 2-D picture).
  const std::string& FontName() const { return fontName_; }
  float FontSize() const { return fontSize_; }
  void SetFont(std::string_view face, float points);
  void SetPixelFont(std::string_view face, int heightPx, int widthPx);
  int FontPixelHeight() const { return fontPixelHeight_; }  // 0 unless a pixel font
  int FontPixelWidth() const { return fontPixelWidth_; }

  // Drawing. Colours default to ForeColor. Each call leaves the current point where
  // the original drawing language leaves it: at the end of a line or box, at a set
  // point, at a circle's centre.
  static constexpr Color UseForeColor = 0xFFFFFFFFu;
  void Line(float x1, float y1, float x2, float y2, Color color = UseForeColor,
            LineKind kind = LineKind::Line);
  void LineTo(float x2, float y2, Color color = UseForeColor);  // from the current point
  void LineStep(float dx, float dy, Color color = UseForeColor);  // relative end point
  void PSet(float x, float y, Color color = UseForeColor);
  // Radius in units of the x axis; filled with FillColor when FillStyle is Solid.
  void Circle(float x, float y, float radius, Color color = UseForeColor);
  // Writes text with its top-left corner at the current point in ForeColor; with
  // newline the current point moves to the start of the next line, else just past the
  // text.
  void Print(std::string_view text, bool newline = true);
  // Extents in user units, signed like ScaleWidth/ScaleHeight: with y growing upward
  // TextHeight is negative, so CurrentY + TextHeight is always the line below.
  float TextWidth(std::string_view text) const;
  float TextHeight(std::string_view text) const;
  // Clears to BackColor and puts the current point at (0, 0).
  void Cls();

  // Saves the surface as a Windows bitmap file; false when it cannot be written.
  virtual bool SavePicture(const std::string& path) const = 0;

  // Device coordinates of a user point (pixels, fractional).
  double toPixelX(float x) const;
  double toPixelY(float y) const;

 protected:
  // Primitives in user coordinates; the state (colours, styles, font) is read from
  // the accessors above.
  virtual void paintLine(float x1, float y1, float x2, float y2, Color color) = 0;
  virtual void paintBox(float x1, float y1, float x2, float y2, Color color, bool filled) = 0;
  virtual void paintPoint(float x, float y, Color color) = 0;
  virtual void paintCircle(float x, float y, float radius, Color color) = 0;
  virtual void paintText(float x, float y, std::string_view text) = 0;
  virtual void paintClear() = 0;
  // Extent of a text in device pixels in the current font.
  virtual double textPixelWidth(std::string_view text) const = 0;
  virtual double textPixelHeight(std::string_view text) const = 0;

 private:
  Color resolve(Color c) const { return c == UseForeColor ? foreColor_ : c; }

  bool userScale_ = false;
  float scaleLeft_ = 0, scaleTop_ = 0, scaleWidth_ = 0, scaleHeight_ = 0;
  float currentX_ = 0, currentY_ = 0;
  Color foreColor_ = colors::Black;
  Color backColor_ = colors::White;
  Color fillColor_ = colors::Black;
  orvane::FillStyle fillStyle_ = FillStyle::Transparent;
  orvane::DrawStyle drawStyle_ = DrawStyle::Solid;
  int drawWidth_ = 1;
  bool autoRedraw_ = false;
  std::string fontName_ = "MS Sans Serif";
  float fontSize_ = 8.25f;
  int fontPixelHeight_ = 0, fontPixelWidth_ = 0;
};

}  // namespace orvane
