#include "batch/BatchCommands.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QString>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>

#include "batch/CommandLine.h"
#include "regression/CsvProblem.h"
#include "batch/FormulaWindow.h"
#include "batch/PlotFields.h"
#include "engine/PointEvaluation.h"
#include "platform/NumberText.h"
#include "platform/RecordingPrinterPage.h"
#include "platform/RuntimeError.h"
#include "platform/SafeFile.h"
#include "platform/StopCheck.h"
#include "platform/ui/QImageCanvas.h"
#include "platform/ui/QtPrinterPage.h"
#include "plot2d/Derivatives.h"
#include "plot2d/EngineFunction.h"
#include "plot2d/ExtremaFinder.h"
#include "plot2d/Integrator.h"
#include "plot2d/PlotDrawing.h"
#include "plot2d/RootFinder.h"
#include "regression/FitSummary.h"
#include "regression/RegressionFile.h"
#include "regression/RegressionReport.h"
#include "regression/Solver.h"
#include "regression/StatisticsReport.h"
#include "stereo/EngineSurface.h"
#include "stereo/FieldRules.h"
#include "stereo/StereoExport.h"
#include "stereo/StereoRender.h"
#include "stereo/SurfaceMesh.h"

namespace orvane {

volatile std::sig_atomic_t batchInterrupted = 0;

namespace {

namespace fs = std::filesystem;

// ---- help ----

constexpr const char* kMainHelp = R"(Usage: orvane-batch COMMAND [OPTIONS] [--] ARGUMENTS

The workbench's routines without a window. Commands:
  eval      evaluate an expression as a plot window does
  fit       fit the linear model to a regression file pair or a CSV file
  report    the printed regression report, into a PDF file or as text
  study     roots, integral, extrema or a value of f(x), as the 2-D study window
  plot2d    draw the 2-D study picture into a PNG or BMP file
  stereo    draw the left and right stereo pictures into image files

"orvane-batch COMMAND --help" describes each command; "orvane-batch --version" prints
the version. "--" ends the options, so an expression may start with "-". Results go to standard output, messages to standard
error; the exit status is 0 when the command gave its result and 1 otherwise. Ctrl+C
(or SIGTERM) stops a command at once with status 130, leaving no file half-written.
)";

constexpr const char* kEvalHelp = R"(Usage: orvane-batch eval [--x V] [--y V] [--u V] [--v V] [--const NAME=EXPR]... [--] EXPR

Evaluates EXPR (VBScript expression syntax) in an engine set up as a plot window sets
up its own: the math object "sh" with x, y, u, v, pi, halfpi, e and the functions
Asin, Acos, Sinh, Cosh, Tanh, Asinh, Acosh, Atanh, then the constants in the order
given (a later one may use an earlier one). Prints the value in the program's number
form, or "error N: DESCRIPTION" on standard error (exit status 1).

  --x V, --y V, --u V, --v V   the variables (0 when not given)
  --const NAME=EXPR            a user constant, as "a=2.37"; may be repeated
)";

constexpr const char* kFitHelp = R"(Usage: orvane-batch fit [--csv] [--rename] [--save SPECFILE] [--stats | --json] [--] FILE

Fits y = A0 + A1*x1 + ... + Am*xm and prints the results list as the regression
window shows it (or its singular-system message, with exit status 1). When values too
large for the sums overflowed, the list is printed as the window shows it, but the exit
status is 1, standard error says why and nothing is saved. When fewer than 6 digits of
the coefficients can be trusted (ill-conditioned data), a warning saying how many goes
to standard error; the exit status stays 0.

FILE is a regression file pair (FILE, with its data file FILE.dat beside it) or a
CSV file: a header line naming the columns, the first column the dependent variable,
then one data set per line (at least 3), separated by ",", ";" or tabs (whichever the
header uses most), "." the decimal point. A file without a .dat beside it is read as
CSV when its name ends in .csv or its first field is not a number; --csv forces it.
Column names are a letter followed by letters and digits, each a name of its own; a
header with other names is refused with the names the regression window would offer.
Without --save a table is read again for each pass of the fit instead of being held,
so its length is not limited by the memory.

  --rename          take the offered names (letters and digits kept: "stack.loss"
                    becomes stackloss, "Acid Conc." AcidConc, "y_1" y1)
  --save SPECFILE   also write the problem and its fit as the file pair SPECFILE and
                    SPECFILE.dat, which the regression window opens
  --stats           after the results list, the Statistics window's figures: each
                    coefficient's Estimate, Std. Error, t value and Pr(>|t|), then
                    R-squared, the residual standard error, F, the condition number
                    and digits trusted
  --json            instead of the results list, one JSON object: n, m, names,
                    coefficients (name, estimate, std_error, t, p, ci95) from A0,
                    r_squared, adj_r_squared, residual_se, df_residual, f_statistic,
                    f_p_value, correlation_coefficient, standard_error_of_estimate,
                    sum_squared_residuals, condition_number, digits_trusted; numbers
                    with 17 significant digits, null where there is none
)";

constexpr const char* kReportHelp = R"(Usage: orvane-batch report [--csv] [--rename] (--pdf OUT.pdf | --text) [--] FILE

