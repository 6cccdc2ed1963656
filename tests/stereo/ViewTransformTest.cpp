#include <gtest/gtest.h>

#include "stereo/StereoSettings.h"
#include "stereo/ViewTransform.h"

namespace orvane {
namespace {

constexpr float kTol = 1e-6f;

TEST(RotatePoint, QuarterTurnsAboutEachAxis) {
  struct Row {
    float xrot, yrot, zrot;
    Point3 in, out;
  } rows[] = {
      {90, 0, 0, {0, 1, 0}, {0, 0, 1}},    // +y turns towards +z
      {90, 0, 0, {0, 0, 1}, {0, -1, 0}},
      {0, 90, 0, {1, 0, 0}, {0, 0, -1}},   // +z turns towards +x
      {0, 90, 0, {0, 0, 1}, {1, 0, 0}},
      {0, 0, 90, {1, 0, 0}, {0, 1, 0}},    // +x turns towards +y
      {0, 0, 90, {0, 1, 0}, {-1, 0, 0}},
      {0, 0, -90, {1, 0, 0}, {0, -1, 0}},
      {180, 0, 0, {0, 1, 2}, {0, -1, -2}},
      // x first, then y: (0,1,0) -> (0,0,1) -> (1,0,0)
      {90, 90, 0, {0, 1, 0}, {1, 0, 0}},
      // x, y, then z: (0,1,0) -> (0,0,1) -> (1,0,0) -> (0,1,0)
      {90, 90, 90, {0, 1, 0}, {0, 1, 0}},
  };
  for (const Row& r : rows) {
    StereoSettings s;
    s.xrot = r.xrot;
    s.yrot = r.yrot;
    s.zrot = r.zrot;
    const ViewTransform view = MakeViewTransform(s);
    float x, y, z;
    RotatePoint(view, r.in.x, r.in.y, r.in.z, x, y, z);
    EXPECT_NEAR(x, r.out.x, kTol) << r.xrot << " " << r.yrot << " " << r.zrot;
    EXPECT_NEAR(y, r.out.y, kTol) << r.xrot << " " << r.yrot << " " << r.zrot;
    EXPECT_NEAR(z, r.out.z, kTol) << r.xrot << " " << r.yrot << " " << r.zrot;
    // The in-place form does the same arithmetic.
    Point3 p = r.in;
    RotatePoint(view, p);
    EXPECT_EQ(p.x, x);
    EXPECT_EQ(p.y, y);
    EXPECT_EQ(p.z, z);
  }
}

TEST(RotatePoint, TranslatesBeforeRotating) {
  StereoSettings s;
  s.ztr = 1;
  s.xrot = 90;
  const ViewTransform view = MakeViewTransform(s);
  EXPECT_FALSE(view.identity);
  Point3 p{0, 0, 0};
  RotatePoint(view, p);  // (0,0,1) turned about x: (0,-1,0)
  EXPECT_NEAR(p.y, -1, kTol);
  EXPECT_NEAR(p.z, 0, kTol);
  EXPECT_TRUE(MakeViewTransform(StereoSettings{}).identity);
}

TEST(StereoProjection, DefaultWindowLeftAndRight) {
  struct Row {
    Point3 p;
    float stereo;
    float hL, hR, v;
  } rows[] = {
      {{-2.5f, 0, 0}, 1, 2.4f, 2, 1.5f},      // near end: top right, left picture shifted
      {{2.5f, 0, 0}, 1, -2.4f, -2, -1.5f},    // far end: bottom left
      {{0, 1, 0.5f}, 1, 1, 1, 0.5f},          // the centre plane: no parallax
      {{2.5f, 1, 0.5f}, 1, -1.4f, -1, -1},
      {{-2.5f, 0, 0}, 0, 2, 2, 1.5f},         // factor 0: identical pictures
      {{-2.5f, 0, 0}, -1, 1.6f, 2, 1.5f},     // negative factor: parallax reversed
  };
  for (const Row& r : rows) {
    StereoSettings s;
    s.stereo = r.stereo;
    const StereoPoint sp = StereoProjection(MakeViewTransform(s), r.p);
    EXPECT_NEAR(sp.hL, r.hL, kTol) << r.p.x << " " << r.stereo;
    EXPECT_NEAR(sp.hR, r.hR, kTol) << r.p.x << " " << r.stereo;
    EXPECT_NEAR(sp.v, r.v, kTol) << r.p.x << " " << r.stereo;
  }
}

TEST(ReducePictures, ShrinksTowardsTheMiddleAndClampsTheFactor) {
  const PictureGeometry designed{10, 400, 300, 400, 300};
  struct Row {
    float reduce;
    float used;
    int width, left0, height;
  } rows[] = {
      {1, 1, 400, 10, 300},   {0.5f, 0.5f, 200, 210, 150}, {1.5f, 1, 400, 10, 300},
      {0, 1, 400, 10, 300},   {-2, 1, 400, 10, 300},       {0.25f, 0.25f, 100, 310, 75},
  };
  for (const Row& r : rows) {
    const PictureLayout l = ReducePictures(designed, r.reduce);
    EXPECT_EQ(l.reduce, r.used) << r.reduce;
    EXPECT_EQ(l.ReducedPicWidth, r.width) << r.reduce;
    EXPECT_EQ(l.width0, r.width) << r.reduce;
    EXPECT_EQ(l.width1, r.width) << r.reduce;
    EXPECT_EQ(l.left0, r.left0) << r.reduce;
    EXPECT_EQ(l.left0 + l.width0, 410) << "the left picture keeps its right edge";
    EXPECT_EQ(l.height0, r.height) << r.reduce;
    EXPECT_EQ(l.height1, r.height) << r.reduce;
  }
  // Halves round to even: 200.5 -> 200, 201.5 -> 202.
  const PictureLayout odd = ReducePictures({0, 401, 403, 401, 403}, 0.5f);
  EXPECT_EQ(odd.ReducedPicWidth, 200);
  EXPECT_EQ(odd.left0, 201);
  EXPECT_EQ(odd.height0, 202);
}

}  // namespace
}  // namespace orvane
