// The debug switches of the command line.

#include <atomic>
#include <string_view>

#include <QXFoundation/diagnostics.h>

#include "frame/class_record.h"
#include "frame/diagnostic_operations.h"

namespace qx {
namespace detail {
namespace {

constexpr std::string_view kPrefix = "--QXDebug=";

// What the process keeps from the first call on; the objects are never released.
std::atomic<MutableSet*> processSet{nullptr};
// The set's `member:`, looked up once.
std::atomic<const Operation*> memberTest{nullptr};

// Of several first callers one set stays.
MutableSet& keep(Ref<MutableSet> built) {
  MutableSet* first = nullptr;
  if (processSet.compare_exchange_strong(first, built.get(), std::memory_order_acq_rel)) {
    return *built.leak();
  }
  return *first;
}

}  // namespace

Ref<MutableSet> collectDebugSwitches(const ProcessInfo& info) {
  const std::size_t count = info.arguments()->count();
  auto names = MutableSet::init();
  // Asked before the first name is added, and deliberately without use for the answer: an empty
  // set has no empty name, and stays empty.
  (void)names->member("");
  for (std::size_t i = 0; i < count; ++i) {
    const Ref<String> argument = info.arguments()->objectAtIndex(i).as<String>();
    if (argument->hasPrefix(kPrefix)) {
      names->addObject(argument->substringFromIndex(kPrefix.size()));
    }
  }
  return names;
}

void addDebugSetOperation(ClassBuilderBase& builder) {
  builder.addFunction(
      "debugSet", +[](const PropertyValue& info) { return debugSet(info.as<ProcessInfo>()); });
}

}  // namespace detail

Ref<MutableSet> debugSet(In<ProcessInfo> processInfo) {
  if (!processInfo) return nullptr;
  if (MutableSet* known = detail::processSet.load(std::memory_order_acquire)) return known;
  return &detail::keep(detail::collectDebugSwitches(*processInfo));
}

bool QXDebugSet(StringArg name) {
  const detail::Operation* member = detail::memberTest.load(std::memory_order_acquire);
  if (member == nullptr) {
    const Ref<MutableSet> set = debugSet(ProcessInfo::processInfo());
    member = set->cls().record().findOperation("member:");
    detail::memberTest.store(member, std::memory_order_release);
  }
  const PropertyValue argument = name;
  const PropertyValue set = detail::processSet.load(std::memory_order_acquire);
  return !name.isNil() && !member->call(set, member->payload, &argument).isNil();
}

}  // namespace qx
