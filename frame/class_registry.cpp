#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include <QXFoundation/class.h>

#include "frame/class_record.h"
#include "frame/composition.h"
#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx::detail {
namespace {

// An object's header keeps 16 bits of its class.
constexpr std::size_t kChunk = 256;
constexpr std::size_t kMaxClasses = kChunk * kChunk;
using Chunk = std::array<std::atomic<const Class*>, kChunk>;

struct ConcreteClass final : Class {
  explicit ConcreteClass(const ClassRecord* record) : Class(record) {}
  void create_me_with_qx_make() const override {}
};

// The classes of the process. Never destroyed. Reading by index takes no lock.
struct Registry {
  std::array<std::atomic<Chunk*>, kChunk> chunks{};
  std::mutex mutex;  // for what follows
  std::unordered_map<std::string_view, const Class*> byType;
  std::unordered_map<std::string_view, const Class*> byName;
  std::uint16_t next = kFirstFreeIndex;

  static constexpr std::uint16_t kRootIndex = 0;
  static constexpr std::uint16_t kClassIndex = 1;
  static constexpr std::uint16_t kFirstFreeIndex = 2;

  void publish(std::uint16_t index, const Class* c) {
    std::atomic<Chunk*>& chunk = chunks[index / kChunk];
    if (chunk.load(std::memory_order_relaxed) == nullptr)
      chunk.store(new Chunk{}, std::memory_order_release);
    (*chunk.load(std::memory_order_relaxed))[index % kChunk].store(c, std::memory_order_release);
  }
  const Class* at(std::uint16_t index) const {
    const Chunk* chunk = chunks[index / kChunk].load(std::memory_order_acquire);
    return chunk == nullptr ? nullptr : (*chunk)[index % kChunk].load(std::memory_order_acquire);
  }
};

Registry& registry() {
  static auto* r = new Registry;
  return *r;
}

// The two classes that objects name before any class is built have fixed numbers.
std::uint16_t indexFor(Registry& r, const char* typeName) {
  if (std::strcmp(typeName, typeid(Object).name()) == 0) return Registry::kRootIndex;
  if (std::strcmp(typeName, typeid(Class).name()) == 0) return Registry::kClassIndex;
  if (r.next == kMaxClasses - 1)
    raiseInvalidArgument("more classes are described than an object's header can name");
  return r.next++;
}

const Class* findByType(Registry& r, const char* typeName) {
  const std::scoped_lock lock(r.mutex);
  const auto found = r.byType.find(typeName);
  return found == r.byType.end() ? nullptr : found->second;
}

}  // namespace

// A description runs outside the lock, as it asks for other classes; of two threads that describe
// one class at the same time, one's record is dropped.
const Class& findOrBuildClass(const char* typeName, void (*build)(ClassRecord&)) {
  Registry& r = registry();
  if (const Class* c = findByType(r, typeName)) return *c;
  auto record = std::make_unique<ClassRecord>();
  build(*record);
  record->seal();
  const std::scoped_lock lock(r.mutex);
  if (const auto found = r.byType.find(typeName); found != r.byType.end()) return *found->second;
  record->index = indexFor(r, typeName);
  auto* c = new ConcreteClass(record.get());
  ObjectAccess::setClass(*c, Registry::kClassIndex, 0);
  record->object = c;
  r.byType.emplace(typeName, c);
  if (*record->name != '\0') r.byName.emplace(record->name, c);
  r.publish(record->index, c);
  record.release();  // the class keeps it, for ever
  return *c;
}

const Class& classAtIndex(std::uint16_t index) {
  if (const Class* c = registry().at(index)) [[likely]]
    return *c;
  return index == Registry::kClassIndex ? classOf<Class>() : classOf<Object>();
}

std::uint16_t classIndexOf(const Class& cls) { return cls.record().index; }

}  // namespace qx::detail

namespace qx {

const Class* classNamed(StringArg name) {
  const std::string text = name.utf8();
  {
    detail::Registry& r = detail::registry();
    const std::scoped_lock lock(r.mutex);
    const auto found = r.byName.find(text);
    if (found != r.byName.end()) return found->second;
  }
  for (const detail::NamedClass& c : detail::libraryClasses()) {
    if (c.name == text) return &c.get();
  }
  return nullptr;
}

}  // namespace qx
