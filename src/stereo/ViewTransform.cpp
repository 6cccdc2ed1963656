#include "stereo/ViewTransform.h"

#include <cmath>

#include "platform/Canvas.h"
#include "platform/NumberText.h"

namespace orvane {

namespace {

// Half pi as the window computes it at load, natively and in double precision.
const double kHalfPi = std::atan(1.0) + std::atan(1.0);

float radians(float degrees) { return static_cast<float>(degrees * kHalfPi / 90); }

}  // namespace

ViewTransform MakeViewTransform(const StereoSettings& s) {
  ViewTransform t;
  t.xtr = s.xtr;
  t.ytr = s.ytr;
  t.ztr = s.ztr;
  const float a = radians(s.xrot), b = radians(s.yrot), c = radians(s.zrot);
  t.cosx = static_cast<float>(std::cos(static_cast<double>(a)));
  t.cosy = static_cast<float>(std::cos(static_cast<double>(b)));
  t.cosz = static_cast<float>(std::cos(static_cast<double>(c)));
  t.sinx = static_cast<float>(std::sin(static_cast<double>(a)));
  t.siny = static_cast<float>(std::sin(static_cast<double>(b)));
  t.sinz = static_cast<float>(std::sin(static_cast<double>(c)));
  t.windcex = s.windcex;
  t.depthSlopeY = s.depthSlopeY;
  t.depthSlopeZ = s.depthSlopeZ;
  t.stereoShift = s.stereo * s.depthSlopeY / 5;
  t.identity = std::fabs(s.xrot) + std::fabs(s.yrot) + std::fabs(s.zrot) + std::fabs(s.xtr) +
                   std::fabs(s.ytr) + std::fabs(s.ztr) ==
               0;
  return t;
}

void RotatePoint(const ViewTransform& t, float x, float y, float z, float& xOut, float& yOut,
                 float& zOut) {
  const float X = x + t.xtr;
  const float Y = y + t.ytr;
  const float Z = z + t.ztr;
  // About x: +y turns towards +z.
  const float Z1 = Z * t.cosx + Y * t.sinx;
  const float Y1 = Y * t.cosx - Z * t.sinx;
  // About y: +z turns towards +x.
  const float X2 = X * t.cosy + Z1 * t.siny;
  const float Z2 = Z1 * t.cosy - X * t.siny;
  // About z: +x turns towards +y.
  const float X3 = X2 * t.cosz - Y1 * t.sinz;
  const float Y3 = Y1 * t.cosz + X2 * t.sinz;
  xOut = X3;
  yOut = Y3;
  zOut = Z2;
}

void RotatePoint(const ViewTransform& t, Point3& p) { RotatePoint(t, p.x, p.y, p.z, p.x, p.y, p.z); }

bool StereoPoint::finite() const { return std::isfinite(hL) && std::isfinite(hR) && std::isfinite(v); }

StereoPoint StereoProjection(const ViewTransform& t, float x, float y, float z) {
  const float d = t.windcex - x;  // depth from the centre plane; nearer points positive
  StereoPoint p;
  p.hR = y + d * t.depthSlopeY;
  p.hL = p.hR + d * t.stereoShift;
  p.v = z + d * t.depthSlopeZ;
  return p;
}

PictureLayout ReducePictures(const PictureGeometry& g, float reduce) {
  PictureLayout l;
  l.reduce = (reduce > 0 && reduce <= 1) ? reduce : 1.0f;
  l.ReducedPicWidth = static_cast<int>(roundHalfEven(static_cast<double>(l.reduce) * g.WidthPic0));
  l.left0 = g.LeftPic0 + g.WidthPic0 - l.ReducedPicWidth;
  l.width0 = l.ReducedPicWidth;
  l.height0 = static_cast<int>(roundHalfEven(static_cast<double>(l.reduce) * g.HeightPic0));
  l.width1 = l.ReducedPicWidth;
  l.height1 = static_cast<int>(roundHalfEven(static_cast<double>(l.reduce) * g.HeightPic1));
  return l;
}

DeviceUnit ScaleStereoPictures(Canvas& left, Canvas& right, const StereoSettings& s) {
  for (Canvas* pic : {&left, &right}) pic->Scale(s.windowly, s.windowgz, s.windowgy, s.windowlz);
  DeviceUnit unit;
  const int w = left.pixelWidth(), h = left.pixelHeight();
  if (w > 0) unit.h = s.delwindy / static_cast<float>(w);
  if (h > 0) unit.v = s.delwindz / static_cast<float>(h);
  return unit;
}

}  // namespace orvane
