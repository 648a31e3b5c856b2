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
  const Binding& binding = bindings_.of(object);
  const auto test = [&](const Step& step) { return testObject(step, binding.layout, object); };
  return binding.bound.run(&object, Unbound<decltype(test)>{*this, test});
}

bool ProgramRun::acceptsChanging(const Dictionary& dictionary, const PropertyValue& value) {
  const Shape& shape = DictionaryStorage::shape(dictionary);
  if (!shape.isShared()) return acceptsUnbound(value);
  const Binding& binding = bindings_.of(shape);
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
    return shape.isShared() ? acceptsFixed(dictionary, bindings_.of(shape)) : acceptsUnbound(value);
  }
  if (ObjectAccess::kind(*object) == ObjectKind::object) return acceptsObject(*object);
  if (index == dictionaryClasses().changing) {
    const PropertyValue held = value;
    return acceptsChanging(static_cast<const Dictionary&>(*object), held);
  }
  return acceptsUnbound(value);
}

// The elements before `last`, the memory of some of which is asked for ahead. What the block is
// filled with may not be taken for what this reads.
struct ProgramRun::Elements {
  const PropertyValue* values;
  std::size_t last;

  Object* at(std::size_t i) const {
    constexpr std::size_t kAhead = 48;
    __builtin_prefetch(values[std::min(i + kAhead, last)].object());
    return values[i].object();
  }
};

// Fewer elements than these are not worth the block's own work.
constexpr std::size_t kWorthwhile = 8;

std::size_t ProgramRun::decideBlock(std::size_t start, std::size_t end) {
  const Object* first = values_[start].object();
  if (first == nullptr || end - start < kWorthwhile) return 0;
  if (ObjectAccess::classIndex(*first) == dictionaryClass_) return decideDictionaries(start, end);
  return ObjectAccess::kind(*first) == ObjectKind::object ? decideObjects(start, end) : 0;
}

std::size_t ProgramRun::decideDictionaries(std::size_t start, std::size_t end) {
  if (!bindings_.words().suitsBlocks()) return 0;
  const Shape* const shape =
      &DictionaryStorage::shape(static_cast<const Dictionary&>(*values_[start].object()));
  const std::size_t layout = shape->isShared() ? bindings_.numberOf(*shape) : Bindings::kNone;
  if (layout == Bindings::kNone) return 0;
  const Elements elements{values_ + start, count_ - start - 1};
  const std::uint16_t dictionaryClass = dictionaryClass_;
  const void** const bases = block_.bases();
  const std::uint32_t texts = block_.mostTexts();
  const std::size_t slots = shape->slots();
  std::size_t same = 0;
  for (; same < end - start; ++same) {
    const Object* object = elements.at(same);
    if (object == nullptr || ObjectAccess::classIndex(*object) != dictionaryClass) break;
    const auto& dictionary = static_cast<const Dictionary&>(*object);
    if (&DictionaryStorage::shape(dictionary) != shape) break;
    const PropertyValue* const values = DictionaryStorage::fixedValues(dictionary);
    bases[same] = values;
    if (texts < slots) __builtin_prefetch(values[texts].object());
  }
  std::size_t count = same;
  std::size_t layoutOfAll = layout;
  if (same < end - start) {
    std::fill_n(block_.layouts(), same, static_cast<BlockRun::Index>(layout));
    count = gatherMixed(start, same, end);
    if (count != same) layoutOfAll = BlockRun::kLayoutOfEach;
  }
  if (count < kWorthwhile) return 0;
  return block_.decideDictionaries(bindings_.words(), bindings_.places(), layoutOfAll, count);
}

// Goes on from the element `from` of the block.
std::size_t ProgramRun::gatherMixed(std::size_t start, std::size_t from, std::size_t end) {
  const Elements elements{values_ + start, count_ - start - 1};
  std::size_t i = from;
  for (; i < end - start; ++i) {
    const Object* object = elements.at(i);
    if (object == nullptr || ObjectAccess::classIndex(*object) != dictionaryClass_) break;
    const auto& dictionary = static_cast<const Dictionary&>(*object);
    const Shape& shape = DictionaryStorage::shape(dictionary);
    const std::size_t layout = shape.isShared() ? bindings_.numberOf(shape) : Bindings::kNone;
    if (layout == Bindings::kNone) break;
    block_.bases()[i] = DictionaryStorage::fixedValues(dictionary);
    block_.layouts()[i] = static_cast<BlockRun::Index>(layout);
  }
  return i;
}

std::size_t ProgramRun::decideObjects(std::size_t start, std::size_t end) {
  const Object& first = *values_[start].object();
  const BoundProgram& bound = bindings_.of(first).bound;
  if (!bound.suitsBlocks()) return 0;
  const Elements elements{values_ + start, count_ - start - 1};
  const std::uint16_t classIndex = ObjectAccess::classIndex(first);
  const void** const bases = block_.bases();
  std::size_t i = 0;
  for (; i < end - start; ++i) {
    const Object* object = elements.at(i);
    if (object == nullptr || ObjectAccess::classIndex(*object) != classIndex) break;
    bases[i] = object;
  }
  return i < kWorthwhile ? 0 : block_.decideObjects(bound, i);
}

std::size_t ProgramRun::selectBlock(std::size_t start, std::size_t end, MutableArray& hits) {
  const std::size_t decided = decideBlock(start, end);
  if (decided == 0) return 0;
  const auto accepted = block_.accepted();
  ArrayStorage::addPicked(hits, values_ + start, accepted.data(), accepted.size());
  return decided;
}

void ProgramRun::selectOneByOne(std::size_t start, std::size_t end, MutableArray& hits) {
  BlockRun::Index picks[BlockRun::kSize];
  std::size_t picked = 0;
  for (std::size_t i = start; i < end; ++i) {
    picks[picked] = static_cast<BlockRun::Index>(i - start);
    picked += accepts(values_[i]) ? 1 : 0;
  }
  ArrayStorage::addPicked(hits, values_ + start, picks, picked);
}

void ProgramRun::select(const Array& array, MutableArray& hits) {
  array_ = &array;
  values_ = array.begin();
  count_ = array.count();
  for (std::size_t start = 0; start < count_; start += BlockRun::kSize) {
    const std::size_t end = std::min(start + BlockRun::kSize, count_);
    const std::size_t decided = selectBlock(start, end, hits);
    selectOneByOne(start + decided, end, hits);
  }
  held_ = nullptr;
}

void FirstBinding::bind(const Program& program, const Layout& layout,
                        const Subject& subject) const {
  const std::lock_guard lock(mutex_);
  if (isBound_.load(std::memory_order_relaxed)) return;
  bound_.bindToClass(program, layout, subject);
  isBound_.store(true, std::memory_order_release);
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
  const auto test = [&](const Step& step) { return testObject(step, layout_, subject); };
  return binding_.of(program_, layout_, Subject::of(object)).run(&object, WithoutHolding{test});
}

}  // namespace qx::detail
