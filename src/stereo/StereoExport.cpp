#include "stereo/StereoExport.h"

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <sstream>

#include "platform/Canvas.h"
#include "platform/NumberText.h"
#include "platform/RecordLine.h"
#include "platform/RuntimeError.h"
#include "platform/SafeFile.h"
#include "stereo/FieldRules.h"

namespace orvane {

namespace {

constexpr std::string_view kEol = "\r\n";

// A string of a write record: in double quotes, an inner quote doubled.
std::string quotedText(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
  return out;
}

std::string record(std::initializer_list<std::string> values) {
  std::string line;
  for (const std::string& v : values) {
    if (!line.empty()) line += ',';
    line += v;
  }
  line += kEol;
  return line;
}

std::string num(float v) { return formatSingle(v); }
std::string num(int32_t v) { return std::to_string(v); }

// ---- Reading ----

// What went wrong at which line; caught by ParseStereoFile.
struct Fault {
  int line;
  std::string expected;
};

// Reads the records in order, each item straight into the fields, so that a fault
// leaves everything read before it in place.
class RecordReader {
 public:
  explicit RecordReader(const std::vector<std::string>& lines) : lines_(lines) {}

  // Starts the next record, which must hold `count` items described by `what`.
  void begin(size_t count, const std::string& what) {
    ++lineNo_;
    if (static_cast<size_t>(lineNo_) > lines_.size())
      throw Fault{lineNo_, what + "; the file ends before it"};
    if (!SplitRecord(lines_[static_cast<size_t>(lineNo_) - 1], count, record_))
      throw Fault{lineNo_, what + ", with " + record_.fault};
    next_ = 0;
    what_ = what;
    if (record_.count != count) {
      std::ostringstream m;
      m << what << " (" << count << (count == 1 ? " value" : " values") << "), found " << record_.count;
      // The items that are there are still read, up to the first missing one.
      pendingCountFault_ = m.str();
    } else {
      pendingCountFault_.clear();
    }
  }
  // Ends the record; a wrong number of items is a fault once those present were read.
  void end() {
    if (!pendingCountFault_.empty()) throw Fault{lineNo_, pendingCountFault_};
  }

  std::string text() { return item(); }

  double number(const std::string& name) {
    const std::string& t = item();
    try {
      return parseStrict(t);
    } catch (const RuntimeError&) {
      throw Fault{lineNo_, "a number for " + name + " in " + what_ + ", found \"" + Excerpt(t) + "\""};
    }
  }
  void single(const std::string& name, std::string& field) { field = formatSingle(singleValue(name)); }
  // A single the window's field would also have to accept: a value it refuses never
  // reaches the field.
  void single(const std::string& name, std::string& field, bool (*valid)(double), const std::string& rule) {
    const float v = singleValue(name);
    if (!valid(v)) refuse(rule + " for " + name);
    field = formatSingle(v);
  }
  // Two limits that the window checks together.
  void limits(const std::string& lowerName, const std::string& upperName, std::string& lower, std::string& upper,
              bool (*valid)(double, double), const std::string& rule) {
    const float lo = singleValue(lowerName);
    const std::string lowerText = record_.kept[next_ - 1];
    const float hi = singleValue(upperName);
    if (!valid(lo, hi))
      throw Fault{lineNo_, lowerName + " " + rule + " " + upperName + ", found " + Excerpt(lowerText) + " and " +
                               Excerpt(record_.kept[next_ - 1])};
    lower = formatSingle(lo);
    upper = formatSingle(hi);
  }
  int32_t integer(const std::string& name, int32_t low, int32_t high) {
    const double v = number(name);
    if (!(v >= low && v <= high && v == std::floor(v))) {
      std::ostringstream m;
      m << "a whole number from " << low << " to " << high << " for " << name << " in " << what_;
      throw Fault{lineNo_, m.str()};
    }
    return static_cast<int32_t>(v);
  }
  // A count with the rule of the window's field.
  void count(const std::string& name, std::string& field, bool (*valid)(double), const std::string& rule) {
    const double v = number(name);
    if (!valid(v)) refuse(rule + " for " + name);
    field = std::to_string(static_cast<int32_t>(v));
  }
  // A print line: the whole line as it stands.
  std::string wholeLine(const std::string& what) {
    ++lineNo_;
    if (static_cast<size_t>(lineNo_) > lines_.size()) throw Fault{lineNo_, what + "; the file ends before it"};
    return lines_[static_cast<size_t>(lineNo_) - 1];
  }
  int lineNo() const { return lineNo_; }

