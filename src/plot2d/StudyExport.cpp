#include "plot2d/StudyExport.h"

#include <initializer_list>

#include "platform/Canvas.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "platform/SafeFile.h"

namespace orvane {

namespace {

// A write record: fields separated by commas, strings quoted, numbers without blanks.
class Record {
 public:
  Record& text(const std::string& s) { return add("\"" + s + "\""); }
  Record& number(double v) { return add(formatGeneral(v)); }
  Record& flag(bool b) { return add(b ? "#TRUE#" : "#FALSE#"); }
  const std::string& str() const { return line_; }

 private:
  Record& add(const std::string& field) {
    if (!first_) line_ += ',';
    first_ = false;
    line_ += field;
    return *this;
  }
  std::string line_;
  bool first_ = true;
};

}  // namespace

std::vector<std::string> studyExportLines(const StudyExportInput& in, const StudyResults& results) {
  const std::vector<double> maxima = results.extrema.maxima();
  const std::vector<double> minima = results.extrema.minima();
  std::vector<std::string> lines;
  lines.push_back("Curvix");

  Record study;
  study.text(in.study.equation);
  for (const std::string* t : {&in.study.xlower, &in.study.xupper, &in.study.subintervals,
                               &in.study.error, &in.study.maxcy})
    study.number(leadingNumber(*t));
  study.flag(results.integral.computed)
      .number(double(results.roots.roots.size()))
      .number(double(maxima.size()))
      .number(double(minima.size()))
      .number(results.extrema.possibleRootCount());
  lines.push_back(study.str());

  Record plot;
  const PlotSetupTexts& p = in.plot;
  for (const std::string* t : {&p.windowlx, &p.windowgx, &p.windowly, &p.windowgy, &p.plotStep,
                               &p.xorigin, &p.yorigin, &p.divx, &p.divy})
    plot.number(leadingNumber(*t));
  lines.push_back(plot.str());

  lines.push_back(formatPrint(toInt16(double(in.constants.size()))));
  for (const std::string& c : in.constants) lines.push_back(c);
  if (results.integral.computed) lines.push_back(formatPrint(results.integral.value));
  for (double r : results.roots.roots) lines.push_back(formatPrint(r));
  for (double x : maxima) lines.push_back(formatPrint(x));
  for (double x : minima) lines.push_back(formatPrint(x));
  return lines;
}

std::string exportBitmapName(const std::string& path) { return path + ".bmp"; }

void exportStudy(const std::string& path, const StudyExportInput& input,
                 const StudyResults& results, Canvas& picture, bool graphDrawn, bool persist,
                 const std::function<void()>& replot) {
  try {
    SafeSave save;
    if (graphDrawn && persist) {
      save.Picture(exportBitmapName(path), picture);
    } else if (graphDrawn) {
      // The image is switched on and drawn again so that it holds the graph.
      picture.SetAutoRedraw(true);
      if (replot) replot();
      try {
        save.Picture(exportBitmapName(path), picture);
      } catch (...) {
        picture.SetAutoRedraw(false);
        throw;
      }
      picture.SetAutoRedraw(false);
    }
    save.Lines(path, studyExportLines(input, results));
    save.Commit();
  } catch (const SaveError& e) {
    throw RuntimeError(err::PathFileAccess, e.what());
  }
}

}  // namespace orvane
