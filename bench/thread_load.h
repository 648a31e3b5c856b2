#pragma once

// What the benchmarks of messages between threads share: senders that start at once, and a receiver
// that checks what arrives.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include <QXFoundation/QXFoundation.h>

#include "bench/values_support.h"

namespace bench {

constexpr long kMessages = 200000;  // of all senders, in one round

// Ends the round when all numbers have come, and knows whether each sender's came in order. What it
// writes stands in other lines of the cache than its count of references, which every sender
// changes: it is the way of a message that is measured here.
class alignas(128) Numbers : public qx::Object {
 public:
  Numbers(int senders, std::function<void()> finished)
      : last_(static_cast<std::size_t>(senders)),
        missing_(kMessages / senders * senders),
        finished_(std::move(finished)) {}
  void number(int sender, long n) {
    inOrder_ = inOrder_ && n == ++last_[static_cast<std::size_t>(sender)];
    if (--missing_ == 0) {
      end_ = std::chrono::steady_clock::now();
      finished_();
    }
  }
  bool isRight() const { return inOrder_ && missing_ == 0; }
  std::chrono::steady_clock::time_point end() const { return end_; }

 private:
  [[maybe_unused]] char apart_[64];
  std::vector<long> last_;
  long missing_;
  std::function<void()> finished_;
  bool inOrder_ = true;
  std::chrono::steady_clock::time_point end_;
};
inline void describe(qx::ClassBuilder<Numbers>& c) {
  c.name("BenchNumbers").operation("number:of:", &Numbers::number);
}

// Seconds of the rounds.
struct Times {
  double last = 0;     // by the clock, of the last one
  double total = 0;    // by the clock
  double least = 1e9;  // by the clock, of the fastest
  double used = 0;     // of the processor, by the receiving thread
  double sent = 0;     // of the processor, by the senders
};

// One round: `send(sender, n)` on each sender's thread, `receive()` on this one until the numbers
// have come. The time is that between the start of the senders and the last arrival, by the clock.
template <class Send, class Receive>
void messageRound(benchmark::State& state, const Numbers& numbers, const Send& send,
                  const Receive& receive, Times& times) {
  const int senders = static_cast<int>(state.range(0));
  std::atomic<bool> go{false};
  std::atomic<int> ready{0};
  std::vector<double> sent(static_cast<std::size_t>(senders));
  std::vector<std::thread> threads;
  for (int s = 0; s < senders; ++s) {
    threads.emplace_back([&, s] {
      ++ready;
      while (!go) std::this_thread::yield();
      const double before = qx::processorTime();
      for (long n = 1; n <= kMessages / senders; ++n) send(s, n);
      sent[static_cast<std::size_t>(s)] = qx::processorTime() - before;
    });
  }
  while (ready != senders) std::this_thread::yield();
  const auto start = std::chrono::steady_clock::now();
  go = true;
  const double used = qx::processorTime();
  receive();
  times.used += qx::processorTime() - used;
  for (std::thread& t : threads) t.join();
  require(numbers.isRight(), "messages lost or out of order");
  times.last = std::chrono::duration<double>(numbers.end() - start).count();
  times.total += times.last;
  times.least = std::min(times.least, times.last);
  for (const double s : sent) times.sent += s;
}

// One way of delivery: `make` gives, for a round, what to send and receive with; see its users.
template <class Round>
void deliver(benchmark::State& state) {
  const int senders = static_cast<int>(state.range(0));
  Times times;
  for (auto _ : state) {
    Round round(senders);
    messageRound(
        state, *round.numbers, [&](int sender, long n) { round.send(sender, n); },
        [&] { round.receive(); }, times);
    state.SetIterationTime(times.last);
  }
  const auto messages = static_cast<double>(state.iterations() * kMessages);
  state.counters["ns"] = 1e9 * times.total / messages;
  state.counters["least_ns"] = 1e9 * times.least / static_cast<double>(kMessages);
  state.counters["receiver_ns"] = 1e9 * times.used / messages;
  state.counters["sender_ns"] = 1e9 * times.sent / messages;
}

}  // namespace bench
