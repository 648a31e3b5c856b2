// Map, filter, reduce, flat-map, contains and for-each over arrays, with any callable.
//
//     auto names = qxMap(people, [](const qx::PropertyValue& p) { return p["name"]; });
//     auto adults = qxFilter(people, [](const auto& p) { return p["age"].intValue() >= 18; });
//     auto texts = qxFilter(mixed, isLong, qx::classOf<qx::String>());      // of strings alone
//     auto first3 = qxMap(people, [](const auto& p, std::size_t index, bool& stop) {
//       stop = index == 2;
//       return p["name"];
//     });
//
// Every operation walks the array once, front to back, and gives a new immutable array in that
// order. A block takes the element, or, in the forms without a class, the element, its index and a
// flag by which it ends the walk after this element. A class form works on the elements whose class
// is `cls` or one below it, and skips the others.
//
// The walk goes over what the array held at its start, whatever the block does to it. Exceptions of
// the block pass through. A nil array gives nil or false and calls nothing. Blocks are called on
// the calling thread and are not kept.
#pragma once

#include <concepts>
#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

#include <QXFoundation/array.h>
#include <QXFoundation/class.h>
#include <QXFoundation/property_value.h>

namespace qx {

// The arrays that the transform of qxFlatMap returns may lie within each other this deep; beyond,
// it raises InvalidArgumentException. A transform that answers its own results with arrays for ever
// ends there.
inline constexpr std::size_t kMaxFlatMapDepth = 2'000'000;

namespace detail {

template <class F, class... Leading>
concept PlainBlock = std::invocable<F&, const Leading&..., const PropertyValue&>;
template <class F, class... Leading>
concept IndexedBlock =
    std::invocable<F&, const Leading&..., const PropertyValue&, std::size_t, bool&>;
template <class F, class... Leading>
concept Block = PlainBlock<F, Leading...> || IndexedBlock<F, Leading...>;

template <class F>
  requires Block<F>
decltype(auto) callBlock(F& f, const PropertyValue& element, std::size_t index, bool& stop) {
  if constexpr (PlainBlock<F>) {
    return f(element);
  } else {
    return f(element, index, stop);
  }
}
template <class F>
  requires Block<F, PropertyValue>
decltype(auto) callBlock(F& f, const PropertyValue& value, const PropertyValue& element,
                         std::size_t index, bool& stop) {
  if constexpr (PlainBlock<F, PropertyValue>) {
    return f(value, element);
  } else {
    return f(value, element, index, stop);
  }
}

template <class F>
using BlockResult =
    std::remove_cvref_t<decltype(callBlock(std::declval<F&>(), std::declval<const PropertyValue&>(),
                                           std::size_t{}, std::declval<bool&>()))>;
template <class F>
using ReducerResult = std::remove_cvref_t<decltype(callBlock(
    std::declval<F&>(), std::declval<const PropertyValue&>(), std::declval<const PropertyValue&>(),
    std::size_t{}, std::declval<bool&>()))>;

// What the operations take. Nil is a result like any other.
template <class F>
concept Transform = Block<F> && std::convertible_to<BlockResult<F>, PropertyValue>;
template <class F>
concept Predicate = Block<F> && std::integral<BlockResult<F>>;
template <class F>
concept Reducer = Block<F, PropertyValue> && std::convertible_to<ReducerResult<F>, PropertyValue>;

// Only exactly 1 is yes: a predicate may come from code that answers in bytes.
template <std::integral R>
constexpr bool isYes(R answer) {
  if constexpr (std::same_as<R, bool>) {
    return answer;
  } else {
    return answer == R{1};
  }
}

// The elements of an array that is being made.
class QX_EXPORT ArrayGatherer {
 public:
  // `expected` elements need no more memory.
  explicit ArrayGatherer(std::size_t expected);
  ArrayGatherer(const ArrayGatherer&) = delete;
  ArrayGatherer& operator=(const ArrayGatherer&) = delete;
  ~ArrayGatherer();

  // Nil raises InvalidArgumentException.
  void add(PropertyValue value) {
    if (value.isNil()) [[unlikely]]
      refuseNil();
    if (count_ == capacity_) [[unlikely]]
      grow(count_ + 1);
    ::new (static_cast<void*>(values_ + count_)) PropertyValue(std::move(value));
    ++count_;
  }
  // Adds the values that stand at these places, none of which is nil.
  void addPicked(const PropertyValue* const* places, std::size_t count);
  // The immutable array; the gatherer is empty afterwards.
  Ref<Array> array();

