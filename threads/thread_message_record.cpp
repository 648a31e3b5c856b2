#include "threads/thread_message_record.h"

#include <atomic>
#include <cstddef>
#include <new>
#include <utility>

namespace qx::detail {

namespace {

// Records that are allocated together, one after the other by one thread, and given back one by one
// by any. With its own head and that of the allocator a sheet fills a page.
struct alignas(kCacheLine) Sheet {
  static constexpr std::uint32_t kPlaces = 62;

  std::atomic<std::uint32_t> due{kPlaces};  // places that were not given back yet
  Sheet* next = nullptr;                    // among the spare ones
  alignas(kCacheLine) unsigned char places[kPlaces][sizeof(ThreadMessageMemory)];

  static Sheet* of(const ThreadMessageMemory* memory) {
    auto* first = reinterpret_cast<const unsigned char*>(memory - memory->record.place);
    return reinterpret_cast<Sheet*>(const_cast<unsigned char*>(first) - offsetof(Sheet, places));
  }
  void giveBack(std::uint32_t count) noexcept;
};

// Sheets that were given back whole, for whoever needs the next one: some, so that a steady flow
// allocates nothing. Nobody waits for them: who finds another thread at them goes to the allocator.
class SpareSheets {
 public:
  Sheet* take() noexcept {
    Sheet* sheet = nullptr;
    if (!enter()) return nullptr;
    if (first_ != nullptr) {
      sheet = std::exchange(first_, first_->next);
      --count_;
    }
    leave();
    return sheet;
  }
  // False when there are enough.
  bool add(Sheet* sheet) noexcept {
    if (!enter()) return false;
    const bool wanted = count_ < kMost;
    if (wanted) {
      sheet->next = std::exchange(first_, sheet);
      ++count_;
    }
    leave();
    return wanted;
  }

 private:
  static constexpr std::size_t kMost = 256;  // a megabyte
  bool enter() noexcept { return !busy_.exchange(true, std::memory_order_acquire); }
  void leave() noexcept { busy_.store(false, std::memory_order_release); }

  std::atomic<bool> busy_{false};
  Sheet* first_ = nullptr;
  std::size_t count_ = 0;
};
constinit SpareSheets spareSheets;

void Sheet::giveBack(std::uint32_t count) noexcept {
  if (due.fetch_sub(count, std::memory_order_acq_rel) != count) return;
  if (!spareSheets.add(this)) delete this;
}

// The sheet that a thread takes records from. Plain variables, which can still be used while other
// variables of the thread are destroyed.
struct Current {
  Sheet* sheet;
  std::uint32_t used;
  bool ending;
};
__attribute__((tls_model("initial-exec"))) thread_local Current current{nullptr, Sheet::kPlaces,
                                                                        false};

// Gives back what the thread has not used.
struct Leave {
  ~Leave() {
    if (current.used != Sheet::kPlaces) current.sheet->giveBack(Sheet::kPlaces - current.used);
    current = {nullptr, Sheet::kPlaces, true};
  }
  void atEndOfThread() {}
};
thread_local Leave leave;

// False when there is no memory. While the thread ends each record has a sheet of its own.
[[gnu::noinline]] bool allocateThreadMessageSheet() noexcept {
  if (!current.ending) leave.atEndOfThread();
  Sheet* sheet = spareSheets.take();
  if (sheet == nullptr) sheet = new (std::nothrow) Sheet;
  if (sheet == nullptr) return false;
  const std::uint32_t places = current.ending ? 1 : Sheet::kPlaces;
  sheet->due.store(places, std::memory_order_relaxed);
  current.sheet = sheet;
  current.used = Sheet::kPlaces - places;
  return true;
}

}  // namespace

// A line is asked for early: the thread that its last record was sent to may have it.
ThreadMessageMemory* allocateThreadMessage() noexcept {
  if (current.used == Sheet::kPlaces && !allocateThreadMessageSheet()) return nullptr;
  const std::uint32_t at = current.used++;
  auto* memory = ::new (current.sheet->places[at]) ThreadMessageMemory;
  __builtin_prefetch(memory + 2, 1);
  memory->record.place = static_cast<std::uint16_t>(at);
  return memory;
}

void freeThreadMessage(ThreadMessageRecord* record) noexcept {
  const auto* memory = reinterpret_cast<const ThreadMessageMemory*>(
      reinterpret_cast<const unsigned char*>(record) - offsetof(ThreadMessageMemory, record));
  Sheet::of(memory)->giveBack(1);
}

}  // namespace qx::detail
