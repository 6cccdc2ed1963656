#include "platform/RecordingCanvas.h"

#include <cstdio>

namespace orvane {

RecordingCanvas::RecordingCanvas(int widthPx, int heightPx, double dpi, int charWidthPx,
                                 int charHeightPx)
    : width_(widthPx < 0 ? 0 : widthPx),
      height_(heightPx < 0 ? 0 : heightPx),
      dpi_(dpi > 0 ? dpi : 96),
      charWidth_(charWidthPx < 1 ? 1 : charWidthPx),
      charHeight_(charHeightPx < 1 ? 1 : charHeightPx) {}

void RecordingCanvas::resize(int widthPx, int heightPx) {
  width_ = widthPx < 0 ? 0 : widthPx;
  height_ = heightPx < 0 ? 0 : heightPx;
}

CanvasCall RecordingCanvas::stateCall(CanvasCall::Kind kind, Color color) const {
  CanvasCall call;
  call.kind = kind;
  call.color = color;
  call.drawStyle = DrawStyle();
  call.drawWidth = DrawWidth();
  call.fillStyle = FillStyle();
  call.fillColor = FillColor();
  call.fontName = FontName();
  call.fontSize = FontSize();
  call.fontPixelHeight = FontPixelHeight();
  call.fontPixelWidth = FontPixelWidth();
  return call;
}

void RecordingCanvas::paintLine(float x1, float y1, float x2, float y2, Color color) {
  CanvasCall call = stateCall(CanvasCall::Kind::Line, color);
  call.x1 = x1, call.y1 = y1, call.x2 = x2, call.y2 = y2;
  calls_.push_back(std::move(call));
}

void RecordingCanvas::paintBox(float x1, float y1, float x2, float y2, Color color,
                               bool filled) {
  CanvasCall call =
      stateCall(filled ? CanvasCall::Kind::FilledBox : CanvasCall::Kind::Box, color);
  call.x1 = x1, call.y1 = y1, call.x2 = x2, call.y2 = y2;
  calls_.push_back(std::move(call));
}

void RecordingCanvas::paintPoint(float x, float y, Color color) {
  CanvasCall call = stateCall(CanvasCall::Kind::Point, color);
  call.x1 = x, call.y1 = y;
  calls_.push_back(std::move(call));
}

void RecordingCanvas::paintCircle(float x, float y, float radius, Color color) {
  CanvasCall call = stateCall(CanvasCall::Kind::Circle, color);
  call.x1 = x, call.y1 = y, call.radius = radius;
  calls_.push_back(std::move(call));
}

void RecordingCanvas::paintText(float x, float y, std::string_view text) {
  CanvasCall call = stateCall(CanvasCall::Kind::Text, ForeColor());
  call.x1 = x, call.y1 = y;
  call.text = std::string(text);
  calls_.push_back(std::move(call));
}

void RecordingCanvas::paintClear() {
  calls_.push_back(stateCall(CanvasCall::Kind::Clear, BackColor()));
}

bool RecordingCanvas::SavePicture(const std::string& path) const {
  CanvasCall call = stateCall(CanvasCall::Kind::SavePicture, 0);
  call.text = path;
  calls_.push_back(std::move(call));
  return true;
}

double RecordingCanvas::textPixelWidth(std::string_view text) const {
  const int w = FontPixelWidth() > 0 ? FontPixelWidth() : charWidth_;
  return static_cast<double>(text.size()) * w;
}

double RecordingCanvas::textPixelHeight(std::string_view) const {
  return FontPixelHeight() > 0 ? FontPixelHeight() : charHeight_;
}

size_t RecordingCanvas::count(CanvasCall::Kind kind) const {
  size_t n = 0;
  for (const CanvasCall& call : calls_)
    if (call.kind == kind) ++n;
  return n;
}

namespace {

std::string num(float v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.6g", v == 0 ? 0.0 : static_cast<double>(v));
  return buf;
}

std::string point(float x, float y) { return "(" + num(x) + "," + num(y) + ")"; }

std::string color(Color c) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "#%06X", static_cast<unsigned>(c & 0xFFFFFFu));
  return buf;
}

std::string style(const CanvasCall& call) {
  std::string out;
  if (call.drawStyle == DrawStyle::Dot) out += " dot";
  if (call.drawStyle == DrawStyle::Dash) out += " dash";
  if (call.drawWidth > 1) out += " w" + std::to_string(call.drawWidth);
  return out;
}

}  // namespace

std::string RecordingCanvas::describe(size_t i) const {
  const CanvasCall& c = calls_.at(i);
  switch (c.kind) {
    case CanvasCall::Kind::Line:
      return "line " + point(c.x1, c.y1) + "-" + point(c.x2, c.y2) + " " + color(c.color) +
             style(c);
    case CanvasCall::Kind::Box:
      return "box " + point(c.x1, c.y1) + "-" + point(c.x2, c.y2) + " " + color(c.color) +
             style(c);
    case CanvasCall::Kind::FilledBox:
      return "fbox " + point(c.x1, c.y1) + "-" + point(c.x2, c.y2) + " " + color(c.color);
    case CanvasCall::Kind::Point:
      return "pset " + point(c.x1, c.y1) + " " + color(c.color);
    case CanvasCall::Kind::Circle: {
      std::string out =
          "circle " + point(c.x1, c.y1) + " r=" + num(c.radius) + " " + color(c.color);
      if (c.fillStyle == FillStyle::Solid) out += " fill " + color(c.fillColor);
      return out + style(c);
    }
    case CanvasCall::Kind::Text:
      return "text " + point(c.x1, c.y1) + " \"" + c.text + "\" " + color(c.color);
    case CanvasCall::Kind::Clear:
      return "cls " + color(c.color);
    case CanvasCall::Kind::SavePicture:
      return "save \"" + c.text + "\"";
  }
  return {};
}

std::vector<std::string> RecordingCanvas::describeAll() const {
  std::vector<std::string> out;
  out.reserve(calls_.size());
  for (size_t i = 0; i < calls_.size(); ++i) out.push_back(describe(i));
  return out;
}

}  // namespace orvane