Fits FILE (as "fit" reads it) and prints the regression report: the variables, the
fit, then every data set with its estimate and residual, in "Courier New".

  --pdf OUT.pdf   write the report into a PDF file
  --text          write the report's lines to standard output
)";

constexpr const char* kStudyHelp = R"(Usage: orvane-batch study [OPTIONS] [--] EXPR COMMAND

Studies f(x) = EXPR as the 2-D study window does and prints what the window shows:
  roots        the lines of the roots list, then the label ("2 roots")
  extrema      the lines of the extrema list, then the label ("2 extrema")
  integral     the integral's label: the value, "No convergence" or the reason an
               evaluation failed (exit status 1 unless a value was accepted)
  value K X    the value of the function (K = 0) or of its K-th derivative at X

Options (the window's defaults when not given; the window's field corrections apply,
so 100 subintervals become 128 and a too small iteration limit is raised):
  --interval A B        study interval (default -5 5)
  --subintervals N      minimum number of subintervals (default 256)
  --error E             approximate error bound, above 0 (default .01)
  --maxcy K             maximum number of iterations (default 16)
  --const NAME=EXPR     a user constant; may be repeated
)";

constexpr const char* kPlot2dHelp = R"(Usage: orvane-batch plot2d [OPTIONS] --out FILE.png|FILE.bmp [--] [EXPR]

Draws the 2-D study picture of f(x) = EXPR as the window's Plot does, without a
display. With --data and no EXPR, the fitted line of the data is drawn (the
regression window's Plot). Defaults are those the window opens with: the study
interval spans the data (-5 5 without data), and the window, axes and divisions
show the data and the line (-6 6 -6 6, axes at 0, divisions 2 without data).

  --out FILE            the image; PNG or BMP by its extension
  --size W H            picture size in pixels (default 600 400)
  --window LX GX LY GY  plot window
  --origin X Y          where the axes cross
  --div DX DY           division sizes
  --plot-step N         screen units between curve samples, 1..80 (default 5)
  --interval A B        study interval, for its end lines and shading
  --derivative K        plot the K-th derivative, 0..9 (default 0, the function)
  --grid --shade --label-window   the window's check boxes (default off)
  --no-label-divisions  leave the divisions unlabelled (labelled by default)
  --data FILE [--csv] [--rename]
                        mark the data sets of a regression file pair or CSV file (the
                        options as for fit)
  --const NAME=EXPR     a user constant; may be repeated
)";

constexpr const char* kStereoHelp = R"(Usage: orvane-batch stereo [OPTIONS] --out PREFIX [--] (EXPR | --import FILE)

Draws the stereo pair of z(x,y) = EXPR (or of an exported stereo file) as the stereo
window's Plot does and writes PREFIX_left.png and PREFIX_right.png. With --data and
no EXPR, the fitted plane of the data is drawn. Option values are expressions, as in
the window's fields (pi/2 is accepted); defaults are the window's.

  --out PREFIX                 the two images PREFIX_left.EXT and PREFIX_right.EXT
  --format png|bmp             image format (default png)
  --import FILE                read the settings and constants of an exported file;
                               further options change them
  --parametric XEXPR YEXPR     parametric surface x(u,v), y(u,v); EXPR is z(u,v)
  --range LXU GXU LYV GYV      range of x and y, or u and v (default -1 1 -1 1)
  --spacings NXU NYV           number of spacings (default 4 4)
  --segments NXU NYV           segments per spacing (default 1 1)
  --window LX GX LY GY LZ GZ   viewing box (default -2.5 2.5 -2 2 -1.5 1.5)
  --rotate XR YR ZR            rotation in degrees (default 0 0 0)
  --translate X Y Z            translation (default 0 0 0)
  --stereo F                   stereoscopic factor (default 1)
  --reduce F                   reduction factor, above 0 and at most 1 (default 1)
  --size W H                   pictures as designed, in pixels (default 400 400)
  --lines | --no-lines         the mesh (default on)
  --dots | --no-dots           random dots (default off)
  --ndots N                    number of dots (default 5000)
  --seed N                     seed of the dots (default: from the clock)
  --background white|black     (default white)
  --reference-lines N          dotted screen grid (default 5)
  --origin X Y Z               axes origin (default 0 0 0)
  --div X Y Z                  divisions on the axes (default 1 1 1)
  --derivative XD YD           partial derivative orders, each 0..2, sum at most 2
  --accuracy high|med          partial-derivative formulas (default high)
  --data FILE [--csv] [--rename]
                               mark the data sets of a problem with two variables
  --const NAME=EXPR            a user constant; may be repeated
  --anaglyph                   also PREFIX_anaglyph.EXT, one picture for red-cyan
                               glasses (red over the left eye)
  --export FILE                also write the settings and constants as the window's
                               export does, with FILE_left.bmp and FILE_right.bmp
                               (and FILE_anaglyph.bmp with --anaglyph)
)";

// ---- shared helpers ----

// What long work polls: the signal flag, read about every 20 ms.
StopCheck signalStopCheck() {
  return StopCheck([] { return batchInterrupted != 0; });
}

// Before results are printed or saves committed: a stopped command gives neither.
void stopIfInterrupted() {
  if (batchInterrupted != 0) throw WorkInterrupted{};
}

