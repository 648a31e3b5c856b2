// How long it takes until a sleeping run loop performs a call that another thread sends, beside a
// thread that sleeps in epoll_wait and is told by an event descriptor: the least that any loop of
// this kind takes. One way, by the clock, in nanoseconds.
//
// Wanted: the median and the 99th percentile at most 1.2 times those of the bare pair.

#include <benchmark/benchmark.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "bench/values_support.h"

namespace {

constexpr std::size_t kWakeUps = 1000;

std::int64_t now() {
  timespec time{};
  ::clock_gettime(CLOCK_MONOTONIC, &time);
  return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

// Sends when the receiver has had the time to fall asleep, and waits until it was heard.
class Sender {
 public:
  template <class Wake>
  void wakeAll(Wake wake) {
    for (std::size_t i = 0; i < kWakeUps; ++i) {
      const timespec pause{0, 200'000};
      ::nanosleep(&pause, nullptr);
      sent_.store(now());
      wake();
      while (heard_.load() == i) std::this_thread::yield();
    }
  }
  // On the receiving thread.
  void hear() {
    times.push_back(static_cast<double>(now() - sent_.load()));
    ++heard_;
  }
  bool isDone() const { return heard_.load() == kWakeUps; }
  std::vector<double> times;

 private:
  std::atomic<std::int64_t> sent_{0};
  std::atomic<std::size_t> heard_{0};
};

class Listener : public qx::Object {
 public:
  explicit Listener(Sender& sender) : sender_(sender) {}
  void hear() {
    sender_.hear();
    release();  // every call leaves its target held
    if (sender_.isDone()) qx::RunLoop::currentRunLoop()->stop();
  }

 private:
  Sender& sender_;
};
void describe(qx::ClassBuilder<Listener>& c) {
  c.name("BenchListener").operation("hear", &Listener::hear);
}

void report(benchmark::State& state, std::vector<double>& times) {
  bench::require(times.size() == static_cast<std::size_t>(state.iterations()) * kWakeUps,
                 "wake-ups lost");
  std::sort(times.begin(), times.end());
  state.counters["median"] = times[times.size() / 2];
  state.counters["p99"] = times[times.size() * 99 / 100];
}

void runLoop(benchmark::State& state) {
  std::vector<double> all;
  for (auto _ : state) {
    Sender sender;
    const auto listener = qx::make<Listener>(sender);
    const auto message = qx::QXThreadMessage::init();
    std::thread thread([&] { sender.wakeAll([&] { message->sendMessageTo(listener, "hear"); }); });
    qx::RunLoop::currentRunLoop()->run();
    thread.join();
    all.insert(all.end(), sender.times.begin(), sender.times.end());
  }
  report(state, all);
}
BENCHMARK(runLoop)->Iterations(2);

void eventDescriptor(benchmark::State& state) {
  std::vector<double> all;
  for (auto _ : state) {
    Sender sender;
    const int event = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    const int set = ::epoll_create1(EPOLL_CLOEXEC);
    epoll_event watched{};
    watched.events = EPOLLIN | EPOLLET;
    bench::require(::epoll_ctl(set, EPOLL_CTL_ADD, event, &watched) == 0, "epoll_ctl");
    std::thread thread([&] {
      sender.wakeAll([&] {
        const std::uint64_t one = 1;
        bench::require(::write(event, &one, sizeof one) == sizeof one, "write");
      });
    });
    while (!sender.isDone()) {
      if (::epoll_wait(set, &watched, 1, -1) == 1) sender.hear();
    }
    thread.join();
    ::close(set);
    ::close(event);
    all.insert(all.end(), sender.times.begin(), sender.times.end());
  }
  report(state, all);
}
BENCHMARK(eventDescriptor)->Iterations(2);

}  // namespace
