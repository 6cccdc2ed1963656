#include <gtest/gtest.h>

#include <cmath>

#include "stereo/StereoSettings.h"
#include "stereo/ViewTransform.h"

namespace orvane {
namespace {

constexpr float kTol = 1e-6f;

::testing::AssertionResult near(const Point3& got, const Point3& expected) {
  if (std::fabs(got.x - expected.x) < kTol && std::fabs(got.y - expected.y) < kTol &&
      std::fabs(got.z - expected.z) < kTol)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "(" << got.x << "," << got.y << "," << got.z << ")";
}

TEST(RotatePoint, QuarterTurnsAboutEachAxisInOrderXYZ) {
  const struct {
    float xrot, yrot, zrot, ztr;
    Point3 in, out;
  } rows[] = {
      {90, 0, 0, 0, {0, 1, 0}, {0, 0, 1}},  // +y turns towards +z
      {90, 0, 0, 0, {0, 0, 1}, {0, -1, 0}},
      {0, 90, 0, 0, {1, 0, 0}, {0, 0, -1}},  // +z turns towards +x
      {0, 90, 0, 0, {0, 0, 1}, {1, 0, 0}},
      {0, 0, 90, 0, {1, 0, 0}, {0, 1, 0}},  // +x turns towards +y
      {0, 0, -90, 0, {1, 0, 0}, {0, -1, 0}},
      {180, 0, 0, 0, {0, 1, 2}, {0, -1, -2}},
      {90, 90, 0, 0, {0, 1, 0}, {1, 0, 0}},   // x first, then y
      {90, 90, 90, 0, {0, 1, 0}, {0, 1, 0}},  // then z
      {90, 0, 0, 1, {0, 0, 0}, {0, -1, 0}},   // translated before rotating
  };
  for (const auto& r : rows) {
    StereoSettings s;
    s.xrot = r.xrot;
    s.yrot = r.yrot;
    s.zrot = r.zrot;
    s.ztr = r.ztr;
    const ViewTransform view = MakeViewTransform(s);
    Point3 three;
    RotatePoint(view, r.in.x, r.in.y, r.in.z, three.x, three.y, three.z);
    EXPECT_TRUE(near(three, r.out)) << r.xrot << " " << r.yrot << " " << r.zrot << " " << r.ztr;
    Point3 inPlace = r.in;  // the in-place form does the same arithmetic
    RotatePoint(view, inPlace);
    EXPECT_TRUE(inPlace.x == three.x && inPlace.y == three.y && inPlace.z == three.z);
  }
  EXPECT_TRUE(MakeViewTransform(StereoSettings{}).identity);
}

TEST(StereoProjection, DefaultWindowLeftAndRight) {
  const struct {
    Point3 p;
    float stereo, hL, hR, v;
  } rows[] = {
      {{-2.5f, 0, 0}, 1, 2.4f, 2, 1.5f},    // near end: top right, left picture shifted
      {{2.5f, 0, 0}, 1, -2.4f, -2, -1.5f},  // far end: bottom left
      {{0, 1, 0.5f}, 1, 1, 1, 0.5f},        // at windcex: no parallax
      {{2.5f, 1, 0.5f}, 1, -1.4f, -1, -1},
      {{-2.5f, 0, 0}, 0, 2, 2, 1.5f},       // factor 0: identical pictures
      {{-2.5f, 0, 0}, -1, 1.6f, 2, 1.5f},   // negative factor: parallax reversed
  };
  for (const auto& r : rows) {
    StereoSettings s;
    s.stereo = r.stereo;
    const StereoPoint sp = StereoProjection(MakeViewTransform(s), r.p);
    EXPECT_TRUE(near({sp.hL, sp.hR, sp.v}, {r.hL, r.hR, r.v})) << r.p.x << " " << r.stereo;
  }
}

TEST(ReducePictures, ShrinksTowardsTheMiddleAndClampsTheFactor) {
  const PictureGeometry designed{10, 400, 300, 400, 300};
  const struct {
    float reduce, used;
    int width, left0, height;
  } rows[] = {{1, 1, 400, 10, 300},   {0.5f, 0.5f, 200, 210, 150}, {1.5f, 1, 400, 10, 300},
              {0, 1, 400, 10, 300},   {-2, 1, 400, 10, 300},       {0.25f, 0.25f, 100, 310, 75}};
  for (const auto& r : rows) {
    const PictureLayout l = ReducePictures(designed, r.reduce);
    EXPECT_EQ(l.reduce, r.used) << r.reduce;
    EXPECT_EQ(l.ReducedPicWidth, r.width) << r.reduce;
    EXPECT_TRUE(l.width0 == r.width && l.width1 == r.width && l.height0 == r.height && l.height1 == r.height)
        << r.reduce;
    EXPECT_EQ(l.left0, r.left0) << r.reduce;  // the left picture keeps its right edge at 410
  }
  // Halves round to even: 200.5 -> 200, 201.5 -> 202.
  const PictureLayout odd = ReducePictures({0, 401, 403, 401, 403}, 0.5f);
  EXPECT_EQ(odd.ReducedPicWidth, 200);
  EXPECT_EQ(odd.left0, 201);
  EXPECT_EQ(odd.height0, 202);
}

}  // namespace
}  // namespace orvane
