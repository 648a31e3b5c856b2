#pragma once

// Values of every kind for tests that go over all pairs.

#include <string>
#include <vector>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/property_value.h>

namespace frame_test {

// A value object of the application: equal by content.
class Point : public qx::Object {
 public:
  Point(int px, int py) : x(px), y(py) {}
  int x;
  int y;

  bool isEqual(const qx::PropertyValue& other) const override {
    const auto* p = other.peek<Point>();
    return p != nullptr && p->x == x && p->y == y;
  }
  std::size_t hash() const override { return static_cast<std::size_t>(x * 31 + y); }
  std::string description() const override {
    return "point " + std::to_string(x) + "," + std::to_string(y);
  }
};
inline void describe(qx::ClassBuilder<Point>& c) {
  c.name("FrameTestPoint").property("x", &Point::x).property("y", &Point::y);
}

// Samples are equal exactly when their groups are.
struct Sample {
  std::string group;
  qx::PropertyValue value;
};

// nil is not among them.
std::vector<Sample> sampleValues();

}  // namespace frame_test