 private:
  [[noreturn]] static void refuseNil();
  void grow(std::size_t least);
  Ref<Array> room_;  // behind which the values are put; it does not count them before the end
  PropertyValue* values_ = nullptr;
  std::size_t count_ = 0;
  std::size_t capacity_ = 0;
};

// What the array holds now, unchangeable; the array itself where it is immutable.
QX_EXPORT Ref<Array> steadyArray(const Array& array);

// Calls visit(element, index, stop) until the end, or until `stop` is true.
template <class Visit>
void enumerate(const Array& array, Visit&& visit) {
  const Ref<Array> held = steadyArray(array);
  const PropertyValue* values = held->begin();
  const std::size_t count = held->count();
  bool stop = false;
  for (std::size_t i = 0; i < count && !stop; ++i) visit(values[i], i, stop);
}

// The elements that a predicate takes. Their places are written down without a jump, whether they
// are taken or not, as such jumps can not be foreseen; what is taken is retained afterwards.
template <class F>
Ref<Array> pick(const Array& array, F& predicate) {
  constexpr std::size_t kAtOnce = 128;
  const Ref<Array> held = steadyArray(array);
  const PropertyValue* values = held->begin();
  const std::size_t count = held->count();
  ArrayGatherer result(0);
  bool stop = false;
  for (std::size_t i = 0; i < count && !stop;) {
    const PropertyValue* places[kAtOnce];
    std::size_t picked = 0;
    for (const std::size_t end = count - i < kAtOnce ? count : i + kAtOnce; i < end && !stop; ++i) {
      places[picked] = values + i;
      picked += static_cast<std::size_t>(isYes(callBlock(predicate, values[i], i, stop)));
    }
    result.addPicked(places, picked);
  }
  return result.array();
}

// Calls visit(element) for the elements of a class until it gives false.
template <class Visit>
void enumerate(const Array& array, const Class& cls, Visit&& visit) {
  const Ref<Array> held = steadyArray(array);
  for (const PropertyValue& element : *held) {
    if (element.isKindOfClass(cls) && !visit(element)) return;
  }
}

// A walk through arrays within arrays, one level at a time.
class QX_EXPORT ArrayDescent {
 public:
  explicit ArrayDescent(const Array& array);
  ArrayDescent(const ArrayDescent&) = delete;
  ArrayDescent& operator=(const ArrayDescent&) = delete;
  ~ArrayDescent();

  // Goes on to the next element; false when the outermost array is at its end.
  bool next() {
    while (stop_ || next_ == count_) {
      if (!leave()) return false;
    }
    ++next_;
    return true;
  }
  const PropertyValue& element() const { return values_[next_ - 1]; }
  std::size_t index() const { return next_ - 1; }
  // Ends the level of the current element, and no other.
  bool& stop() { return stop_; }
  // The next element is the first of `inner`; what follows in the current array comes after it.
  void enter(const Array& inner);

