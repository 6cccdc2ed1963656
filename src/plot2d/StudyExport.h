#pragma once
// The study file for the Curvix function-study program, with a bitmap of the graph
// beside it.

#include <functional>
#include <string>
#include <vector>

#include "plot2d/StudyResults.h"
#include "plot2d/StudySettings.h"
#include "plot2d/Viewport.h"

namespace orvane {

class Canvas;

struct StudyExportInput {
  StudyFieldTexts study;   // equation, interval, subintervals, error bound, iterations
  PlotSetupTexts plot;     // the plot-setup field texts at export time
  std::vector<std::string> constants;  // cboConstants entries, as listed
};

// The file's lines, without line ends: the header, the study record (with the counts of
// roots, maxima, minima and extrema marked as possible roots), the plot record, the
// constants, then the integral (when computed), roots, maxima and minima.
std::vector<std::string> studyExportLines(const StudyExportInput& input,
                                          const StudyResults& results);

// The graph's bitmap beside the export file: the file's full name with ".bmp" added.
std::string exportBitmapName(const std::string& path);

// The whole export: when a graph is drawn, the picture saved as the bitmap (switching
// the image on and re-plotting through replot() when it is not persistent), and the
// file, both replacing earlier ones only once both are written. RuntimeError 75 when
// either cannot be written; the earlier files are then kept.
void exportStudy(const std::string& path, const StudyExportInput& input,
                 const StudyResults& results, Canvas& picture, bool graphDrawn, bool persist,
                 const std::function<void()>& replot);

}  // namespace orvane
