#pragma once
// The 2-D study window's fields as the batch tool fills them: the texts the window
// opens with, in one place. The study interval and plot setup come from the window's
// own default routine (they follow the data and the fitted line), the fixed texts from
// the same place its load routine takes them.

#include <optional>
#include <span>
#include <string>

#include "plot2d/StudyDefaults.h"
#include "plot2d/StudySettings.h"
#include "plot2d/Viewport.h"

namespace orvane {

struct PlotFields {
  StudyFieldTexts study;
  PlotSetupTexts setup;
  bool grid = false;           // chkGrid
  bool shade = false;          // chkShade
  bool labelWindow = false;    // chkWindow
  bool labelDivisions = true;  // chkDivisions
  // Picture1 opens at this size, in pixels.
  int pictureWidth = studyOpening::kPictureWidth;
  int pictureHeight = studyOpening::kPictureHeight;
};

// The fields as the window opens on the given data points (none: centred on the
// origin) and fitted line.
inline PlotFields DefaultPlotFields(std::span<const double> xs = {}, std::span<const double> ys = {},
                                   std::optional<FittedLine> line = std::nullopt) {
  const StudyWindowDefaults d = defaultStudyWindow(xs, ys, line);
  PlotFields f;
  f.study = StudyFieldTexts{/*equation=*/"",  d.xlower,    d.xupper,
                            studyOpening::kSubintervals, studyOpening::kErrorBound, studyOpening::kMaxcy,
                            /*derivative=*/"Function"};
  f.setup = d.plot;
  f.setup.plotStep = studyOpening::kPlotStep;
  return f;
}

// The stereo pictures as designed, in pixels.
constexpr int kStereoPictureSize = 400;

}  // namespace orvane
