#include "qualifiers/program_run.h"

#include <algorithm>

#include "frame/array_storage.h"
#include "frame/dictionary_storage.h"
#include "qualifiers/tree_walk.h"
#include "qualifiers/value_kinds.h"

namespace qx::detail {
namespace {

using Step = Program::Step;

// Without a layout.
bool testAsItIs(const Step& step, const PropertyValue& object) {
  switch (step.node.kind) {
    case NodeKind::constantTest:
      return step.node.constantTest().evaluate(object);
    case NodeKind::keyPairTest:
      return step.node.keyPairTest().evaluate(object);
    case NodeKind::custom:
      return evaluateCustom(step.held, object);
    default:
      return evaluateTree(step.node, object);
  }
}

bool usesLayout(const Step& step) { return step.key != Program::kNoKey; }

// The value where the place is, with the rest of the path followed. `room` keeps what was made.
const PropertyValue& readSlot(const KeyPath& path, const Place& place, const Dictionary& dictionary,
                              PropertyValue& room) {
  if (place.way == Place::Way::absent) return kNil;
  const PropertyValue& first = DictionaryStorage::values(dictionary)[place.slot];
  return path.steps().size() == 1 ? first : path.readFrom(1, first, room);
}

bool testSlots(const Step& step, const Layout& layout, const Dictionary& dictionary) {
  PropertyValue room;
  if (step.test) {
    return step.test->decide(
        readSlot(step.test->test().path, layout.place(step.key), dictionary, room));
  }
  const KeyPairTest& pair = step.node.keyPairTest();
  const PropertyValue left = readSlot(pair.left, layout.place(step.key), dictionary, room);
  const PropertyValue right = pair.right.read(const_cast<Dictionary*>(&dictionary), room);
  return pair.decide(left, right);
}

bool testObject(const Step& step, const Layout& layout, Object& object) {
  if (!usesLayout(step) || layout.hasEvaluator() || !step.test) return testAsItIs(step, &object);
  const Place& place = layout.place(step.key);
  if (place.way == Place::Way::native && step.singleStep) {
    return step.test->decide(readField(*place.property, Subject::of(object)));
  }
  const PropertyValue held(&object);  // for as long as getters run
  PropertyValue room;
  return step.test->decide(step.test->test().path.read(held, room));
}

}  // namespace

template <class Source>
ProgramRun::Binding* ProgramRun::find(const Source& source) {
  for (const auto& binding : bindings_) {
    if (binding->layout.isOf(source)) return recent_ = binding.get();
  }
  return nullptr;
}

ProgramRun::Binding& ProgramRun::replaceOne() {
  if (bindings_.size() < kBindings) {
    recent_ = bindings_.emplace_back(std::make_unique<Binding>()).get();
  } else {
    recent_ = bindings_[replaced_].get();
    replaced_ = (replaced_ + 1) % kBindings;
  }
  return *recent_;
}

const ProgramRun::Binding& ProgramRun::bindingOf(const Shape& shape) {
  if (const Binding* known = find(shape)) return *known;
  Binding& binding = replaceOne();
  binding.layout.bind(program_.keys(), shape);
  binding.bound.bindToShape(program_, binding.layout);
  return binding;
}

const ProgramRun::Binding& ProgramRun::bindingOf(const Object& object) {
  const std::uint16_t index = ObjectAccess::classIndex(object);
  if (const Binding* known = find(index)) return *known;
  Binding& binding = replaceOne();
  binding.layout.bind(program_.keys(), index);
  binding.bound.bindToClass(program_, binding.layout, object);
  return binding;
}

// What a bound program leaves to others.
template <class Test>
struct ProgramRun::Unbound {
  ProgramRun& run;
  Test test;
  bool operator()(const Step& step) const {
    run.hold();
    return test(step);
  }
  void hold() const { run.hold(); }
};

void ProgramRun::hold() {
  if (held_ != nullptr) return;
  held_ = ArrayStorage::steady(*array_);
  values_ = held_->begin();
}

// Nothing that a test may run can change the dictionary.
inline bool ProgramRun::acceptsFixed(const Dictionary& dictionary, const Binding& binding) {
  const auto test = [&](const Step& step) {
    if (usesLayout(step)) return testSlots(step, binding.layout, dictionary);
    return testAsItIs(step, const_cast<Dictionary*>(&dictionary));
  };
  return binding.bound.run(DictionaryStorage::fixedValues(dictionary),
                           Unbound<decltype(test)>{*this, test});
}

inline bool ProgramRun::acceptsObject(Object& object) {
  const bool isRecent =
      recent_ != nullptr && recent_->layout.isOf(ObjectAccess::classIndex(object));
  const Binding& binding = isRecent ? *recent_ : bindingOf(object);
  const auto test = [&](const Step& step) { return testObject(step, binding.layout, object); };
  return binding.bound.run(&object, Unbound<decltype(test)>{*this, test});
}

bool ProgramRun::acceptsChanging(const Dictionary& dictionary, const PropertyValue& value) {
  const Shape& shape = DictionaryStorage::shape(dictionary);
  if (!shape.isShared()) return acceptsUnbound(value);
  const Binding& binding = bindingOf(shape);
  hold();
  return program_.run([&](const Step& step) {
    // A test before this one may have run code that changed the dictionary.
    const bool isBound =
        usesLayout(step) && binding.layout.isOf(DictionaryStorage::shape(dictionary));
    return isBound ? testSlots(step, binding.layout, dictionary) : testAsItIs(step, value);
  });
}

bool ProgramRun::acceptsUnbound(const PropertyValue& value) {
  const PropertyValue held = value;  // the place where it stands may go
  hold();
  return program_.run([&](const Step& step) { return testAsItIs(step, held); });
}

// Shapes of their own, of large dictionaries, are no layouts: each is of one dictionary alone.
inline bool ProgramRun::accepts(const PropertyValue& value) {
  Object* object = value.object();
  if (object == nullptr) return acceptsUnbound(value);
  const std::uint16_t index = ObjectAccess::classIndex(*object);
  if (index == dictionaryClass_) [[likely]] {
    const auto& dictionary = static_cast<const Dictionary&>(*object);
    const Shape& shape = DictionaryStorage::shape(dictionary);
    if (recent_ != nullptr && recent_->layout.isOf(shape)) [[likely]]
      return acceptsFixed(dictionary, *recent_);
    return shape.isShared() ? acceptsFixed(dictionary, bindingOf(shape)) : acceptsUnbound(value);
  }
  if (ObjectAccess::kind(*object) == ObjectKind::object) return acceptsObject(*object);
  if (index == dictionaryClasses().changing) {
    const PropertyValue held = value;
    return acceptsChanging(static_cast<const Dictionary&>(*object), held);
  }
  return acceptsUnbound(value);
}

// Asks for the memory of an element's strings that tests look into. Of an element with another
// layout nothing is known.
inline void ProgramRun::askForTexts(const PropertyValue& value) const {
  const Object* object = value.object();
  if (object == nullptr || ObjectAccess::classIndex(*object) != dictionaryClass_) return;
  const auto& dictionary = static_cast<const Dictionary&>(*object);
  if (!recent_->layout.isOf(DictionaryStorage::shape(dictionary))) return;
  for (const std::uint32_t slot : recent_->bound.textSlots()) {
    __builtin_prefetch(DictionaryStorage::fixedValues(dictionary)[slot].object());
  }
}

// The memory of elements is asked for this far ahead, that of their strings nearer, when the
// elements are there.
inline void ProgramRun::askAhead(std::size_t at, std::size_t count) const {
  constexpr std::size_t kElements = 16;
  constexpr std::size_t kTexts = 6;
  if (at + kElements >= count) return;
  __builtin_prefetch(values_[at + kElements].object());
  if (recent_ != nullptr && !recent_->bound.textSlots().empty()) askForTexts(values_[at + kTexts]);
}

void ProgramRun::select(const Array& array, MutableArray& hits) {
  constexpr std::size_t kBlock = 256;
  std::uint32_t picks[kBlock];
  array_ = &array;
  values_ = array.begin();
  const std::size_t count = array.count();
  for (std::size_t start = 0; start < count; start += kBlock) {
    const std::size_t end = std::min(start + kBlock, count);
    std::size_t picked = 0;
    for (std::size_t i = start; i < end; ++i) {
      askAhead(i, count);
      // Written always, kept when accepted: the outcome is no jump to predict.
      picks[picked] = static_cast<std::uint32_t>(i - start);
      picked += accepts(values_[i]) ? 1 : 0;
    }
    ArrayStorage::addPicked(hits, values_ + start, picks, picked);
  }
  held_ = nullptr;
}

ClassProgram::ClassProgram(const QXQualifier& qualifier, const Class& cls)
    : qualifier_(&qualifier), classIndex_(classIndexOf(cls)), program_(qualifier) {
  layout_.bind(program_.keys(), classIndex_);
}

bool ClassProgram::accepts(const Object& object) const {
  auto& subject = const_cast<Object&>(object);
  if (ObjectAccess::classIndex(object) != classIndex_ ||
      ObjectAccess::kind(object) != ObjectKind::object) {
    return qualifier_->evaluateWithObject(&subject);
  }
  return program_.run([&](const Step& step) { return testObject(step, layout_, subject); });
}

}  // namespace qx::detail