// A command that cannot go on; the message has been or will be written to err.
struct CommandFailed {};

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

std::string extensionOf(const std::string& path) { return lower(fs::path(path).extension().string()); }

// A table's names (dependent first) as the fit takes them. Names the window would not
// take are refused, naming the names it would offer, unless --rename takes those.
std::vector<std::string> acceptedColumnNames(const std::string& path, std::vector<std::string> names,
                                             const ParsedOptions& o) {
  const std::vector<NameCorrection> corrections = NameCorrections(names);
  if (corrections.empty()) return names;
  std::string given, offered;
  for (const NameCorrection& c : corrections) {
    given += (given.empty() ? "\"" : ", \"") + Excerpt(c.given) + "\"";
    offered += (offered.empty() ? "" : ", ") + c.offered;
  }
  if (!o.has("rename"))
    throw RegressionFileError(path + ": the column names " + given +
                              " are not a letter followed by letters and digits, each a name of its own; "
                              "--rename takes " + offered + " instead");
  for (const NameCorrection& c : corrections) names[c.column] = c.offered;
  return names;
}

bool readsAsTable(const std::string& path, const ParsedOptions& o) { return o.has("csv") || ReadsAsCsv(path); }

// FILE as a CSV table (when forced by --csv, or when it reads as one) or as a regression
// file pair.
RegressionProblem readProblem(const std::string& path, const ParsedOptions& o) {
  if (!readsAsTable(path, o)) return ReadRegressionFiles(path);
  RegressionProblem problem = ReadCsvProblem(path);
  RenameColumns(problem, acceptedColumnNames(path, ColumnNames(problem), o));
  return problem;
}

std::string singlePositional(const ParsedOptions& o, const std::string& what) {
  if (o.positional().empty()) throw UsageError("missing " + what);
  if (o.positional().size() > 1) throw UsageError("unexpected argument \"" + o.positional()[1] + "\"");
  return o.positional().front();
}

void addConstants(FormulaWindow& window, const ParsedOptions& o) {
  for (const std::string& entry : o.all("const"))
    if (!window.addConstant(entry))
      throw UsageError("--const: \"" + entry +
                       "\" is not NAME=EXPR with a name of a letter followed by letters and digits");
}

// Runs the constants as the window does before a computation.
void registerConstants(FormulaWindow& window, ErrorReport& report) {
  try {
    window.registerConstants();
  } catch (const RuntimeError& e) {
    report.show(e);
    throw CommandFailed{};
  }
}

// Writes images through temporary files beside them, renamed over the targets only
// when every one was written, so a failure leaves nothing half-written and any
// previous files as they were.
void saveImages(const std::vector<std::pair<const QImage*, std::string>>& images, const char* format) {
  SafeSave save;
  for (const auto& [image, path] : images) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !image->save(&buffer, format))
      throw SaveError(path, "the picture could not be made");
    save.Text(path, std::string_view(bytes.constData(), static_cast<size_t>(bytes.size())));
  }
  stopIfInterrupted();  // the temporaries go with the unsaved SafeSave
  save.Commit();
}

const char* imageFormatFor(const std::string& path) {
  const std::string ext = extensionOf(path);
  if (ext == ".png") return "PNG";
  if (ext == ".bmp") return "BMP";
  throw UsageError("--out: \"" + path + "\" must end in .png or .bmp");
}

std::vector<std::string> values(const ParsedOptions& o, const std::string& name) { return o.get(name); }

// ---- eval ----

int runEval(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  const ParsedOptions o =
      ParseOptions(args, {{"x", 1}, {"y", 1}, {"u", 1}, {"v", 1}, {"const", 1, true}});
  if (o.has("help")) {
    out << kEvalHelp;
    return 0;
  }
  if (o.positional().empty()) throw UsageError("missing EXPR");
  std::string expression;
  for (const std::string& word : o.positional()) expression += (expression.empty() ? "" : " ") + word;
  double vars[4] = {0, 0, 0, 0};
  const char* names[4] = {"x", "y", "u", "v"};
  for (int i = 0; i < 4; ++i)
    if (auto v = o.single(names[i])) vars[i] = NumberOption(names[i], *v);

  ErrorReport report(err);
  FormulaWindow window(report);
  addConstants(window, o);
  registerConstants(window, report);
  Class1& sh = window.sh();
  sh.y = vars[1];
  sh.u = vars[2];
  sh.v = vars[3];
  try {
    const double value = EvaluateAt(window.engine(), sh, expression, vars[0]);
    out << formatGeneral(value) << "\n";
    return 0;
  } catch (const RuntimeError& e) {
    report.show(e);
    return 1;
  }
}

// ---- fit and report ----

// The window's Compute: the results list, or the singular message alone.
struct Fit {
  std::vector<std::string> listing;
  bool overflowed = false;  // the listing is not that of the data
};

Fit listingOf(const RegressionProblem& problem, FitOutcome outcome, bool overflowed) {
  if (outcome != FitOutcome::Computed) return {{SingularMessage(outcome)}, false};
  return {ResultsListing(problem), overflowed};
}

Fit computeListing(RegressionProblem& problem) {
  problem.computed = false;
  bool overflowed = false;
  const FitOutcome outcome = Compute(problem, &overflowed);
  return listingOf(problem, outcome, overflowed);
}

