// What the examples of hosting share: four threads that send numbers to the main thread, and an
// object there that checks what arrives. None of it depends on the loop that hosts the run loop.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace hosting {

constexpr int kSenders = 4;

// Expects the numbers 1, 2, 3 ... of each sender, in that order.
class Receiver : public qx::Object {
 public:
  Receiver(long numbersOfEach, std::function<void()> finished)
      : missing_(kSenders * numbersOfEach), finished_(std::move(finished)) {}

  void number(int sender, long n) {
    if (std::this_thread::get_id() != thread_) isRight_ = false;
    if (n != ++last_[static_cast<std::size_t>(sender)]) isRight_ = false;
    release();  // every call leaves its target held
    if (--missing_ == 0) finished_();
  }
  bool isRight() const { return isRight_ && missing_ == 0; }

 private:
  std::thread::id thread_ = std::this_thread::get_id();
  std::vector<long> last_ = std::vector<long>(kSenders);
  long missing_;
  bool isRight_ = true;
  std::function<void()> finished_;
};
inline void describe(qx::ClassBuilder<Receiver>& c) {
  c.name("HostingReceiver").operation("number:of:", &Receiver::number);
}

// The senders, which run until they have sent everything, and what is made of the result.
class Load {
 public:
  // The first argument of the program is how many numbers each of them sends.
  Load(int argc, char** argv, std::function<void()> finished)
      : each_(argc > 1 ? std::strtol(argv[1], nullptr, 10) : 100000),
        receiver_(qx::make<Receiver>(each_, std::move(finished))) {
    for (int sender = 0; sender < kSenders; ++sender) {
      threads_.emplace_back([this, sender] {
        for (long n = 1; n <= each_; ++n)
          toMain_->sendMessageTo(receiver_, "number:of:", sender, n);
      });
    }
  }
  Load(const Load&) = delete;
  Load& operator=(const Load&) = delete;
  ~Load() {
    for (std::thread& thread : threads_) {
      if (thread.joinable()) thread.join();
    }
  }

  // Once the host's loop has ended: what the program exits with. `ticks` are what a timer of the
  // host's own has counted meanwhile, which must not have had to wait for the end of the flood.
  int result(const char* host, long ticks) const {
    const bool isRight = receiver_->isRight() && ticks > 0;
    std::printf("%s: %d x %ld messages %s, %ld ticks of its own meanwhile\n", host, kSenders, each_,
                receiver_->isRight() ? "in order" : "WRONG", ticks);
    return isRight ? EXIT_SUCCESS : EXIT_FAILURE;
  }

 private:
  long each_;
  qx::Ref<Receiver> receiver_;
  qx::Ref<qx::QXThreadMessage> toMain_ = qx::QXThreadMessage::init();
  std::vector<std::thread> threads_;
};

// What the host calls when the run loop's descriptor is readable. Nothing may be raised into a loop
// that is written in C, or that was compiled without exceptions.
inline void runPending() noexcept {
  try {
    qx::RunLoop::currentRunLoop()->runPending();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "an operation raised: %s\n", e.what());
    std::exit(EXIT_FAILURE);
  }
}

}  // namespace hosting
