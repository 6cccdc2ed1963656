#include "plot2d/StudyReport.h"

#include <algorithm>
#include <cmath>

#include "platform/Canvas.h"
#include "platform/NumberText.h"
#include "platform/PrinterPage.h"
#include "plot2d/ExtremaFinder.h"

namespace orvane {

namespace {

// The graph keeps its aspect ratio within this box (twips).
constexpr double kGraphMaxWidth = 9360;
constexpr double kGraphMaxHeight = 4320;

// A single-precision value as a printed line shows it: a blank or "-", the value, a
// blank.
std::string printSingle(float v) { return (v < 0 ? "" : " ") + formatSingle(v) + " "; }

void paintGraph(PrinterPage& page, const Canvas& picture) {
  const double width = std::max(1, picture.pixelWidth());
  const double height = std::max(1, picture.pixelHeight());
  const double scale = std::min(kGraphMaxWidth / width, kGraphMaxHeight / height);
  page.PaintPicture(picture, 0, 0, width * scale, height * scale);
}

void printExtrema(PrinterPage& page, const char* heading, const std::vector<double>& xs,
                  FunctionOfX& f) {
  if (xs.empty()) return;
  page.PrintLine();
  page.PrintLine(heading);
  for (double x : xs) {
    const double y = f(x);
    page.PrintLine("[" + formatPrint(x) + "," + formatPrint(y) + "]");
    if (std::fabs(y) < kPossibleRootTolerance) page.PrintLine("***POSSIBLE ROOT");
  }
}

}  // namespace

void printStudyReport(PrinterPage& page, const StudyReportInput& in,
                      const StudyResults& results, FunctionOfX& f, Canvas& picture,
                      const std::function<StudyGraph()>& replot) {
  page.SetFontName("Courier New");
  StudyGraph graph = in.plotted;
  if (in.graphDrawn) {
    if (in.persist) {
      paintGraph(page, picture);
    } else {
      picture.SetAutoRedraw(true);
      try {
        if (replot) graph = replot();
      } catch (...) {
        picture.SetAutoRedraw(false);
        throw;
      }
      paintGraph(page, picture);
      picture.SetAutoRedraw(false);
    }
    page.SetCurrentY(kReportTextTop);
    page.PrintLine(graph.derivative >= 1 ? "Plot of derivative #" + formatPrint(graph.derivative)
                                         : std::string("Plot of Function"));
  }
  page.PrintLine();
  page.PrintLine("FUNCTION:");
  page.PrintLine(in.equation);
  page.PrintLine();
  if (!in.constants.empty()) {
    page.PrintLine("CONSTANTS:");
    for (const std::string& c : in.constants) page.PrintLine(c);
    page.PrintLine();
  }
  page.PrintLine("    INTERVAL STUDIED: [" + formatPrint(in.xlower) + "," + formatPrint(in.xupper) +
                 "]");
  page.PrintLine("   # OF SUBINTERVALS: " + in.subintervals);
  page.PrintLine("MAX. # OF ITERATIONS: " + in.maxcy);
  page.PrintLine("       MAXIMUM ERROR: " + in.error);
  if (results.integral.computed) {
    page.PrintLine();
    page.PrintLine("INTEGRAL= " + formatPrint(results.integral.value));
  }
  if (!results.roots.roots.empty()) {
    page.PrintLine();
    page.PrintLine("ROOTS:");
    for (double r : results.roots.roots) page.PrintLine(formatPrint(r));
  }
  printExtrema(page, "MAXIMA:", results.extrema.maxima(), f);
  printExtrema(page, "MINIMA:", results.extrema.minima(), f);
  page.PrintLine();
  page.PrintLine("PLOT SETUP:");
  page.PrintLine();
  const PlotSetup& p = graph.setup;
  page.PrintLine("     AXES: [" + printSingle(p.xorigin) + "," + printSingle(p.yorigin) + "]");
  page.PrintLine("DIVISIONS: [" + printSingle(p.divx) + "," + printSingle(p.divy) + "]");
  page.PrintLine(" X-WINDOW: [" + printSingle(p.windowlx) + "," + printSingle(p.windowgx) + "]");
  page.PrintLine(" Y-WINDOW: [" + printSingle(p.windowly) + "," + printSingle(p.windowgy) + "]");
  page.EndDoc();
}

}  // namespace orvane