constexpr const char* kOverflowMessage =
    "The fit's sums overflowed: the values are too large to square and add, so the results "
    "listed are not those of the data.";

// What fit prints of a computed problem (its X may be empty: `summarize` reads the sets).
int printFit(const ParsedOptions& o, const RegressionProblem& problem, const Fit& fit,
             const std::function<FitSummary()>& summarize, std::ostream& out, std::ostream& err) {
  if (fit.overflowed) {
    if (!o.has("json"))
      for (const std::string& line : fit.listing) out << line << "\n";
    err << kOverflowMessage << "\n";
    return 1;
  }
  std::optional<FitSummary> summary;
  if (problem.computed) summary = summarize();
  if (summary && !DigitsWarning(*summary).empty()) err << DigitsWarning(*summary) << "\n";
  if (o.has("json")) {
    if (summary) out << StatisticsJson(*summary, problem) << "\n";
    else err << fit.listing.front() << "\n";
  } else {
    for (const std::string& line : fit.listing) out << line << "\n";
    if (summary && o.has("stats")) {
      out << "\n";
      for (const std::string& line : StatisticsText(*summary, problem.names, false)) out << line << "\n";
    }
  }
  return problem.computed ? 0 : 1;
}

int runFit(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  const ParsedOptions o = ParseOptions(args, {{"save", 1}, {"csv", 0}, {"rename", 0}, {"stats", 0}, {"json", 0}});
  if (o.has("help")) {
    out << kFitHelp;
    return 0;
  }
  if (o.has("stats") && o.has("json")) throw UsageError("give --stats or --json, not both");
  const std::string file = singlePositional(o, "FILE");
  const std::optional<std::string> save = o.single("save");
  if (!save && readsAsTable(file, o)) {
    // Nothing to save: the table is read again for each pass of the fit rather than
    // held, so a table of any length takes the same memory.
    const CsvFileSets sets(file, stopIfInterrupted);
    RegressionProblem problem;
    problem.m = sets.m();
    problem.N = sets.N();
    RenameColumns(problem, acceptedColumnNames(file, sets.columnNames(), o));
    bool overflowed = false;
    const FitOutcome outcome = Compute(sets, problem, &overflowed);
    return printFit(o, problem, listingOf(problem, outcome, overflowed),
                    [&] { return SummarizeFit(sets, problem.A); }, out, err);
  }
  RegressionProblem problem = readProblem(file, o);
  const Fit fit = computeListing(problem);
  const int status = printFit(o, problem, fit, [&] { return SummarizeFit(problem); }, out, err);
  if (save && !fit.overflowed) WriteRegressionFiles(*save, problem);
  return status;
}

int runReport(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  const ParsedOptions o = ParseOptions(args, {{"pdf", 1}, {"text", 0}, {"csv", 0}, {"rename", 0}});
  if (o.has("help")) {
    out << kReportHelp;
    return 0;
  }
  const std::string file = singlePositional(o, "FILE");
  const std::optional<std::string> pdf = o.single("pdf");
  if (!pdf && !o.has("text")) throw UsageError("give --pdf OUT.pdf or --text");
  RegressionProblem problem = readProblem(file, o);
  const Fit fit = computeListing(problem);
  if (fit.overflowed) {
    err << kOverflowMessage << "\n";
    return 1;
  }
  if (!problem.computed) err << fit.listing.front() << "\n";

  if (o.has("text")) {
    RecordingPrinterPage page;
    PrintRegressionReport(page, problem, problem.N);
    for (const std::string& line : page.texts()) out << line << "\n";
  }
  if (pdf) {
    // Printed into a temporary file that replaces the target only when complete.
    SafeSave save;
    save.WrittenBy(
        *pdf,
        [&problem](const std::string& temporary) {
          QtPrinterPage page(temporary, "Orvane Regression");
          PrintRegressionReport(page, problem, problem.N);
          return true;
        },
        "the report could not be printed");
    save.Commit();
  }
  return 0;
}

// ---- the 2-D study window ----

std::string derivativeText(int k) {
  if (k == 0) return "Function";
  static const char* suffix[] = {"", "st", "nd", "rd", "th", "th", "th", "th", "th", "th"};
  return std::to_string(k) + suffix[k] + ".derivative";
}

// The study fields from the options, with the corrections the window applies as the
// user leaves each field.
void applyStudyOptions(PlotFields& f, const ParsedOptions& o) {
  if (o.has("interval")) {
    const std::vector<std::string> v = values(o, "interval");
    NumberOption("interval", v[0]);
    NumberOption("interval", v[1]);
    if (limitPairFocus(LimitField::Upper, v[0], v[1]))
      throw UsageError("--interval: the upper limit must be greater than the lower one");
    f.study.xlower = v[0];
    f.study.xupper = v[1];
  }
  if (auto n = o.single("subintervals")) {
    NumberOption("subintervals", *n);
    f.study.subintervals = subintervalsOnLostFocus(subintervalsOnValidate(*n));
  }
  if (auto e = o.single("error")) {
    NumberOption("error", *e);
    if (!errorBoundAccepted(*e)) throw UsageError("--error: the error bound must be greater than 0");
    f.study.error = *e;
  }
  if (auto k = o.single("maxcy")) {
    NumberOption("maxcy", *k);
    f.study.maxcy = *k;
  }
  f.study.maxcy = maxcyOnValidate(f.study.maxcy, f.study.subintervals).text;
}

