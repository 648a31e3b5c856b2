#pragma once

// A target that writes down which calls it gets.

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/run_loop.h>
#include <QXFoundation/thread_message.h>

namespace threads_test {

class Recorder : public qx::Object {
 public:
  void ping() { note("ping"); }
  void one(const qx::PropertyValue& v) { note("one " + text(v)); }
  void two(const qx::PropertyValue& v, const qx::PropertyValue& w) {
    note("two " + text(v) + " " + text(w));
  }
  void raise() {
    note("raise");
    throw std::runtime_error("raised by a call");
  }
  void nest() {
    note("nest");
    qx::RunLoop::currentRunLoop()->runMode(qx::NSDefaultRunLoopMode, nullptr);
    note("nested");
  }

  // What was called since this was asked last.
  std::vector<std::string> calls() { return std::exchange(calls_, {}); }
  std::thread::id thread;  // of the last call

 private:
  static std::string text(const qx::PropertyValue& v) {
    return v.isNil() ? "nil" : v.description();
  }
  void note(std::string call) {
    calls_.push_back(std::move(call));
    thread = std::this_thread::get_id();
  }
  std::vector<std::string> calls_;
};
inline void describe(qx::ClassBuilder<Recorder>& c) {
  c.name("ThreadsTestRecorder").operation("ping", &Recorder::ping);
  c.operation("one:", &Recorder::one).operation("two:with:", &Recorder::two);
  c.operation("raise", &Recorder::raise).operation("nest", &Recorder::nest);
}

// An object with nothing to it.
class Thing : public qx::Object {};
inline void describe(qx::ClassBuilder<Thing>& c) { c.name("ThreadsTestThing"); }

// The references to an object.
inline std::uint32_t references(const qx::Object& object) {
  return qx::detail::ObjectAccess::refs(object).load() / qx::detail::ObjectAccess::kOne;
}

// Gives up the references that calls have left behind.
inline void giveUp(const qx::Object& object, long calls) {
  for (long i = 0; i < calls; ++i) object.release();
}

// One turn of this thread's run loop, without waiting.
inline bool turn(const char* mode = qx::NSDefaultRunLoopMode) {
  return qx::RunLoop::currentRunLoop()->runMode(mode, nullptr);
}

// Runs `work` on a thread of its own, and waits for it.
template <class Work>
void onAnotherThread(Work work) {
  std::thread thread(work);
  thread.join();
}

}  // namespace threads_test
