#include <gtest/gtest.h>

#include <QXFoundation/geometry.h>

namespace qx {

static void PrintTo(const Rect& r, std::ostream* out) {
  *out << '(' << r.x << ", " << r.y << ", " << r.width << ", " << r.height << ')';
}

namespace {

TEST(Geometry, MakesRectanglesOfTwoCornersInAnyOrder) {
  const Rect expected{10, 20, 30, 40};
  EXPECT_EQ(QXRectFromPoints({10, 20}, {40, 60}), expected);
  EXPECT_EQ(QXRectFromPoints({40, 60}, {10, 20}), expected);
  EXPECT_EQ(QXRectFromPoints({40, 20}, {10, 60}), expected);
  EXPECT_EQ(QXRectFromPoints({10, 60}, {40, 20}), expected);
  EXPECT_EQ(QXRectFromPoints({5, 5}, {5, 5}), (Rect{5, 5, 0, 0}));
  EXPECT_EQ(QXRectFromPoints({-1.5, 2}, {1, -2.25}), (Rect{-1.5, -2.25, 2.5, 4.25}));
}

TEST(Geometry, CentersAlongTheAxesInWhichTheFrameIsLarger) {
  EXPECT_EQ(QXCenterRect({10, 10, 20, 20}, {500, 500, 101, 40}), (Rect{50, 20, 20, 20}));
  EXPECT_EQ(QXCenterRect({10, 10, 20, 20}, {0, 0, 20, 20}), (Rect{10, 10, 20, 20}));
  EXPECT_EQ(QXCenterRect({10, 10, 20, 20}, {0, 0, 10, 10}), (Rect{10, 10, 20, 20}));
  EXPECT_EQ(QXCenterRect({10, 10, 20, 20}, {0, 0, 100, 10}), (Rect{50, 10, 20, 20}));
  EXPECT_EQ(QXCenterRect({10, 10, 20, 20}, {0, 0, 10, 100}), (Rect{10, 50, 20, 20}));
  EXPECT_EQ(QXCenterRect({0.5, -3, 20, 20}, {0, 0, 21, 21.5}), (Rect{0.5, -3, 20, 20}));
}

}  // namespace
}  // namespace qx
