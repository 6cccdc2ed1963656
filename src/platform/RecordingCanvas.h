#pragma once
// A Canvas that paints nothing and remembers every primitive it was asked for, in user
// coordinates with the state that applied, so tests can check what a drawing routine
// drew and in which order. Text metrics are fixed-pitch: each character is
// charWidth x charHeight pixels, or the pixel font's size when one is set.

#include <cstddef>
#include <string>
#include <vector>

#include "platform/Canvas.h"

namespace orvane {

struct CanvasCall {
  enum class Kind { Line, Box, FilledBox, Point, Circle, Text, Clear, SavePicture };
  Kind kind = Kind::Line;
  float x1 = 0, y1 = 0;  // start point, set point, circle centre or text position
  float x2 = 0, y2 = 0;  // end point of a line or box
  float radius = 0;
  Color color = 0;  // line colour; ForeColor for text; BackColor for a clear
  orvane::DrawStyle drawStyle = DrawStyle::Solid;
  int drawWidth = 1;
  orvane::FillStyle fillStyle = FillStyle::Transparent;
  Color fillColor = 0;
  std::string text;  // text printed, or the path of a saved picture
  std::string fontName;
  float fontSize = 0;
  int fontPixelHeight = 0, fontPixelWidth = 0;
};

class RecordingCanvas : public Canvas {
 public:
  explicit RecordingCanvas(int widthPx = 600, int heightPx = 400, double dpi = 96,
                           int charWidthPx = 8, int charHeightPx = 16);

  int pixelWidth() const override { return width_; }
  int pixelHeight() const override { return height_; }
  double dpi() const override { return dpi_; }
  void resize(int widthPx, int heightPx);

  // Records the request and reports success.
  bool SavePicture(const std::string& path) const override;

  const std::vector<CanvasCall>& calls() const { return calls_; }
  size_t size() const { return calls_.size(); }
  const CanvasCall& operator[](size_t i) const { return calls_.at(i); }
  void clearCalls() { calls_.clear(); }
  size_t count(CanvasCall::Kind kind) const;

  // One call as a short line, coordinates with up to 6 significant digits and colours
  // as 6 hex digits 0xBBGGRR, e.g. "line (0,0)-(10,5) #0000FF dot",
  // "circle (1,2) r=0.5 #FF0000 fill #FF00FF", "text (0,10) \"ab\" #000000",
  // "pset (3,4) #00FF00", "box ...", "fbox ...", "cls #FFFFFF", "save \"a.bmp\"".
  std::string describe(size_t i) const;
  // Every call described, in order.
  std::vector<std::string> describeAll() const;

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
  CanvasCall stateCall(CanvasCall::Kind kind, Color color) const;

  int width_, height_;
  double dpi_;
  int charWidth_, charHeight_;
  mutable std::vector<CanvasCall> calls_;
};

}  // namespace orvane
