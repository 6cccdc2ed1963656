#pragma once
// What the stereo window plots and how: the texts of its fields (with their defaults),
// the values read from them for one plot, and the reading itself.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvane {

// Evaluates the expression-valued fields (window, range, rotation, ...) so that an
// entry such as pi/2 is accepted. Throws RuntimeError when the text has no value.
class ExpressionReader {
 public:
  virtual ~ExpressionReader() = default;
  virtual double evalSetting(std::string_view text) = 0;
};

// Option indices of the window's option pairs.
constexpr int kBackgroundWhite = 0;  // optBackclr(0)
constexpr int kBackgroundBlack = 1;  // optBackclr(1)
constexpr int kAccuracyMed = 0;      // OptAccuracy(0), three-point formulas
constexpr int kAccuracyHigh = 1;     // OptAccuracy(1), five-point formulas

// The window's fields as typed, one member per control; the initialisers are the texts
// the window opens with.
struct StereoFields {
  bool parametric = false;  // chkParametric
  std::string equationZ = "(x-1)*x*(x+1)*(y-1)*y*(y+1)*5";
  std::string equationX = "v";
  std::string equationY = "u";

  std::string rangelxu = "-1", rangegxu = "1", rangelyv = "-1", rangegyv = "1";
  std::string spacexu = "4", spaceyv = "4";  // # of spacings
  std::string segsxu = "1", segsyv = "1";    // # of segments per spacing

  std::string windowlx = "-2.5", windowgx = "2.5";
  std::string windowly = "-2", windowgy = "2";
  std::string windowlz = "-1.5", windowgz = "1.5";
  std::string xrot = "0", yrot = "0", zrot = "0";
  std::string xtr = "0", ytr = "0", ztr = "0";
  std::string stereo = "1";  // stereoscopic factor
  std::string reduce = "1";  // reduction factor

  bool lines = true;     // chkLines
  bool dots = false;     // chkDots
  bool persist = true;   // chkPersist
  int background = kBackgroundWhite;
  std::string ndots = "5000";
  std::string grid = "5";  // # of reference lines
  std::string xorigin = "0", yorigin = "0", zorigin = "0";
  std::string divx = "1", divy = "1", divz = "1";

  std::string xder = "0", yder = "0";  // orders of the partial derivative
  int accuracy = kAccuracyHigh;

  // Step fields of the increment and decrement buttons.
  std::string stepWindX = "1", stepWindY = "1", stepWindZ = "1";
  std::string stepRangXU = "1", stepRangYV = "1";
  std::string stepRotX = "5", stepRotY = "5", stepRotZ = "5";
  std::string stepTranX = "1", stepTranY = "1", stepTranZ = "1";
};

// The values one plot works with: real settings in single precision, counts as 32-bit
// integers, and the values derived from them. The initialisers are those of the
// default fields.
struct StereoSettings {
  bool parametric = false;
  std::string equationZ = "(x-1)*x*(x+1)*(y-1)*y*(y+1)*5";
  std::string equationX = "v";
  std::string equationY = "u";

  float rangelxu = -1, rangegxu = 1, rangelyv = -1, rangegyv = 1;
  int32_t spacexu = 4, spaceyv = 4, segsxu = 1, segsyv = 1;
  float drxu = 0.5f, dryv = 0.5f;      // distance between neighbouring mesh curves
  float stepxu = 0.5f, stepyv = 0.5f;  // plotting increments along a curve

  float windowlx = -2.5f, windowgx = 2.5f;
  float windowly = -2, windowgy = 2;
  float windowlz = -1.5f, windowgz = 1.5f;
  float xrot = 0, yrot = 0, zrot = 0;  // degrees
  float xtr = 0, ytr = 0, ztr = 0;
  float stereo = 1;
  float reduce = 1;

  float delwindx = 5, delwindy = 4, delwindz = 3;
  float windcex = 0;
  float depthSlopeY = 0.8f, depthSlopeZ = 0.6f;

  bool lines = true, dots = false, persist = true;
  int background = kBackgroundWhite;
  int32_t ndots = 5000;
  int32_t grid = 5;
  float xorigin = 0, yorigin = 0, zorigin = 0;
  float divx = 1, divy = 1, divz = 1;

  int32_t xder = 0, yder = 0;
  int selector = 0;  // 0 the surface itself, 1..5 Zx, Zy, Zxx, Zyy, Zxy
  int accuracy = kAccuracyHigh;
};

// The partial derivatives a plot can show instead of the surface, by selector.
enum DerivativeSelector : int { kSurfaceItself = 0, kZx = 1, kZy = 2, kZxx = 3, kZyy = 4, kZxy = 5 };

// Names by selector; index 0 (the surface itself) is empty.
extern const std::array<std::string_view, 6> kDerivativeNames;

// The selector for orders in x and y (both 0..2); pairs outside the table give 0.
// Orders outside 0..2 raise RuntimeError 9 "Subscript out of range".
int DerivativeSelectorFor(int32_t xder, int32_t yder);
// The orders (in x, in y) of a selector 0..5; RuntimeError 9 for any other.
std::array<int32_t, 2> DerivativeOrdersOf(int selector);

// A count field: the leading numeric part of the text rounded half to even ("2.5" -> 2,
// "3.5" -> 4, "abc" -> 0). RuntimeError 6 beyond 32 bits.
int32_t ReadCount(std::string_view text);

// Converts a value to single precision as the program stores settings: a finite
// double beyond the single range, infinity or NaN raise RuntimeError 6 "Overflow".
float ToSingle(double value);

struct SettingsRead {
  StereoSettings settings;
  int32_t error = 0;          // number of the first error met, 0 when none
  std::string errorField;     // the field it was met in ("windowlx", "drxu", ...)
};

// Reads every field and computes the derived values (the mesh spacings and increments,
// the window extents, centre and depth slopes). A value that cannot be had (the
// expression fails, a division by zero) keeps its value from `previous` and the reading
// goes on with the others; the plot goes on in any case.
SettingsRead ReadPlotSettings(const StereoFields& fields, ExpressionReader& reader,
                              const StereoSettings& previous = {});

}  // namespace orvane
