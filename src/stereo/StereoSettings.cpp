#include "stereo/StereoSettings.h"

#include <cmath>
#include <limits>

#include "platform/NumberText.h"
#include "platform/RuntimeError.h"

namespace orvane {

const std::array<std::string_view, 6> kDerivativeNames = {"", "Zx", "Zy", "Zxx", "Zyy", "Zxy"};

namespace {

// Indexed by order in x + 3 * order in y.
constexpr std::array<int, 9> kSelectorTable = {kSurfaceItself, kZx, kZxx, kZy, kZxy, 0, kZyy, 0, 0};

// Single-precision quotient; a zero divisor gives 11 (6 for 0/0) and an overflowing
// result 6, as the program's single arithmetic raises them.
int32_t divideSingle(float a, float b, float& out) {
  if (b == 0) return a == 0 ? err::Overflow : err::DivisionByZero;
  const float q = a / b;
  if (!std::isfinite(q)) return err::Overflow;
  out = q;
  return 0;
}

int32_t subtractSingle(float a, float b, float& out) {
  const float d = a - b;
  if (!std::isfinite(d)) return err::Overflow;
  out = d;
  return 0;
}

// Collects the first error of a reading that goes on past failures.
class Reading {
 public:
  Reading(ExpressionReader& reader, SettingsRead& result) : reader_(reader), result_(result) {}

  void expression(const char* name, const std::string& text, float& target) {
    try {
      target = ToSingle(reader_.evalSetting(text));
    } catch (const RuntimeError& e) {
      note(name, e.number());
    }
  }
  void count(const char* name, const std::string& text, int32_t& target) {
    try {
      target = ReadCount(text);
    } catch (const RuntimeError& e) {
      note(name, e.number());
    }
  }
  void derived(const char* name, int32_t number) {
    if (number != 0) note(name, number);
  }

 private:
  void note(const char* name, int32_t number) {
    if (result_.error != 0) return;
    result_.error = number;
    result_.errorField = name;
  }

  ExpressionReader& reader_;
  SettingsRead& result_;
};

}  // namespace

int DerivativeSelectorFor(int32_t xder, int32_t yder) {
  if (xder < 0 || xder > 2 || yder < 0 || yder > 2) throw RuntimeError(err::SubscriptOutOfRange);
  return kSelectorTable[static_cast<size_t>(xder + 3 * yder)];
}

std::array<int32_t, 2> DerivativeOrdersOf(int selector) {
  switch (selector) {
    case kSurfaceItself: return {0, 0};
    case kZx: return {1, 0};
    case kZy: return {0, 1};
    case kZxx: return {2, 0};
    case kZyy: return {0, 2};
    case kZxy: return {1, 1};
    default: throw RuntimeError(err::SubscriptOutOfRange);
  }
}

int32_t ReadCount(std::string_view text) { return toInt32(roundHalfEven(leadingNumber(text))); }

float ToSingle(double value) {
  if (!std::isfinite(value) || std::fabs(value) > std::numeric_limits<float>::max())
    throw RuntimeError(err::Overflow);
  return static_cast<float>(value);
}

SettingsRead ReadPlotSettings(const StereoFields& fields, ExpressionReader& reader,
                              const StereoSettings& previous) {
  SettingsRead result;
  result.settings = previous;
  StereoSettings& s = result.settings;
  Reading read(reader, result);

  s.parametric = fields.parametric;
  s.equationZ = fields.equationZ;
  s.equationX = fields.equationX;
  s.equationY = fields.equationY;

  read.expression("rangelxu", fields.rangelxu, s.rangelxu);
  read.expression("rangegxu", fields.rangegxu, s.rangegxu);
  read.expression("rangelyv", fields.rangelyv, s.rangelyv);
  read.expression("rangegyv", fields.rangegyv, s.rangegyv);
  read.count("spacexu", fields.spacexu, s.spacexu);
  read.count("spaceyv", fields.spaceyv, s.spaceyv);
  read.count("segsxu", fields.segsxu, s.segsxu);
  read.count("segsyv", fields.segsyv, s.segsyv);

  read.expression("windowlx", fields.windowlx, s.windowlx);
  read.expression("windowgx", fields.windowgx, s.windowgx);
  read.expression("windowly", fields.windowly, s.windowly);
  read.expression("windowgy", fields.windowgy, s.windowgy);
  read.expression("windowlz", fields.windowlz, s.windowlz);
  read.expression("windowgz", fields.windowgz, s.windowgz);
  read.expression("xrot", fields.xrot, s.xrot);
  read.expression("yrot", fields.yrot, s.yrot);
  read.expression("zrot", fields.zrot, s.zrot);
  read.expression("xtr", fields.xtr, s.xtr);
  read.expression("ytr", fields.ytr, s.ytr);
  read.expression("ztr", fields.ztr, s.ztr);
  read.expression("stereo", fields.stereo, s.stereo);
  read.expression("reduce", fields.reduce, s.reduce);

  s.lines = fields.lines;
  s.dots = fields.dots;
  s.persist = fields.persist;
  s.background = fields.background;
  read.count("ndots", fields.ndots, s.ndots);
  read.count("grid", fields.grid, s.grid);
  read.expression("xorigin", fields.xorigin, s.xorigin);
  read.expression("yorigin", fields.yorigin, s.yorigin);
  read.expression("zorigin", fields.zorigin, s.zorigin);
  read.expression("divx", fields.divx, s.divx);
  read.expression("divy", fields.divy, s.divy);
  read.expression("divz", fields.divz, s.divz);

  read.count("xder", fields.xder, s.xder);
  read.count("yder", fields.yder, s.yder);
  try {
    s.selector = DerivativeSelectorFor(s.xder, s.yder);
  } catch (const RuntimeError& e) {
    read.derived("selector", e.number());
  }
  s.accuracy = fields.accuracy;

  // Mesh spacings and plotting increments, in this order.
  float extent = 0;
  if (!subtractSingle(s.rangegxu, s.rangelxu, extent))
    read.derived("drxu", divideSingle(extent, static_cast<float>(s.spacexu), s.drxu));
  else
    read.derived("drxu", err::Overflow);
  if (!subtractSingle(s.rangegyv, s.rangelyv, extent))
    read.derived("dryv", divideSingle(extent, static_cast<float>(s.spaceyv), s.dryv));
  else
    read.derived("dryv", err::Overflow);
  read.derived("stepxu", divideSingle(s.drxu, static_cast<float>(s.segsxu), s.stepxu));
  read.derived("stepyv", divideSingle(s.dryv, static_cast<float>(s.segsyv), s.stepyv));

  // The viewing box: extents, centre of the depth extent, depth slopes.
  read.derived("delwindx", subtractSingle(s.windowgx, s.windowlx, s.delwindx));
  read.derived("delwindy", subtractSingle(s.windowgy, s.windowly, s.delwindy));
  read.derived("delwindz", subtractSingle(s.windowgz, s.windowlz, s.delwindz));
  s.windcex = s.windowlx + s.delwindx / 2;
  read.derived("depthSlopeY", divideSingle(s.delwindy, s.delwindx, s.depthSlopeY));
  read.derived("depthSlopeZ", divideSingle(s.delwindz, s.delwindx, s.depthSlopeZ));
  return result;
}

}  // namespace orvane
