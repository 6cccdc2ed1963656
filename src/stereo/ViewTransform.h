#pragma once
// The map from a surface point to the two pictures of the stereo pair: translation and
// rotation of the point, the oblique parallel projection onto the screen's y-z plane,
// the horizontal stereo shift of the left picture, and the sizes and scales of the two
// pictures. All coordinate arithmetic is single precision.

#include "stereo/StereoSettings.h"

namespace orvane {

class Canvas;

struct Point3 {
  float x = 0, y = 0, z = 0;
};

// The rotation and projection constants of one drawing routine, worked out afresh from
// the settings at its start.
struct ViewTransform {
  float xtr = 0, ytr = 0, ztr = 0;
  float cosx = 1, cosy = 1, cosz = 1;
  float sinx = 0, siny = 0, sinz = 0;
  float windcex = 0;
  float depthSlopeY = 0.8f, depthSlopeZ = 0.6f;
  float stereoShift = 0.16f;
  // True when all rotations and translations are exactly 0: points may be projected as
  // they are, without RotatePoint.
  bool identity = true;
};

ViewTransform MakeViewTransform(const StereoSettings& settings);

// Translates, then rotates about x, y and z in turn. Two forms with the same arithmetic:
// into separate outputs, and in place.
void RotatePoint(const ViewTransform& view, float x, float y, float z, float& xOut, float& yOut,
                 float& zOut);
void RotatePoint(const ViewTransform& view, Point3& point);

// Where a point lands: horizontal coordinate in the left and in the right picture, and
// the vertical coordinate both share.
struct StereoPoint {
  float hL = 0, hR = 0, v = 0;
  bool finite() const;  // false after an overflow or invalid operation
};

StereoPoint StereoProjection(const ViewTransform& view, float x, float y, float z);
inline StereoPoint StereoProjection(const ViewTransform& view, const Point3& p) {
  return StereoProjection(view, p.x, p.y, p.z);
}

// The pictures as designed (device pixels), captured once when the window loads.
struct PictureGeometry {
  int LeftPic0 = 0;  // left edge of the left picture
  int WidthPic0 = 400, HeightPic0 = 400;
  int WidthPic1 = 400, HeightPic1 = 400;
};

// Where the two pictures go for one plot: the left one keeps its right edge and the
// right one its left edge, both shrinking towards the middle.
struct PictureLayout {
  float reduce = 1;  // the factor actually used, after clamping
  int ReducedPicWidth = 400;
  int left0 = 0, width0 = 400, height0 = 400;
  int width1 = 400, height1 = 400;
};

// A factor above 1, at or below 0 (or not a number) is taken as 1.
PictureLayout ReducePictures(const PictureGeometry& designed, float reduce);

// One device pixel in user units, horizontally and vertically.
struct DeviceUnit {
  float h = 0, v = 0;
};

// Gives both pictures the user scale of the viewing window (y to the right, z upwards)
// and returns the size of one device unit in user units. A window without height or
// width cannot be a scale: RuntimeError 5 (6 when not finite), from the Canvas.
DeviceUnit ScaleStereoPictures(Canvas& left, Canvas& right, const StereoSettings& settings);

}  // namespace orvane
