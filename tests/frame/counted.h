#pragma once

// An object that tells how many of its kind are alive.

#include <atomic>

#include <QXFoundation/class_builder.h>

namespace frame_test {

class Counted : public qx::Object {
 public:
  explicit Counted(qx::PropertyValue next = nullptr) : held(std::move(next)) { ++alive; }

  qx::PropertyValue held;
  static inline std::atomic<int> alive = 0;

 protected:
  ~Counted() override { --alive; }
};
inline void describe(qx::ClassBuilder<Counted>& c) {
  c.name("FrameTestCounted").property("held", &Counted::held);
}

}  // namespace frame_test
