#pragma once

// Objects with every kind of equality, and random arrays with many equal elements.

#include <algorithm>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace qx {

inline void PrintTo(const PropertyValue& v, std::ostream* out) {
  *out << (v.isNil() ? "nil" : v.description());
}

}  // namespace qx

namespace samples {

// Equal by name; its hash is the object's address, as its class forgot to override it.
class Tag : public qx::Object {
 public:
  explicit Tag(std::string n) : name(std::move(n)) {}
  bool isEqual(const qx::PropertyValue& other) const override {
    const auto* tag = other.peek<Tag>();
    return tag != nullptr && tag->name == name;
  }
  const std::string name;
};
inline void describe(qx::ClassBuilder<Tag>& c) { c.name("SampleTag").property("name", &Tag::name); }

// Equal by name, with the hash that goes with it.
class Label : public qx::Object {
 public:
  explicit Label(std::string n) : name(std::move(n)) {}
  bool isEqual(const qx::PropertyValue& other) const override {
    const auto* label = other.peek<Label>();
    return label != nullptr && label->name == name;
  }
  std::size_t hash() const override { return qx::PropertyValue(name).hash(); }
  const std::string name;
};
inline void describe(qx::ClassBuilder<Label>& c) {
  c.name("SampleLabel").property("name", &Label::name);
}

// Equal to every label that begins like it; the hash is that of labels, and says less.
class Initial : public Label {
 public:
  using Label::Label;
  bool isEqual(const qx::PropertyValue& other) const override {
    const auto* label = other.peek<Label>();
    return label != nullptr && label->name[0] == name[0];
  }
};
inline void describe(qx::ClassBuilder<Initial>& c) { c.name("SampleInitial").inherits<Label>(); }

// Only itself, though its hash is that of another one.
class Crowded : public qx::Object {
 public:
  std::size_t hash() const override { return 7; }
};
inline void describe(qx::ClassBuilder<Crowded>& c) { c.name("SampleCrowded"); }

// Equal to every array of as many elements.
class SizedArray : public qx::MutableArray {
 public:
  bool isEqual(const qx::PropertyValue& other) const override {
    return other.isArray() && other.as<qx::Array>()->count() == count();
  }
};
inline void describe(qx::ClassBuilder<SizedArray>& c) {
  c.name("SampleSizedArray").inherits<qx::MutableArray>();
}
inline qx::Ref<SizedArray> sizedArray(int count) {
  auto a = qx::make<SizedArray>();
  for (int i = 0; i < count; ++i) a->addObject(i);
  return a;
}

// Equal to every string of its text, which is not equal to it.
class Pattern : public qx::Object {
 public:
  explicit Pattern(std::string t) : text(std::move(t)) {}
  bool isEqual(const qx::PropertyValue& other) const override {
    return other.object() == this || (other.isString() && other == text);
  }
  const std::string text;
};
inline void describe(qx::ClassBuilder<Pattern>& c) { c.name("SamplePattern"); }

// Only itself.
class Thing : public qx::Object {};
inline void describe(qx::ClassBuilder<Thing>& c) { c.name("SampleThing"); }

using Values = std::vector<qx::PropertyValue>;

inline qx::Ref<qx::Array> arrayOf(const Values& values) {
  return qx::Array::from(values.data(), values.size());
}
inline qx::Ref<qx::MutableArray> mutableArrayOf(const Values& values) {
  return qx::MutableArray::from(values.data(), values.size());
}

// The definition of containing: the elements are asked one after the other.
inline bool containsPlainly(const Values& array, const qx::PropertyValue& v) {
  return std::any_of(array.begin(), array.end(), [&](const auto& e) { return e == v; });
}

// The same objects in the same order.
inline bool sameObjects(const qx::Array& array, const Values& values) {
  return std::equal(array.begin(), array.end(), values.begin(), values.end(),
                    [](const auto& a, const auto& b) { return isSame(a, b); });
}

inline qx::Ref<qx::QXTree> sharedNode() {
  static const auto* node = new qx::Ref<qx::QXTree>(qx::QXTree::initWithObject("carried"));
  return *node;
}

// A value of any kind, out of so few that equal ones are frequent.
inline qx::PropertyValue randomValue(std::mt19937& random) {
  const auto pick = [&](unsigned n) { return static_cast<int>(random() % n); };
  const std::string name(1, static_cast<char>('a' + pick(3)));
  static const auto* things =
      new Values{qx::make<Thing>(), qx::make<Thing>(), qx::make<Crowded>(), qx::make<Crowded>()};
  switch (pick(22)) {
    case 0:
      return pick(3);
    case 1:
      return static_cast<double>(pick(3));
    case 2:
      return pick(2) == 0;
    case 3:
    case 4:
      return name;
    case 5:
      return qx::MutableString::from(name);
    case 6:
      return qx::null;
    case 7:
      return qx::make<Tag>(name);
    case 8:
      return qx::make<Label>(name);
    case 9:
      return qx::make<Pattern>(name);
    case 10:
      return (*things)[static_cast<std::size_t>(pick(4))];
    case 11:
      return qx::array(name, pick(2));
    case 12:
      return qx::array(qx::make<Tag>(name));
    case 13:
      return qx::dict({{"k", pick(2)}});
    case 14:
      return pick(2) == 0 ? qx::PropertyValue(sharedNode()) : sharedNode()->object();
    case 15:
      return qx::make<Initial>(name + static_cast<char>('x' + pick(2)));
    case 16:
      return qx::make<Label>(name + 'x');
    case 17:
      return sizedArray(pick(3));
    case 18:
      return qx::array(qx::array(name), qx::dict({{"k", qx::array(pick(2))}}));
    case 19:
      return qx::array(qx::array(qx::make<Tag>(name)), qx::array(sizedArray(1)));
    case 20:
      return qx::dict({{"a", qx::array(name)}, {"b", qx::Set::from(qx::array(name))}});
    default:
      return qx::Set::from(qx::array(pick(2), name));
  }
}

inline Values randomValues(std::mt19937& random, std::size_t mostly) {
  Values all(random() % mostly);
  for (qx::PropertyValue& v : all) v = randomValue(random);
  return all;
}

}  // namespace samples