int runStudy(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  const ParsedOptions o = ParseOptions(
      args, {{"interval", 2}, {"subintervals", 1}, {"error", 1}, {"maxcy", 1}, {"const", 1, true}});
  if (o.has("help")) {
    out << kStudyHelp;
    return 0;
  }
  const std::vector<std::string>& p = o.positional();
  if (p.empty()) throw UsageError("missing EXPR");
  if (p.size() < 2) throw UsageError("missing COMMAND (roots, integral, extrema or value K X)");
  const std::string& command = p[1];
  const size_t expected = command == "value" ? 4 : 2;
  if (command != "roots" && command != "integral" && command != "extrema" && command != "value")
    throw UsageError("unknown study command \"" + command + "\" (roots, integral, extrema or value K X)");
  if (p.size() < expected) throw UsageError("value needs K and X");
  if (p.size() > expected) throw UsageError("unexpected argument \"" + p[expected] + "\"");

  PlotFields fields = DefaultPlotFields();
  fields.study.equation = p[0];
  applyStudyOptions(fields, o);
  if (command == "value") {
    NumberOption("K", p[2]);
    NumberOption("X", p[3]);
  }

  ErrorReport report(err);
  FormulaWindow window(report);
  addConstants(window, o);
  registerConstants(window, report);
  EngineFunction f(window.engine(), window.sh(), fields.study.equation);
  DerivativeEvaluator d(f);
  StopCheck stop = signalStopCheck();
  d.setStopCheck(&stop);

  auto listAndLabel = [&](const std::vector<std::string>& list, const std::optional<std::string>& label,
                          int32_t error) {
    stopIfInterrupted();
    for (const std::string& line : list) out << line << "\n";
    if (label) {
      out << *label << "\n";
      return 0;
    }
    report.failed(error);
    return 1;
  };
  if (command == "roots") {
    const RootResult r = findRoots(d, fields.study);
    return listAndLabel(r.list, r.label, r.error);
  }
  if (command == "extrema") {
    const ExtremaResult r = findExtrema(d, fields.study);
    return listAndLabel(r.list, r.label, r.error);
  }
  if (command == "integral") {
    const IntegralResult r = integrate(d, fields.study);
    stopIfInterrupted();
    if (!r.label) {
      report.failed(r.error);
      return 1;
    }
    out << *r.label << "\n";
    return r.computed ? 0 : 1;
  }
  const ValuePanelResult r = computeValuePanel(d, p[2], p[3]);
  if (r.error != 0) {
    report.failed(r.error);
    return 1;
  }
  out << r.text << "\n";
  return 0;
}

int positiveSize(const std::string& option, const std::string& text) {
  const double v = NumberOption(option, text);
  if (v < 1 || v > 20000 || v != static_cast<int>(v))
    throw UsageError("--" + option + ": a whole number of pixels from 1 to 20000, not \"" + text + "\"");
  return static_cast<int>(v);
}

// The regression problem whose data sets are marked, and its fit when asked for.
std::optional<RegressionProblem> dataProblem(const ParsedOptions& o) {
  if (auto file = o.single("data")) return readProblem(*file, o);
  return std::nullopt;
}

// The fitted function of the problem for a window that needs m variables.
std::string fittedFunction(RegressionProblem& problem, int m, ErrorReport& report) {
  if (problem.m != m)
    throw UsageError("--data: the fitted " + std::string(m == 1 ? "line" : "plane") + " needs " +
                     std::to_string(m) + " independent variable" + (m == 1 ? "" : "s") + ", the file has " +
                     std::to_string(problem.m));
  const Fit fit = computeListing(problem);
  if (!problem.computed || fit.overflowed) {
    report.message(fit.overflowed ? kOverflowMessage : fit.listing.front());
    throw CommandFailed{};
  }
  return FittedFunctionText(problem);
}

