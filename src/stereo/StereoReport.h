#pragma once
// The printed stereo report: the two pictures side by side, then the surface's
// definition and every plot setting in a fixed-pitch font, colons in column 30.

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "stereo/StereoSettings.h"

namespace orvane {

class Canvas;
class PrinterPage;

// Where the pictures go on the page, in twips.
namespace reportpage {
constexpr double kRightPictureLeft = 5985;  // left edge of the right picture
constexpr double kPictureGap = 120;         // between the two pictures
constexpr double kTwipsPerPixel = 11;       // a 400-pixel picture prints 4400 twips wide
constexpr double kTextTop = 4500;           // the first text line, below the pictures
}  // namespace reportpage

// The text lines after the pictures. The definition (representation, equations,
// derivative orders) comes from the fields as they stand, the values from the settings
// of the last plot; `constants` are the entries of the constants list.
std::vector<std::string> StereoReportLines(const StereoFields& fields, const StereoSettings& settings,
                                           std::span<const std::string> constants);

// The pictures to print: both are painted when `drawn`; without persistent images they
// are made persistent, redrawn by `replot`, painted and switched back. With `single`
// (the red-cyan picture, composed by `replot`) that one picture is painted instead of
// the pair, centred where the pair meets.
struct ReportPictures {
  Canvas& left;
  Canvas& right;
  bool drawn = true;
  bool persist = true;
  std::function<void()> replot;
  const Canvas* single = nullptr;
};

// Prints the whole report in "Courier New" and ends the document; the page's font is
// set back afterwards. `pictures` may be null (no pictures).
void PrintStereoReport(PrinterPage& page, const StereoFields& fields, const StereoSettings& settings,
                       std::span<const std::string> constants, const ReportPictures* pictures);

}  // namespace orvane
