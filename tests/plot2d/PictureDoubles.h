#pragma once
// A picture and a printer page that only write down what is asked of them, in order,
// for short hand-checkable sequences in the drawing, report and export tests.

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "platform/Canvas.h"
#include "platform/PrinterPage.h"

namespace orvane::testing {

struct Call {
  explicit Call(std::string k, float a = 0, float b = 0, float c = 0, float d = 0, Color col = 0,
                Color f = 0, bool isFilled = false)
      : kind(std::move(k)), x1(a), y1(b), x2(c), y2(d), color(col), fill(f), filled(isFilled) {}
  std::string kind;  // "line", "box", "point", "circle", "text", "clear", "pump"
  float x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // circle: centre and radius in x2
  Color color = 0;
  Color fill = 0;     // circle: fill colour when filled
  bool filled = false;
  std::string text;   // text: the text and the font as "face h w"
};

class PictureLog final : public Canvas {
 public:
  int pixelWidth() const override { return 200; }
  int pixelHeight() const override { return 150; }
  double dpi() const override { return 96; }
  // Writes a stand-in file, so that the caller can move it into place.
  bool SavePicture(const std::string& path) const override {
    saved.push_back(path);
    if (!saveSucceeds) return false;
    std::ofstream(path, std::ios::binary) << "BM";
    return true;
  }

  void mark(const std::string& kind) { calls.emplace_back(kind); }

  std::vector<Call> calls;
  mutable std::vector<std::string> saved;
  bool saveSucceeds = true;

 protected:
  void paintLine(float x1, float y1, float x2, float y2, Color c) override {
    calls.emplace_back("line", x1, y1, x2, y2, c);
  }
  void paintBox(float x1, float y1, float x2, float y2, Color c, bool filled) override {
    calls.emplace_back("box", x1, y1, x2, y2, c, 0, filled);
  }
  void paintPoint(float x, float y, Color c) override { calls.emplace_back("point", x, y, 0, 0, c); }
  void paintCircle(float x, float y, float r, Color c) override {
    const bool filled = FillStyle() == orvane::FillStyle::Solid;
    calls.emplace_back("circle", x, y, r, 0, c, filled ? FillColor() : 0, filled);
  }
  void paintText(float x, float y, std::string_view text) override {
    Call call("text", x, y, 0, 0, ForeColor());
    call.text = std::string(text) + " @" + FontName() + " " + std::to_string(FontPixelHeight()) +
                " " + std::to_string(FontPixelWidth());
    calls.push_back(call);
  }
  void paintClear() override { calls.emplace_back("clear"); }
  double textPixelWidth(std::string_view text) const override { return 5.0 * text.size(); }
  double textPixelHeight(std::string_view) const override { return 7; }
};

class PageLog final : public PrinterPage {
 public:
  void Write(std::string_view text) override { current_ += text; }
  void Tab(int column) override {
    while (static_cast<int>(current_.size()) < column - 1) current_ += ' ';
  }
  void NewLine() override {
    lines.push_back(current_);
    current_.clear();
    y_ += 240;
  }
  double CurrentY() const override { return y_; }
  void SetCurrentY(double twips) override {
    y_ = twips;
    events.push_back("y " + std::to_string(static_cast<int>(twips)) + " before line " +
                     std::to_string(lines.size()));
  }
  std::string FontName() const override { return font_; }
  void SetFontName(std::string_view face) override { font_ = face; }
  void PaintPicture(const Canvas&, double left, double top, double width, double height) override {
    events.push_back("picture " + std::to_string(static_cast<int>(left)) + "," +
                     std::to_string(static_cast<int>(top)) + " bottom " +
                     std::to_string(static_cast<int>(std::lround(top + height))) +
                     " width " + std::to_string(static_cast<int>(std::lround(width))));
  }
  void EndDoc() override { events.push_back("end after " + std::to_string(lines.size())); }

  std::vector<std::string> lines;
  std::vector<std::string> events;

 private:
  std::string current_;
  std::string font_;
  double y_ = 0;
};

}  // namespace orvane::testing