 private:
  struct Levels;
  bool leave();
  void start(Ref<Array> array, std::size_t next, bool stop);
  Ref<Array> array_;
  const PropertyValue* values_ = nullptr;
  std::size_t next_ = 0;
  std::size_t count_ = 0;
  bool stop_ = false;
  Levels* outer_ = nullptr;
};

template <class F, class Keep>
Ref<Array> flatMap(const Array& array, F& transform, Keep&& keep) {
  ArrayGatherer result(array.count());
  ArrayDescent walk(array);
  while (walk.next()) {
    PropertyValue r = callBlock(transform, walk.element(), walk.index(), walk.stop());
    if (r.isArray()) {
      walk.enter(static_cast<const Array&>(*r.object()));
    } else if (keep(r)) {
      result.add(std::move(r));
    }
  }
  return result.array();
}

}  // namespace detail

// transform(e) for every element e. A transform that gives nil raises InvalidArgumentException.
template <detail::Transform F>
[[nodiscard]] Ref<Array> qxMap(In<Array> array, F&& transform) {
  if (!array) return nullptr;
  detail::ArrayGatherer result(array->count());
  detail::enumerate(*array, [&](const PropertyValue& e, std::size_t index, bool& stop) {
    result.add(detail::callBlock(transform, e, index, stop));
  });
  return result.array();
}
template <detail::Transform F>
  requires detail::PlainBlock<F>
[[nodiscard]] Ref<Array> qxMap(In<Array> array, F&& transform, const Class& cls) {
  if (!array) return nullptr;
  detail::ArrayGatherer result(0);
  detail::enumerate(*array, cls, [&](const PropertyValue& e) {
    result.add(transform(e));
    return true;
  });
  return result.array();
}

// The elements for which the predicate is true. A predicate gives a bool, or a byte or other
// integer, of which 1 alone is true.
template <detail::Predicate F>
[[nodiscard]] Ref<Array> qxFilter(In<Array> array, F&& predicate) {
  if (!array) return nullptr;
  return detail::pick(*array, predicate);
}
template <detail::Predicate F>
  requires detail::PlainBlock<F>
[[nodiscard]] Ref<Array> qxFilter(In<Array> array, F&& predicate, const Class& cls) {
  if (!array) return nullptr;
  detail::ArrayGatherer result(0);
  detail::enumerate(*array, cls, [&](const PropertyValue& e) {
    if (detail::isYes(predicate(e))) result.add(e);
    return true;
  });
  return result.array();
}

// The value that starts as `initial` and becomes block(value, e) for each element in turn. Nil for
// a nil array.
template <detail::Reducer F>
[[nodiscard]] PropertyValue qxReduce(In<Array> array, PropertyValue initial, F&& block) {
  if (!array) return {};
  PropertyValue value = std::move(initial);
  detail::enumerate(*array, [&](const PropertyValue& e, std::size_t index, bool& stop) {
    value = detail::callBlock(block, value, e, index, stop);
  });
  return value;
}
// A step is taken only when both the value so far and the element are of the class: with an initial
// value of another class, that value is the result.
template <detail::Reducer F>
  requires detail::PlainBlock<F, PropertyValue>
[[nodiscard]] PropertyValue qxReduce(In<Array> array, PropertyValue initial, F&& block,
                                     const Class& cls) {
  if (!array) return {};
  PropertyValue value = std::move(initial);
  detail::enumerate(*array, cls, [&](const PropertyValue& e) {
    if (!value.isKindOfClass(cls)) return false;
    value = block(value, e);
    return true;
  });
  return value;
}

// transform(e) for every element e, where nil adds nothing, and of an array that it gives the
// elements are transformed again, before they are added: [1, [2, 3]] and a transform that gives
// what it gets make [1, 2, 3]. Index and flag are those of the array that the element stands in.
template <detail::Transform F>
[[nodiscard]] Ref<Array> qxFlatMap(In<Array> array, F&& transform) {
  if (!array) return nullptr;
  return detail::flatMap(*array, transform, [](const PropertyValue& r) { return !r.isNil(); });
}
// Here the class tests what the transform gives, not what it gets: every element is transformed,
// and of the results that are no arrays those of the class are kept.
template <detail::Transform F>
  requires detail::PlainBlock<F>
[[nodiscard]] Ref<Array> qxFlatMap(In<Array> array, F&& transform, const Class& cls) {
  if (!array) return nullptr;
  return detail::flatMap(*array, transform,
                         [&](const PropertyValue& r) { return r.isKindOfClass(cls); });
}

// Whether the predicate is true for some element; it is not called after that.
template <detail::Predicate F>
[[nodiscard]] bool qxContains(In<Array> array, F&& predicate) {
  if (!array) return false;
  bool found = false;
  detail::enumerate(*array, [&](const PropertyValue& e, std::size_t index, bool& stop) {
    found = detail::isYes(detail::callBlock(predicate, e, index, stop));
    stop = stop || found;
  });
  return found;
}
template <detail::Predicate F>
  requires detail::PlainBlock<F>
[[nodiscard]] bool qxContains(In<Array> array, F&& predicate, const Class& cls) {
  if (!array) return false;
  bool found = false;
  detail::enumerate(*array, cls, [&](const PropertyValue& e) {
    found = detail::isYes(predicate(e));
    return !found;
  });
  return found;
}

// Calls action(e) for every element.
template <detail::Block F>
void qxForEach(In<Array> array, F&& action) {
  if (!array) return;
  detail::enumerate(*array, [&](const PropertyValue& e, std::size_t index, bool& stop) {
    static_cast<void>(detail::callBlock(action, e, index, stop));
  });
}
template <detail::PlainBlock F>
void qxForEach(In<Array> array, F&& action, const Class& cls) {
  if (!array) return;
  detail::enumerate(*array, cls, [&](const PropertyValue& e) {
    static_cast<void>(action(e));
    return true;
  });
}

}  // namespace qx
