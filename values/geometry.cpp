#include <cmath>

#include <QXFoundation/geometry.h>

namespace qx {

Rect QXRectFromPoints(Point p1, Point p2) {
  return {p1.x <= p2.x ? p1.x : p2.x, p1.y > p2.y ? p2.y : p1.y, std::fabs(p2.x - p1.x),
          std::fabs(p2.y - p1.y)};
}

Rect QXCenterRect(Rect rect, Rect frame) {
  if (frame.width > rect.width) rect.x += std::floor((frame.width - rect.width) * 0.5);
  if (frame.height > rect.height) rect.y += std::floor((frame.height - rect.height) * 0.5);
  return rect;
}

}  // namespace qx