 private:
  const std::string& item() {
    if (next_ >= record_.kept.size()) end();  // a short record: report it as such
    return record_.kept[next_++];
  }
  float singleValue(const std::string& name) {
    const double v = number(name);
    if (!std::isfinite(v) || std::fabs(v) > 3.4028234663852886e38)
      throw Fault{lineNo_, "a single-precision number for " + name + " in " + what_};
    return static_cast<float>(v);
  }
  // The item just read breaks a rule of its field.
  [[noreturn]] void refuse(const std::string& expected) const {
    throw Fault{lineNo_, expected + ", found " + Excerpt(record_.kept[next_ - 1])};
  }

  const std::vector<std::string>& lines_;
  RecordFields record_;
  size_t next_ = 0;
  int lineNo_ = 0;
  std::string what_;
  std::string pendingCountFault_;
};

void readSettings(RecordReader& r, StereoFields& f, std::vector<std::string>& constants) {
  r.begin(2, "the record \"STEREO\", parametric flag");
  r.text();
  f.parametric = r.integer("the parametric flag", 0, 1) == 1;
  r.end();
  if (f.parametric) {
    r.begin(2, "the equations x(u,v), y(u,v)");
    f.equationX = r.text();
    f.equationY = r.text();
    r.end();
  }
  r.begin(1, "the equation of z");
  f.equationZ = r.text();
  r.end();

  constexpr const char* kCountRule = "a whole number of at least 1";
  r.begin(5, "the stereoscopic factor, 0, reduction factor, number of dots, number of reference lines");
  r.single("the stereoscopic factor", f.stereo);
  r.number("the reserved value");
  r.single("the reduction factor", f.reduce, ReduceValueValid, "a value above 0 and at most 1");
  r.count("the number of dots", f.ndots, CountValueValid, kCountRule);
  r.count("the number of reference lines", f.grid, GridValueValid, "a whole number of at least 0");
  r.end();

  r.begin(3, "the axes origin");
  r.single("x", f.xorigin);
  r.single("y", f.yorigin);
  r.single("z", f.zorigin);
  r.end();

  constexpr const char* kWindowRule = "below";
  r.begin(6, "the viewing window");
  r.limits("the lower x limit", "the upper x limit", f.windowlx, f.windowgx, WindowLimitsValid, kWindowRule);
  r.limits("the lower y limit", "the upper y limit", f.windowly, f.windowgy, WindowLimitsValid, kWindowRule);
  r.limits("the lower z limit", "the upper z limit", f.windowlz, f.windowgz, WindowLimitsValid, kWindowRule);
  r.end();

  constexpr const char* kRangeRule = "not above";
  r.begin(4, "the parameter ranges");
  r.limits("the lower x/u limit", "the upper x/u limit", f.rangelxu, f.rangegxu, RangeLimitsValid, kRangeRule);
  r.limits("the lower y/v limit", "the upper y/v limit", f.rangelyv, f.rangegyv, RangeLimitsValid, kRangeRule);
  r.end();

  r.begin(4, "the spacings and segments per spacing");
  r.count("the spacings along x/u", f.spacexu, CountValueValid, kCountRule);
  r.count("the spacings along y/v", f.spaceyv, CountValueValid, kCountRule);
  r.count("the segments along x/u", f.segsxu, CountValueValid, kCountRule);
  r.count("the segments along y/v", f.segsyv, CountValueValid, kCountRule);
  r.end();

  r.begin(9, "the divisions, rotations and translations");
  r.single("the x division", f.divx);
  r.single("the y division", f.divy);
  r.single("the z division", f.divz);
  r.single("the x rotation", f.xrot);
  r.single("the y rotation", f.yrot);
  r.single("the z rotation", f.zrot);
  r.single("the x translation", f.xtr);
  r.single("the y translation", f.ytr);
  r.single("the z translation", f.ztr);
  r.end();

  r.begin(2, "the background option and the derivative selector");
  f.background = r.integer("the background option", 0, 1);
  const auto orders = DerivativeOrdersOf(r.integer("the derivative selector", 0, 5));
  f.xder = std::to_string(orders[0]);
  f.yder = std::to_string(orders[1]);
  r.end();

  const std::string countLine = r.wholeLine("the number of constants");
  int32_t n = -1;
  try {
    const double v = parseStrict(countLine);
    if (v >= 0 && v <= 1e6 && v == std::floor(v)) n = static_cast<int32_t>(v);
  } catch (const RuntimeError&) {
  }
  if (n < 0) throw Fault{r.lineNo(), "the number of constants, found \"" + Excerpt(countLine) + "\""};
  for (int32_t k = 1; k <= n; ++k)
    constants.push_back(r.wholeLine("constant " + std::to_string(k) + " of " + std::to_string(n)));
}

}  // namespace

std::string FormatStereoFile(const StereoSettings& s, const std::vector<std::string>& constants) {
  std::string out;
  out += record({quotedText(kStereoMagic), s.parametric ? "1" : "0"});
  if (s.parametric) out += record({quotedText(s.equationX), quotedText(s.equationY)});
  out += record({quotedText(s.equationZ)});
  // The second single is reserved (written as 0); the second count is the number of
  // reference lines.
  out += record({num(s.stereo), num(0.0f), num(s.reduce), num(s.ndots), num(s.grid)});
  out += record({num(s.xorigin), num(s.yorigin), num(s.zorigin)});
  out += record({num(s.windowlx), num(s.windowgx), num(s.windowly), num(s.windowgy), num(s.windowlz),
                 num(s.windowgz)});
  out += record({num(s.rangelxu), num(s.rangegxu), num(s.rangelyv), num(s.rangegyv)});
  out += record({num(s.spacexu), num(s.spaceyv), num(s.segsxu), num(s.segsyv)});
  out += record({num(s.divx), num(s.divy), num(s.divz), num(s.xrot), num(s.yrot), num(s.zrot), num(s.xtr),
                 num(s.ytr), num(s.ztr)});
  // Display state: the background option, then the derivative selector.
  out += record({std::to_string(s.background), std::to_string(s.selector)});
  out += formatPrint(static_cast<double>(constants.size()));
  out += kEol;
  for (const std::string& c : constants) {
    out += c;
    out += kEol;
  }
  return out;
}

void WriteStereoFile(const std::string& path, const StereoSettings& settings,
                     const std::vector<std::string>& constants) {
  try {
    SafeSave save;
    save.Text(path, FormatStereoFile(settings, constants));
    save.Commit();
  } catch (const SaveError& e) {
    throw RuntimeError(err::PathFileAccess, e.what());
  }
}

void SaveStereoPictures(Canvas& left, Canvas& right, const std::string& path, bool persist,
                        const std::function<void()>& replot, const Canvas* anaglyph) {
  if (!persist) {
    left.SetAutoRedraw(true);
    right.SetAutoRedraw(true);
    if (replot) replot();
  }
  // All pictures are written before any replaces a previous one.
  try {
    SafeSave save;
    save.Picture(path + "_left.bmp", left);
    save.Picture(path + "_right.bmp", right);
    if (anaglyph != nullptr) save.Picture(path + "_anaglyph.bmp", *anaglyph);
    save.Commit();
  } catch (const SaveError& e) {
    if (!persist) {
      left.SetAutoRedraw(false);
      right.SetAutoRedraw(false);
    }
    throw RuntimeError(err::PathFileAccess, e.what());
  }
  if (!persist) {
    left.SetAutoRedraw(false);
    right.SetAutoRedraw(false);
  }
}

StereoImport ParseStereoFile(const std::string& text, const std::string& name, const StereoFields& current) {
  StereoImport result;
  result.fields = current;
  const std::vector<std::string> lines = SplitLines(text);
  RecordFields first;
  SplitRecord(lines.empty() ? std::string_view{} : std::string_view(lines[0]), 1, first);
  if (first.kept.empty() || first.kept[0] != kStereoMagic) {
    result.status = ImportStatus::Incompatible;
    result.message = kIncompatibleFile;
    return result;
  }
  RecordReader reader(lines);
  try {
    readSettings(reader, result.fields, result.constants);
  } catch (const Fault& fault) {
    result.status = ImportStatus::Malformed;
    result.line = fault.line;
    result.message = "Cannot read \"" + name + "\", line " + std::to_string(fault.line) + ": expected " +
                     fault.expected + ".";
  }
  return result;
}

StereoImport ReadStereoFile(const std::string& path, const StereoFields& current) {
  std::string reason;
  const std::optional<std::string> text = ReadWholeFile(path, &reason);
  if (!text) {
    StereoImport result;
    result.fields = current;
    result.status = ImportStatus::Unreadable;
    result.message = "Cannot open \"" + path + "\": " + reason + ".";
    return result;
  }
  return ParseStereoFile(*text, path, current);
}

}  // namespace orvane
