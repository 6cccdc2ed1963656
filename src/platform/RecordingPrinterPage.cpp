#include "platform/RecordingPrinterPage.h"

#include "platform/Canvas.h"

namespace orvane {

RecordingPrinterPage::RecordingPrinterPage(double lineHeight, double pageHeight,
                                           std::string fontName)
    : lineHeight_(lineHeight > 0 ? lineHeight : 240),
      pageHeight_(pageHeight > lineHeight_ ? pageHeight : lineHeight_),
      fontName_(std::move(fontName)) {}

void RecordingPrinterPage::Write(std::string_view text) {
  if (!lineStarted_) {
    lineStarted_ = true;
    lineY_ = y_;
  }
  current_ += text;
}

void RecordingPrinterPage::Tab(int column) {
  if (column < 1) column = 1;
  const size_t target = static_cast<size_t>(column - 1);
  if (current_.size() > target) NewLine();
  Write(std::string(target - current_.size(), ' '));
}

void RecordingPrinterPage::NewLine() {
  if (!lineStarted_) lineY_ = y_;
  lines_.push_back({current_, lineY_, page_, endDocs_, fontName_});
  current_.clear();
  lineStarted_ = false;
  y_ += lineHeight_;
  if (y_ + lineHeight_ > pageHeight_) {
    y_ = 0;
    ++page_;
  }
}

void RecordingPrinterPage::SetCurrentY(double twips) {
  y_ = twips < 0 ? 0 : twips;
  if (!current_.empty() || lineStarted_) lineY_ = y_;
}

void RecordingPrinterPage::SetFontName(std::string_view face) {
  fontName_ = std::string(face);
  fontsSet_.push_back(fontName_);
}

void RecordingPrinterPage::PaintPicture(const Canvas& picture, double left, double top,
                                        double width, double height) {
  pictures_.push_back(
      {left, top, width, height, picture.pixelWidth(), picture.pixelHeight(), page_});
}

void RecordingPrinterPage::EndDoc() {
  if (lineStarted_) NewLine();
  ++endDocs_;
  y_ = 0;
  page_ = 1;
}

std::vector<std::string> RecordingPrinterPage::texts() const {
  std::vector<std::string> out;
  out.reserve(lines_.size());
  for (const PrintedLine& line : lines_) out.push_back(line.text);
  return out;
}

}  // namespace orvane