int runPlot2d(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  const ParsedOptions o = ParseOptions(
      args, {{"out", 1}, {"size", 2}, {"window", 4}, {"origin", 2}, {"div", 2}, {"plot-step", 1},
             {"interval", 2}, {"derivative", 1}, {"grid", 0}, {"shade", 0}, {"label-window", 0},
             {"label-divisions", 0}, {"no-label-divisions", 0}, {"data", 1}, {"csv", 0}, {"rename", 0}, {"const", 1, true}});
  if (o.has("help")) {
    out << kPlot2dHelp;
    return 0;
  }
  const std::optional<std::string> target = o.single("out");
  if (!target) throw UsageError("missing --out FILE.png or FILE.bmp");
  const char* format = imageFormatFor(*target);
  if (o.positional().size() > 1) throw UsageError("unexpected argument \"" + o.positional()[1] + "\"");

  // The window opens on the regression's data and, when it plots the fit, its line.
  ErrorReport report(err);
  std::optional<RegressionProblem> data = dataProblem(o);
  std::string equation;
  if (!o.positional().empty()) {
    equation = o.positional().front();
  } else if (data) {
    equation = fittedFunction(*data, 1, report);
  } else {
    throw UsageError("missing EXPR (or --data FILE for the fitted line)");
  }
  std::vector<double> dataX, dataY;
  std::optional<FittedLine> line;
  if (data) {
    for (int32_t i = 1; i <= data->N; ++i) {
      dataX.push_back(data->X(1, i));
      dataY.push_back(data->X(data->m + 1, i));
    }
    if (data->computed && data->m == 1) line = FittedLine{data->A[0], data->A[1]};
  }
  PlotFields fields = DefaultPlotFields(dataX, dataY, line);
  fields.study.equation = equation;
  applyStudyOptions(fields, o);
  if (o.has("size")) {
    const std::vector<std::string> v = values(o, "size");
    fields.pictureWidth = positiveSize("size", v[0]);
    fields.pictureHeight = positiveSize("size", v[1]);
  }
  if (o.has("window")) {
    const std::vector<std::string> v = values(o, "window");
    for (const std::string& text : v) NumberOption("window", text);
    if (limitPairFocus(LimitField::Upper, v[0], v[1]) || limitPairFocus(LimitField::Upper, v[2], v[3]))
      throw UsageError("--window: each upper limit must be greater than its lower one");
    fields.setup.windowlx = v[0];
    fields.setup.windowgx = v[1];
    fields.setup.windowly = v[2];
    fields.setup.windowgy = v[3];
  }
  if (o.has("origin")) {
    const std::vector<std::string> v = values(o, "origin");
    NumberOption("origin", v[0]);
    NumberOption("origin", v[1]);
    fields.setup.xorigin = v[0];
    fields.setup.yorigin = v[1];
  }
  if (o.has("div")) {
    const std::vector<std::string> v = values(o, "div");
    NumberOption("div", v[0]);
    NumberOption("div", v[1]);
    fields.setup.divx = v[0];
    fields.setup.divy = v[1];
  }
  if (auto s = o.single("plot-step")) {
    NumberOption("plot-step", *s);
    fields.setup.plotStep = plotStepOnValidate(*s);
  }
  if (auto k = o.single("derivative")) {
    const double v = NumberOption("derivative", *k);
    if (v < 0 || v > 9 || v != static_cast<int>(v)) throw UsageError("--derivative: a whole number from 0 to 9");
    fields.study.derivative = derivativeText(static_cast<int>(v));
  }
  fields.grid = o.has("grid");
  fields.shade = o.has("shade");
  fields.labelWindow = o.has("label-window");
  if (o.has("label-divisions") && o.has("no-label-divisions"))
    throw UsageError("--label-divisions and --no-label-divisions together");
  if (o.has("no-label-divisions")) fields.labelDivisions = false;

  FormulaWindow window(report);
  addConstants(window, o);
  registerConstants(window, report);
  const StudySettings study = readStudySettings(fields.study);
  EngineFunction f(window.engine(), window.sh(), study.equation);
  DerivativeEvaluator d(f);
  StopCheck stop = signalStopCheck();
  d.setStopCheck(&stop);

  QImageCanvas picture(fields.pictureWidth, fields.pictureHeight);
  picture.Cls();
  PlotRequest request;
  request.setup = readPlotSetup(fields.setup);
  request.options.grid = fields.grid;
  request.options.shade = fields.shade;
  request.options.labelWindow = fields.labelWindow;
  request.options.labelDivisions = fields.labelDivisions;
  request.options.fittedFunction = true;
  request.options.derivative = study.k;
  request.options.xlower = study.xlower;
  request.options.xupper = study.xupper;
  // Picture1 is read in twips, as the window reads its widget.
  request.width = static_cast<float>(picture.pixelWidth() * 1440.0 / picture.dpi());
  request.height = static_cast<float>(picture.pixelHeight() * 1440.0 / picture.dpi());
  request.dataX = dataX;
  request.dataY = dataY;
  const size_t errorsBefore = report.errorsShown();
  try {
    drawPlot(picture, d, request);
  } catch (const RuntimeError& e) {
    report.show(e);
    return 1;
  }
  // An error the window would have shown in a box: the picture is not the function's.
  if (report.errorsShown() > errorsBefore) return 1;
  stopIfInterrupted();
  saveImages({{&picture.image(), *target}}, format);
  return 0;
}

// ---- the stereo window ----

