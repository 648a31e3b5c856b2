// Points and rectangles, for layout.
//
//     auto r = qx::QXRectFromPoints({30, 40}, {10, 10});              // {10, 10, 20, 30}
//     auto c = qx::QXCenterRect({10, 10, 20, 20}, {0, 0, 101, 40});   // {50, 20, 20, 20}
//
// Lengths are in whatever unit the caller counts in; x grows to the right, y downwards. Plain
// values without state: thread-safe.
#pragma once

#include <QXFoundation/export.h>

namespace qx {

// A place.
struct Point {
  // Equal where both are.
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

// A rectangle by its corner, its width and its height.
struct Rect {
  // Equal where all four are.
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  friend bool operator==(const Rect&, const Rect&) = default;
};

// The rectangle with these two corners.
[[nodiscard]] QX_EXPORT Rect QXRectFromPoints(Point p1, Point p2);

// `rect` moved right and down by half of what the frame is wider and higher, in whole units; along
// an axis in which the frame is not larger it stays. Where the frame lies plays no part: give a
// rectangle at the frame's origin to centre it in the frame.
[[nodiscard]] QX_EXPORT Rect QXCenterRect(Rect rect, Rect frame);

}  // namespace qx
