#pragma once
// A printed document on a QPrinter: a real printer chosen in the print dialog, or a
// PDF file. Text goes out line by line in the current font (a fixed-pitch face for
// "Courier New"), positions are kept in twips from the top-left of the printable area,
// and a line that would cross the bottom of the page starts a new page. Pictures are
// the images of QImageCanvas surfaces.
//
// The painter starts with the first output; EndDoc (or the destructor) ends it, which
// sends the document. A printer that cannot be opened is RuntimeError 482
// "Printer error".

#include <QFont>
#include <memory>
#include <string>

#include "platform/PrinterPage.h"

class QPainter;
class QPrinter;

namespace orvane {

class QtPrinterPage : public PrinterPage {
 public:
  // Prints on a printer set up by the caller (usually through the print dialog).
  explicit QtPrinterPage(std::unique_ptr<QPrinter> printer);
  // Writes a PDF file.
  explicit QtPrinterPage(const std::string& pdfPath, const std::string& documentName = {});
  ~QtPrinterPage() override;
  QtPrinterPage(const QtPrinterPage&) = delete;
  QtPrinterPage& operator=(const QtPrinterPage&) = delete;

  void Write(std::string_view text) override;
  void Tab(int column) override;
  void NewLine() override;
  double CurrentY() const override;
  void SetCurrentY(double twips) override;
  std::string FontName() const override { return fontName_; }
  void SetFontName(std::string_view face) override;
  void PaintPicture(const Canvas& picture, double left, double top, double width,
                    double height) override;
  void EndDoc() override;

  // Font size in points (10 unless changed).
  double FontSize() const { return fontSize_; }
  void SetFontSize(double points);
  int pagesStarted() const { return pages_; }
  QPrinter& printer() { return *printer_; }

 private:
  QPainter& painter();  // begins the document on first use
  QFont makeFont() const;
  double deviceFromTwips(double twips) const;
  double lineHeight();  // device pixels
  void newPage();

  std::unique_ptr<QPrinter> printer_;
  std::unique_ptr<QPainter> painter_;
  std::string fontName_ = "Courier New";
  double fontSize_ = 10;
  double x_ = 0, y_ = 0;  // device pixels within the printable area
  int pages_ = 0;
};

}  // namespace orvane
