#pragma once
// The printed 2-D study report: the graph (when one is drawn), the function, the user
// constants, the study settings, the results found so far and the plot setup, in
// a fixed-pitch font so that the labels line up on their colons.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "plot2d/FunctionOfX.h"
#include "plot2d/StudyResults.h"
#include "plot2d/Viewport.h"

namespace orvane {

class Canvas;
class PrinterPage;

// What a graph shows: the plotted item and the axes, divisions and window it was drawn
// with. The title and the setup lines describe it.
struct StudyGraph {
  int32_t derivative = 0;  // 0 = the function, k = the k-th derivative
  PlotSetup setup;
};

struct StudyReportInput {
  bool graphDrawn = false;  // a graph is on the picture
  bool persist = false;     // chkPersist: the picture keeps its image
  StudyGraph plotted;       // the graph on the picture (or the fields' setup without one)
  std::string equation;                // txtEquation
  std::vector<std::string> constants;  // cboConstants entries, as listed
  double xlower = 0, xupper = 0;       // the study interval's values
  std::string subintervals, maxcy, error;  // the texts of those fields
};

// Where the graph goes on the page (twips): its top-left corner is the page's, and it
// ends above the first text line at 4500 twips.
constexpr double kReportTextTop = 4500;

// Prints the report and ends the document. When a graph is drawn without a persistent
// image, the picture's image is switched on and replot() draws it again, from the
// fields as they are now, before it is painted on the page; the title and the setup
// lines then describe the graph replot() returns. The maxima and minima are printed
// with f evaluated again (RuntimeError from f or from replot ends the report). A
// printer fault is the page's RuntimeError.
void printStudyReport(PrinterPage& page, const StudyReportInput& input,
                      const StudyResults& results, FunctionOfX& f, Canvas& picture,
                      const std::function<StudyGraph()>& replot);

}  // namespace orvane
