#pragma once
// A printed document: text lines in the current font at the current position, tab
// columns, pictures painted onto the page, and the end of the document. Positions are
// in twips from the top-left of the printable area.

#include <string>
#include <string_view>

namespace orvane {

class Canvas;

class PrinterPage {
 public:
  virtual ~PrinterPage() = default;

  // Writes text at the current position; the position moves past it.
  virtual void Write(std::string_view text) = 0;
  // Moves to the given column (counted from 1, in widths of the font's character) of
  // the current line; to the next line when the current position is already past it.
  virtual void Tab(int column) = 0;
  // Ends the current line: the position goes to the left margin of the next line; past
  // the bottom of the page a new page is started.
  virtual void NewLine() = 0;
  // A whole line: Write then NewLine. PrintLine() is an empty line.
  void PrintLine(std::string_view text = {}) {
    Write(text);
    NewLine();
  }

  virtual double CurrentY() const = 0;  // twips
  virtual void SetCurrentY(double twips) = 0;
  virtual std::string FontName() const = 0;
  virtual void SetFontName(std::string_view face) = 0;

  // Paints a picture's image with its top-left corner at (left, top), scaled to the
  // given size, all in twips.
  virtual void PaintPicture(const Canvas& picture, double left, double top, double width,
                            double height) = 0;
  // Ends the document: the pages go to the printer or file.
  virtual void EndDoc() = 0;
};

}  // namespace orvane