int runStereo(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  const ParsedOptions o = ParseOptions(
      args, {{"out", 1},        {"format", 1},     {"import", 1},   {"parametric", 2}, {"range", 4},
             {"spacings", 2},   {"segments", 2},   {"window", 6},   {"rotate", 3},     {"translate", 3},
             {"stereo", 1},     {"reduce", 1},     {"size", 2},     {"lines", 0},      {"no-lines", 0},
             {"dots", 0},       {"no-dots", 0},    {"ndots", 1},    {"seed", 1},       {"background", 1},
             {"reference-lines", 1}, {"origin", 3}, {"div", 3},     {"derivative", 2}, {"accuracy", 1},
             {"data", 1},       {"csv", 0},        {"rename", 0},        {"const", 1, true}, {"export", 1}, {"anaglyph", 0}});
  if (o.has("help")) {
    out << kStereoHelp;
    return 0;
  }
  const std::optional<std::string> prefix = o.single("out");
  if (!prefix) throw UsageError("missing --out PREFIX");
  const std::string format = lower(o.single("format").value_or("png"));
  if (format != "png" && format != "bmp") throw UsageError("--format: png or bmp");
  if (o.positional().size() > 1) throw UsageError("unexpected argument \"" + o.positional()[1] + "\"");

  ErrorReport report(err);
  FormulaWindow window(report);
  EngineSurface surface(window.engine(), window.sh());
  EngineReader reader(window.engine());
  StereoFields fields;

  if (auto file = o.single("import")) {
    const StereoImport imported = ReadStereoFile(*file, fields);
    if (imported.status != ImportStatus::Ok) {
      report.message(imported.message);
      throw CommandFailed{};
    }
    fields = imported.fields;
    for (const std::string& entry : imported.constants) window.addConstant(entry);
  }
  addConstants(window, o);
  // The constants are in the engine before the fields that may use them are checked.
  registerConstants(window, report);

  std::optional<RegressionProblem> data = dataProblem(o);
  if (!o.positional().empty()) {
    fields.equationZ = o.positional().front();
  } else if (data && !o.has("import")) {
    fields.equationZ = fittedFunction(*data, 2, report);
  } else if (!o.has("import")) {
    throw UsageError("missing EXPR (or --import FILE, or --data FILE for the fitted plane)");
  }
  if (o.has("parametric")) {
    const std::vector<std::string> v = values(o, "parametric");
    fields.parametric = true;
    fields.equationX = v[0];
    fields.equationY = v[1];
  }

  auto expressions = [&](const std::string& name) {
    std::vector<std::string> v = values(o, name);
    for (const std::string& text : v) {
      double value = 0;
      if (surface.tryEvaluate(text, 0, 0, 0, 0, value) != 0 || !std::isfinite(value))
        throw UsageError("--" + name + ": \"" + text + "\" has no value");
    }
    return v;
  };
  if (o.has("range")) {
    const std::vector<std::string> v = expressions("range");
    if (!RangeLimitsValid(reader, v[0], v[1]) || !RangeLimitsValid(reader, v[2], v[3]))
      throw UsageError("--range: a lower limit must not exceed its upper one");
    fields.rangelxu = v[0], fields.rangegxu = v[1], fields.rangelyv = v[2], fields.rangegyv = v[3];
  }
  auto counts = [&](const std::string& name, bool allowZero) {
    std::vector<std::string> v = values(o, name);
    for (const std::string& text : v)
      if (!(allowZero ? GridFieldValid(text) : CountFieldValid(text)))
        throw UsageError("--" + name + ": a whole number of at least " + (allowZero ? "0" : "1") + ", not \"" +
                         text + "\"");
    return v;
  };
  if (o.has("spacings")) {
    const std::vector<std::string> v = counts("spacings", false);
    fields.spacexu = v[0], fields.spaceyv = v[1];
  }
  if (o.has("segments")) {
    const std::vector<std::string> v = counts("segments", false);
    fields.segsxu = v[0], fields.segsyv = v[1];
  }
  if (o.has("ndots")) fields.ndots = counts("ndots", false)[0];
  if (o.has("reference-lines")) fields.grid = counts("reference-lines", true)[0];
  if (o.has("window")) {
    const std::vector<std::string> v = expressions("window");
    for (int i = 0; i < 6; i += 2)
      if (!WindowLimitsValid(reader, v[i], v[i + 1]))
        throw UsageError("--window: each lower limit must be below its upper one");
    fields.windowlx = v[0], fields.windowgx = v[1], fields.windowly = v[2];
    fields.windowgy = v[3], fields.windowlz = v[4], fields.windowgz = v[5];
  }
  if (o.has("rotate")) {
    const std::vector<std::string> v = expressions("rotate");
    fields.xrot = v[0], fields.yrot = v[1], fields.zrot = v[2];
  }
  if (o.has("translate")) {
    const std::vector<std::string> v = expressions("translate");
    fields.xtr = v[0], fields.ytr = v[1], fields.ztr = v[2];
  }
  if (o.has("origin")) {
    const std::vector<std::string> v = expressions("origin");
    fields.xorigin = v[0], fields.yorigin = v[1], fields.zorigin = v[2];
  }
  if (o.has("div")) {
    const std::vector<std::string> v = expressions("div");
    fields.divx = v[0], fields.divy = v[1], fields.divz = v[2];
  }
  if (o.has("stereo")) fields.stereo = expressions("stereo")[0];
  if (o.has("reduce")) {
    const std::string r = expressions("reduce")[0];
    if (!ReduceFieldValid(reader, r)) throw UsageError("--reduce: above 0 and at most 1");
    fields.reduce = r;
  }
  if (o.has("lines") && o.has("no-lines")) throw UsageError("--lines and --no-lines together");
  if (o.has("dots") && o.has("no-dots")) throw UsageError("--dots and --no-dots together");
  if (o.has("lines")) fields.lines = true;
  if (o.has("no-lines")) fields.lines = false;
  if (o.has("dots")) fields.dots = true;
  if (o.has("no-dots")) fields.dots = false;
  if (auto b = o.single("background")) {
    const std::string v = lower(*b);
    if (v != "white" && v != "black") throw UsageError("--background: white or black");
    fields.background = v == "white" ? kBackgroundWhite : kBackgroundBlack;
  }
  if (o.has("derivative")) {
    const std::vector<std::string> v = values(o, "derivative");
    if (!DerivativeOrderValid(v[0]) || !DerivativeOrderValid(v[1]) || !DerivativeOrderSumValid(v[0], v[1]))
      throw UsageError("--derivative: orders 0, 1 or 2 whose sum is at most 2");
    fields.xder = v[0], fields.yder = v[1];
  }
  if (auto a = o.single("accuracy")) {
    const std::string v = lower(*a);
    if (v != "high" && v != "med") throw UsageError("--accuracy: high or med");
    fields.accuracy = v == "high" ? kAccuracyHigh : kAccuracyMed;
  }
  PictureGeometry designed;
  if (o.has("size")) {
    const std::vector<std::string> v = values(o, "size");
    designed.WidthPic0 = designed.WidthPic1 = positiveSize("size", v[0]);
    designed.HeightPic0 = designed.HeightPic1 = positiveSize("size", v[1]);
  } else {
    designed.WidthPic0 = designed.WidthPic1 = designed.HeightPic0 = designed.HeightPic1 = kStereoPictureSize;
  }
  uint32_t seed = DotGenerator::SeedFromTimer();
  if (auto s = o.single("seed")) {
    const double v = NumberOption("seed", *s);
    if (v < 0 || v > 4294967295.0 || v != static_cast<double>(static_cast<uint32_t>(v)))
      throw UsageError("--seed: a whole number from 0 to 4294967295");
    seed = static_cast<uint32_t>(v);
  }

  // The plot command: settings first, then the constants, as the window keeps them.
  const SettingsRead read = ReadPlotSettings(fields, reader);
  if (read.error != 0) {
    report.failed(read.error);
    err << "the setting " << read.errorField << " has no value\n";
    return 1;
  }
  registerConstants(window, report);
  const StereoSettings& s = read.settings;
  const PictureLayout layout = ReducePictures(designed, s.reduce);
  QImageCanvas left(layout.width0, layout.height0), right(layout.width1, layout.height1);
  ApplyPlotAppearance(left, right, s);

  std::vector<Point3> marks;
  if (data) {
    const RegressionProblem& p = *data;
    marks = DataMarksFrom(p.N, p.m, [&p](int32_t row, int32_t column) { return p.X(column, row); });
  }
  SurfaceParameters uv;
  DotGenerator random(seed);
  StopCheck stop = signalStopCheck();
  const StereoPlot plot{s, surface, uv, random, marks, true, &stop};
  const size_t errorsBefore = report.errorsShown();
  DrawStereoPlot(left, right, plot);
  // An error the window would have shown in a box: the pictures are not the surface's.
  if (report.errorsShown() > errorsBefore) return 1;
  stopIfInterrupted();

  const char* qtFormat = format == "png" ? "PNG" : "BMP";
  QImageCanvas anaglyph(layout.width0, layout.height0);
  if (o.has("anaglyph")) anaglyph.showImage(RedCyanAnaglyph(left.image(), right.image()));
  std::vector<std::pair<const QImage*, std::string>> images = {{&left.image(), *prefix + "_left." + format},
                                                               {&right.image(), *prefix + "_right." + format}};
  if (o.has("anaglyph")) images.emplace_back(&anaglyph.image(), *prefix + "_anaglyph." + format);
  saveImages(images, qtFormat);
  if (auto file = o.single("export")) {
    stopIfInterrupted();
    SaveStereoPictures(left, right, *file, true, {}, o.has("anaglyph") ? &anaglyph : nullptr);
    WriteStereoFile(*file, s, window.constants().entries());
  }
  return 0;
}

}  // namespace

