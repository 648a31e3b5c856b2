#include <cxxabi.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string_view>
#include <typeinfo>
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

// A C++ type. Types of unnamed namespaces and static functions may share their name with one of
// another translation unit, which std::type_index does not tell on every compiler.
struct TypeKey {
  const std::type_info* type;

  TypeKey(const std::type_info& t) : type(&t) {}
  bool isLocal() const {
    const std::string_view name = type->name();
    return name.find("_GLOBAL__N_") != name.npos || name.starts_with("ZL");
  }
  friend bool operator==(const TypeKey& a, const TypeKey& b) {
    return a.type == b.type || (*a.type == *b.type && !a.isLocal());
  }
};
struct TypeHash {
  std::size_t operator()(const TypeKey& key) const { return key.type->hash_code(); }
};

// The classes of the process. Never destroyed. Reading by index takes no lock.
struct Registry {
  std::array<std::atomic<Chunk*>, kChunk> chunks{};
  std::mutex mutex;  // for what follows
  std::unordered_map<TypeKey, const Class*, TypeHash> byType;
  std::unordered_map<std::string_view, const Class*> byName;
  std::uint16_t next = kFirstDescribedClass;

  static constexpr std::uint16_t kRootIndex = 0;
  static constexpr std::uint16_t kClassIndex = 1;

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
std::uint16_t indexFor(Registry& r, TypeKey type) {
  if (type == TypeKey(typeid(Object))) return Registry::kRootIndex;
  if (type == TypeKey(typeid(Class))) return Registry::kClassIndex;
  if (r.next == kMaxClasses - 1)
    raiseInvalidArgument("more classes are described than an object's header can name");
  return r.next++;
}

const Class* findByType(Registry& r, TypeKey type) {
  const std::scoped_lock lock(r.mutex);
  const auto found = r.byType.find(type);
  return found == r.byType.end() ? nullptr : found->second;
}

const NamedClass* libraryClassNamed(std::string_view name) {
  const auto all = libraryClasses();
  const auto at =
      std::find_if(all.begin(), all.end(), [&](const auto& c) { return c.name == name; });
  return at == all.end() ? nullptr : &*at;
}

// What a class without a name is called in texts: its C++ name.
void showTypeName(ClassRecord& record, const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> readable(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  record.shownName = readable == nullptr ? type.name() : readable.get();
  record.name = record.shownName.c_str();
}

// Under the lock. The names of the library's classes are theirs alone; of two classes of one name
// the first has it.
void enter(Registry& r, TypeKey type, const ClassRecord& record, const Class* c) {
  r.publish(record.index, c);
  const auto typed = r.byType.emplace(type, c).first;
  if (!record.shownName.empty()) return;
  if (!record.ofLibrary && libraryClassNamed(record.name) != nullptr) return;
  try {
    r.byName.emplace(record.name, c);
  } catch (...) {
    r.byType.erase(typed);
    throw;
  }
}

}  // namespace

// A description runs outside the lock, as it asks for other classes; of two threads that describe
// one class at the same time, one's record is dropped.
const Class& findOrBuildClass(const std::type_info& type, void (*build)(ClassRecord&)) {
  Registry& r = registry();
  if (const Class* c = findByType(r, type)) return *c;
  auto record = std::make_unique<ClassRecord>();
  build(*record);
  if (*record->name == '\0') showTypeName(*record, type);
  record->seal();
  const std::scoped_lock lock(r.mutex);
  if (const auto found = r.byType.find(type); found != r.byType.end()) return *found->second;
  auto c = std::make_unique<ConcreteClass>(record.get());
  record->index = indexFor(r, type);
  record->object = c.get();
  ObjectAccess::setClass(*c, Registry::kClassIndex, 0);
  enter(r, type, *record, c.get());
  record.release();  // the class keeps it, and both stay for ever
  return *c.release();
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
  const detail::NamedClass* c = detail::libraryClassNamed(text);
  return c == nullptr ? nullptr : &c->get();
}

}  // namespace qx
