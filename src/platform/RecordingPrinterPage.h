#pragma once
// A printed document kept in memory for tests: the lines as text (tab columns expanded
// to blanks, as in a fixed-pitch font), the y in twips and the page of each line, the
// fonts chosen, the pictures painted and how many documents were ended.

#include <string>
#include <string_view>
#include <vector>

#include "platform/PrinterPage.h"

namespace orvane {

struct PrintedLine {
  std::string text;
  double y = 0;  // twips from the top of the printable area
  int page = 1;
  int document = 0;  // how many documents had been ended before this line
  std::string fontName;
};

struct PaintedPicture {
  double left = 0, top = 0, width = 0, height = 0;  // twips
  int pixelWidth = 0, pixelHeight = 0;              // of the picture painted
  int page = 1;
};

class RecordingPrinterPage : public PrinterPage {
 public:
  // Lines are lineHeight twips apart; a page holds what fits in pageHeight twips.
  explicit RecordingPrinterPage(double lineHeight = 240, double pageHeight = 15120,
                                std::string fontName = "Arial");

  void Write(std::string_view text) override;
  void Tab(int column) override;
  void NewLine() override;
  double CurrentY() const override { return y_; }
  void SetCurrentY(double twips) override;
  std::string FontName() const override { return fontName_; }
  void SetFontName(std::string_view face) override;
  void PaintPicture(const Canvas& picture, double left, double top, double width,
                    double height) override;
  // Ends the document; a line still open is ended first.
  void EndDoc() override;

  const std::vector<PrintedLine>& lines() const { return lines_; }
  std::vector<std::string> texts() const;  // the lines' texts only
  const std::string& openLine() const { return current_; }  // written, not yet ended
  const std::vector<std::string>& fontsSet() const { return fontsSet_; }
  const std::vector<PaintedPicture>& pictures() const { return pictures_; }
  int endDocCount() const { return endDocs_; }
  int page() const { return page_; }
  double lineHeight() const { return lineHeight_; }

 private:
  double lineHeight_, pageHeight_;
  std::string fontName_;
  std::string current_;
  bool lineStarted_ = false;
  double lineY_ = 0;
  double y_ = 0;
  int page_ = 1;
  int endDocs_ = 0;
  std::vector<PrintedLine> lines_;
  std::vector<std::string> fontsSet_;
  std::vector<PaintedPicture> pictures_;
};

}  // namespace orvane
