#include "stereo/StereoExport.h"

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <sstream>

#include "platform/Canvas.h"
#include "platform/NumberText.h"
#include "platform/RuntimeError.h"
#include "platform/SafeFile.h"

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

// One record split into its items: quoted strings (with doubled quotes) or bare text.
// Only the first `keep` items are kept (a line of commas must not become millions of
// strings); `found` receives how many there are.
std::vector<std::string> splitRecord(std::string_view line, size_t keep = SIZE_MAX, size_t* found = nullptr) {
  std::vector<std::string> items;
  size_t count = 0;
  size_t i = 0;
  while (true) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    std::string item;
    if (i < line.size() && line[i] == '"') {
      ++i;
      while (i < line.size()) {
        if (line[i] == '"') {
          if (i + 1 < line.size() && line[i + 1] == '"') {
            item += '"';
            i += 2;
            continue;
          }
          ++i;
          break;
        }
        item += line[i++];
      }
      while (i < line.size() && line[i] != ',') ++i;
    } else {
      const size_t start = i;
      while (i < line.size() && line[i] != ',') ++i;
      item = std::string(line.substr(start, i - start));
      while (!item.empty() && (item.back() == ' ' || item.back() == '\t')) item.pop_back();
    }
    if (items.size() < keep) items.push_back(std::move(item));
    ++count;
    if (i >= line.size()) break;
    ++i;  // the comma
  }
  if (found) *found = count;
  return items;
}

// A text found in the file, as a message quotes it: a line of megabytes is cut short.
std::string shown(std::string_view text) {
  constexpr size_t kLongest = 60;
  if (text.size() <= kLongest) return std::string(text);
  return std::string(text.substr(0, kLongest)) + "...";
}

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
    size_t found = 0;
    items_ = splitRecord(lines_[static_cast<size_t>(lineNo_) - 1], count, &found);
    next_ = 0;
    what_ = what;
    if (found != count) {
      std::ostringstream m;
      m << what << " (" << count << (count == 1 ? " value" : " values") << "), found " << found;
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

  double number(const char* name) {
    const std::string t = item();
    try {
      return parseStrict(t);
    } catch (const RuntimeError&) {
      throw Fault{lineNo_, std::string("a number for ") + name + " in " + what_ + ", found \"" + shown(t) + "\""};
    }
  }
  void single(const char* name, std::string& field) {
    const double v = number(name);
    if (!std::isfinite(v) || std::fabs(v) > 3.4028234663852886e38)
      throw Fault{lineNo_, std::string("a single-precision number for ") + name + " in " + what_};
    field = formatSingle(static_cast<float>(v));
  }
  int32_t integer(const char* name, int32_t low, int32_t high) {
    const double v = number(name);
    int32_t n = 0;
    bool fits = true;
    try {
      n = toInt32(v);
    } catch (const RuntimeError&) {
      fits = false;
    }
    if (!fits || n < low || n > high) {
      std::ostringstream m;
      m << "a whole number from " << low << " to " << high << " for " << name << " in " << what_;
      throw Fault{lineNo_, m.str()};
    }
    return n;
  }
  void count(const char* name, std::string& field) {
    field = std::to_string(integer(name, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
  }
  // A print line: the whole line as it stands.
  std::string wholeLine(const std::string& what) {
    ++lineNo_;
    if (static_cast<size_t>(lineNo_) > lines_.size()) throw Fault{lineNo_, what + "; the file ends before it"};
    return lines_[static_cast<size_t>(lineNo_) - 1];
  }
  int lineNo() const { return lineNo_; }

 private:
  std::string item() {
    if (next_ >= items_.size()) end();  // a short record: report it as such
    return items_[next_++];
  }

  const std::vector<std::string>& lines_;
  std::vector<std::string> items_;
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

  r.begin(5, "the stereoscopic factor, 0, reduction factor, number of dots, number of reference lines");
  r.single("the stereoscopic factor", f.stereo);
  r.number("the reserved value");
  r.single("the reduction factor", f.reduce);
  r.count("the number of dots", f.ndots);
  r.count("the number of reference lines", f.grid);
  r.end();

  r.begin(3, "the axes origin");
  r.single("x", f.xorigin);
  r.single("y", f.yorigin);
  r.single("z", f.zorigin);
  r.end();

  r.begin(6, "the viewing window");
  r.single("the lower x limit", f.windowlx);
  r.single("the upper x limit", f.windowgx);
  r.single("the lower y limit", f.windowly);
  r.single("the upper y limit", f.windowgy);
  r.single("the lower z limit", f.windowlz);
  r.single("the upper z limit", f.windowgz);
  r.end();

  r.begin(4, "the parameter ranges");
  r.single("the lower x/u limit", f.rangelxu);
  r.single("the upper x/u limit", f.rangegxu);
  r.single("the lower y/v limit", f.rangelyv);
  r.single("the upper y/v limit", f.rangegyv);
  r.end();

  r.begin(4, "the spacings and segments per spacing");
  r.count("the spacings along x/u", f.spacexu);
  r.count("the spacings along y/v", f.spaceyv);
  r.count("the segments along x/u", f.segsxu);
  r.count("the segments along y/v", f.segsyv);
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
  if (n < 0) throw Fault{r.lineNo(), "the number of constants, found \"" + shown(countLine) + "\""};
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
                        const std::function<void()>& replot) {
  if (!persist) {
    left.SetAutoRedraw(true);
    right.SetAutoRedraw(true);
    if (replot) replot();
  }
  // Both pictures are written before either replaces a previous one.
  try {
    SafeSave save;
    save.Picture(path + "_left.bmp", left);
    save.Picture(path + "_right.bmp", right);
    save.Commit();
  } catch (const SaveError& e) {
    if (!persist) {
      left.SetAutoRedraw(false);
      right.SetAutoRedraw(false);
    }
    throw RuntimeError(err::PathFileAccess, "Cannot write \"" + e.target() + "\"");
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
  if (lines.empty() || splitRecord(lines[0], 1).front() != kStereoMagic) {
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
