#pragma once

// Arbitrary qualifier trees and objects, from a source of choices: `below(n)` gives a number under
// n.

#include <cstddef>
#include <string>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/number.h>
#include <QXFoundation/qualifier.h>

namespace qx::generated {

class Native : public Object {
 public:
  std::string s;
  int i = 0;
  double d = 0;
  bool b = false;
  PropertyValue v;
  PropertyValue getter() const { return v; }
};
inline void describe(ClassBuilder<Native>& c) {
  c.name("GeneratedNative")
      .property("s", &Native::s)
      .property("i", &Native::i)
      .property("d", &Native::d);
  c.property("b", &Native::b).property("v", &Native::v).property("g", &Native::getter);
}

struct Plain {
  std::string s;
  int i = 0;
  double d = 0;
  bool b = false;
  PropertyValue v;
  PropertyValue getter() const { return v; }
};
inline void describe(ClassBuilder<Plain>& c) {
  c.name("GeneratedPlain")
      .property("s", &Plain::s)
      .property("i", &Plain::i)
      .property("d", &Plain::d);
  c.property("b", &Plain::b).property("v", &Plain::v).property("g", &Plain::getter);
}

template <class Choices>
class Generator {
 public:
  explicit Generator(Choices choices) : choices_(std::move(choices)) {}

  std::size_t below(std::size_t n) { return choices_(n); }
  template <class T, std::size_t N>
  const T& of(const T (&choices)[N]) {
    return choices[below(N)];
  }

  std::string text() {
    static const std::string texts[] = {
        "", "a", "Jim", "jim", "J*", "?", "na\xC3\xAFve", "\xF0\x9F\x98\x80", "30"};
    return of(texts);
  }
  int integer() { return static_cast<int>(below(7)) - 3; }
  double real() { return (static_cast<double>(below(13)) - 6) / 2; }

  PropertyValue value(unsigned depth = 0) {
    switch (below(depth > 2 ? 9 : 12)) {
      case 0:
        return null;
      case 1:
        return below(2) == 0;
      case 2:
      case 3:
        return integer();
      case 4:
        return real();
      case 5:
        return static_cast<float>(real());
      case 6:
        return DecimalNumber::initWithString(std::to_string(integer()));
      case 7:
        return MutableString::from(text());
      case 8:
        return text();
      case 9:
        return array(value(depth + 1), value(depth + 1));
      default:
        return dict({{"s", value(depth + 1)}, {"i", value(depth + 1)}});
    }
  }

  std::string key() {
    static const std::string keys[] = {"s",    "i",   "d",   "b",        "v", "g",
                                       "none", "v.s", "v.i", "s.length", "",  "g.s.length"};
    return of(keys);
  }
  Selector selector() {
    static const Selector selectors[] = {"isEqualTo:",
                                         "isNotEqualTo:",
                                         "isLessThan:",
                                         "isLessThanOrEqualTo:",
                                         "isGreaterThan:",
                                         "isGreaterThanOrEqualTo:",
                                         "doesContain:",
                                         "isLike:",
                                         "isCaseInsensitiveLike:",
                                         Selector(),
                                         "hasPrefix:"};
    return of(selectors);
  }

  Ref<QXQualifier> leaf() {
    const Selector operation = selector();
    // It raises for anything but text, which a second key may well give.
    if (operation == Selector("hasPrefix:"))
      return QXKeyValueQualifier::initWithKey(key(), operation, text());
    if (below(5) == 0) return QXKeyComparisonQualifier::initWithLeftKey(key(), operation, key());
    return QXKeyValueQualifier::initWithKey(key(), operation,
                                            below(12) == 0 ? PropertyValue() : value());
  }
  Ref<QXQualifier> tree(unsigned depth = 0) {
    const std::size_t kind = below(depth > 3 ? 2 : 6);
    if (kind < 2) return leaf();
    if (kind == 2)
      return QXNotQualifier::initWithQualifier(below(10) == 0 ? nullptr : tree(depth + 1));
    const auto members = MutableArray::init();
    for (std::size_t n = below(4); n > 0; --n) members->addObject(tree(depth + 1));
    const PropertyValue list =
        below(3) == 0 ? PropertyValue(members) : PropertyValue(members->copy());
    if (kind == 3) return QXOrQualifier::initWithQualifierArray(list.as<Array>());
    return QXAndQualifier::initWithQualifierArray(list.as<Array>());
  }

  template <class T>
  void fill(T& record) {
    record.s = text();
    record.i = integer();
    record.d = real();
    record.b = below(2) == 0;
    if (below(4) != 0) record.v = value();
  }
  PropertyValue dictionary() {
    const auto d = MutableDictionary::init();
    for (std::size_t n = below(4) == 0 ? 20 : below(3); n > 0; --n)
      d->setObject(1, "x" + std::to_string(n));
    for (const char* k : {"s", "i", "d", "b", "v", "g"}) {
      if (below(5) != 0) d->setObject(value(), k);
    }
    return below(2) == 0 ? PropertyValue(d) : PropertyValue(d->copy());
  }

 private:
  Choices choices_;
};

inline PropertyValue asDictionary(const Plain& row) {
  const auto d = MutableDictionary::init();
  d->setObject(row.s, "s");
  d->setObject(row.i, "i");
  d->setObject(row.d, "d");
  d->setObject(row.b, "b");
  if (!row.v.isNil()) {
    d->setObject(row.v, "v");
    d->setObject(row.v, "g");
  }
  return d;
}

}  // namespace qx::generated