int RunBatch(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.empty()) {
    err << kMainHelp;
    return 1;
  }
  const std::string& command = args.front();
  if (command == "--help" || command == "-h" || command == "help") {
    out << kMainHelp;
    return 0;
  }
  const std::vector<std::string> rest(args.begin() + 1, args.end());
  try {
    if (command == "eval") return runEval(rest, out, err);
    if (command == "fit") return runFit(rest, out, err);
    if (command == "report") return runReport(rest, out, err);
    if (command == "study") return runStudy(rest, out, err);
    if (command == "plot2d") return runPlot2d(rest, out, err);
    if (command == "stereo") return runStereo(rest, out, err);
    err << "orvane-batch: unknown command \"" << command << "\" (orvane-batch --help lists them)\n";
    return 1;
  } catch (const UsageError& e) {
    err << "orvane-batch " << command << ": " << e.what() << "\n";
    return 1;
  } catch (const RegressionFileError& e) {
    err << e.what() << "\n";
    return 1;
  } catch (const SaveError& e) {
    err << e.what() << "\n";
    return 1;
  } catch (const RuntimeError& e) {
    err << "error " << e.number() << ": " << e.description() << "\n";
    return 1;
  } catch (const CommandFailed&) {
    return 1;
  } catch (const WorkInterrupted&) {
    err << "orvane-batch " << command << ": interrupted\n";
    return kInterruptedStatus;
  } catch (const std::bad_alloc&) {
    err << "Out of memory\n";
    return 1;
  }
}

}  // namespace orvane
