#include "stereo/StereoReport.h"

#include "platform/Canvas.h"
#include "platform/NumberText.h"
#include "platform/PrinterPage.h"
#include "platform/RuntimeError.h"

namespace orvane {

namespace {

// A single-precision value in the print form: a leading blank when not negative, one
// blank after.
std::string printed(float v) { return (v < 0 ? "" : " ") + formatSingle(v) + " "; }
std::string printed(int32_t v) { return formatPrint(v); }

template <class... T>
std::string bracketed(std::string_view label, T... values) {
  std::string line(label);
  bool first = true;
  ((line += (first ? "" : ","), line += printed(values), first = false), ...);
  line += "]";
  return line;
}

// The name of the derivative the orders select, empty for the surface itself.
std::string_view derivativeName(const StereoFields& f) {
  try {
    return kDerivativeNames[static_cast<size_t>(DerivativeSelectorFor(ReadCount(f.xder), ReadCount(f.yder)))];
  } catch (const RuntimeError&) {
    return {};
  }
}

void paintPictures(PrinterPage& page, const ReportPictures& p) {
  using namespace reportpage;
  if (!p.persist) {
    p.left.SetAutoRedraw(true);
    p.right.SetAutoRedraw(true);
    if (p.replot) p.replot();
  }
  const double top = page.CurrentY();
  if (p.single != nullptr) {
    const double width = p.single->pixelWidth() * kTwipsPerPixel;
    page.PaintPicture(*p.single, kRightPictureLeft - kPictureGap / 2 - width / 2, top, width,
                      p.single->pixelHeight() * kTwipsPerPixel);
  } else {
    const double leftWidth = p.left.pixelWidth() * kTwipsPerPixel;
    page.PaintPicture(p.left, kRightPictureLeft - kPictureGap - leftWidth, top, leftWidth,
                      p.left.pixelHeight() * kTwipsPerPixel);
    page.PaintPicture(p.right, kRightPictureLeft, top, p.right.pixelWidth() * kTwipsPerPixel,
                      p.right.pixelHeight() * kTwipsPerPixel);
  }
  if (!p.persist) {
    p.left.SetAutoRedraw(false);
    p.right.SetAutoRedraw(false);
  }
}

}  // namespace

std::vector<std::string> StereoReportLines(const StereoFields& f, const StereoSettings& s,
                                           std::span<const std::string> constants) {
  std::vector<std::string> lines;
  if (!f.parametric) {
    lines.push_back("FUNCTION:");
    lines.push_back("Z=" + f.equationZ);
    const std::string_view name = derivativeName(f);
    if (!name.empty()) {
      lines.push_back("");
      lines.push_back("   CURRENT PARTIAL DERIVATIVE: [" + std::string(name) + "]");
    }
  } else {
    lines.push_back("PARAMETRIC EQUATIONS:");
    lines.push_back("X=" + f.equationX);
    lines.push_back("Y=" + f.equationY);
    lines.push_back("Z=" + f.equationZ);
  }
  lines.push_back("");
  if (!constants.empty()) {
    lines.push_back("CONSTANTS:");
    for (const std::string& c : constants) lines.push_back(c);
    lines.push_back("");
  }
  lines.push_back("PLOT SETUP:");
  lines.push_back(bracketed("                         AXES: [", s.xorigin, s.yorigin, s.zorigin));
  lines.push_back(bracketed("                    DIVISIONS: [", s.divx, s.divy, s.divz));
  if (!f.parametric) {
    lines.push_back(bracketed("                      X-RANGE: [", s.rangelxu, s.rangegxu));
    lines.push_back(bracketed("                      Y-RANGE: [", s.rangelyv, s.rangegyv));
  } else {
    lines.push_back(bracketed("                      U-RANGE: [", s.rangelxu, s.rangegxu));
    lines.push_back(bracketed("                      V-RANGE: [", s.rangelyv, s.rangegyv));
  }
  lines.push_back(bracketed("                     X-WINDOW: [", s.windowlx, s.windowgx));
  lines.push_back(bracketed("                     Y-WINDOW: [", s.windowly, s.windowgy));
  lines.push_back(bracketed("                     Z-WINDOW: [", s.windowlz, s.windowgz));
  lines.push_back(bracketed("           NUMBER OF SPACINGS: [", s.spacexu, s.spaceyv));
  lines.push_back(bracketed("                     SPACINGS: [", s.drxu, s.dryv));
  lines.push_back(bracketed("PLOTTING SEGMENTS PER SPACING: [", s.segsxu, s.segsyv));
  lines.push_back(bracketed("          PLOTTING INCREMENTS: [", s.stepxu, s.stepyv));
  lines.push_back(bracketed("                  TRANSLATION: [", s.xtr, s.ytr, s.ztr));
  lines.push_back(bracketed("                     ROTATION: [", s.xrot, s.yrot, s.zrot));
  lines.push_back("               NUMBER OF DOTS: " + printed(s.ndots));
  lines.push_back("          STEREOSCOPIC FACTOR:" + printed(s.stereo));
  lines.push_back("             REDUCTION FACTOR:" + printed(s.reduce));
  return lines;
}

void PrintStereoReport(PrinterPage& page, const StereoFields& fields, const StereoSettings& settings,
                       std::span<const std::string> constants, const ReportPictures* pictures) {
  const std::string previousFont = page.FontName();
  page.SetFontName("Courier New");
  if (pictures && pictures->drawn) paintPictures(page, *pictures);
  page.SetCurrentY(reportpage::kTextTop);
  for (const std::string& line : StereoReportLines(fields, settings, constants)) page.PrintLine(line);
  page.EndDoc();
  page.SetFontName(previousFont);
}

}  // namespace orvane
