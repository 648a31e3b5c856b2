#pragma once

// Arbitrary qualifier trees and objects, from a source of choices: `below(n)` gives a number under
// n.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

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

struct Plain {
  std::string s;
  int i = 0;
  double d = 0;
  bool b = false;
  PropertyValue v;
  PropertyValue getter() const { return v; }
};

template <class T>
void describeFields(ClassBuilder<T>& c, const char* name) {
  c.name(name).property("s", &T::s).property("i", &T::i).property("d", &T::d);
  c.property("b", &T::b).property("v", &T::v).property("g", &T::getter);
}
inline void describe(ClassBuilder<Native>& c) { describeFields(c, "GeneratedNative"); }
inline void describe(ClassBuilder<Plain>& c) { describeFields(c, "GeneratedPlain"); }

// A value with operators of the application: one of its own, and orders and equality that are not
// the library's.
class Grade : public Object {
 public:
  explicit Grade(int grade) : n(grade) {}
  int n;
  bool isNear(const PropertyValue& other) const {
    if (const auto grade = other.as<Grade>()) return grade->n - n <= 1 && n - grade->n <= 1;
    return other == n || other == n + 1;
  }
  // The best grade is 1.
  bool isLessThan(const PropertyValue& other) const {
    const auto grade = other.as<Grade>();
    return grade != nullptr && n > grade->n;
  }
  bool isEqualTo(const PropertyValue& other) const {
    const auto grade = other.as<Grade>();
    return grade != nullptr ? grade->n == n : other == n;
  }
};
inline void describe(ClassBuilder<Grade>& c) {
  c.name("GeneratedGrade").property("i", &Grade::n).operation("isNear:", &Grade::isNear);
  c.operation("isLessThan:", &Grade::isLessThan).operation("isEqualTo:", &Grade::isEqualTo);
}

// An object that answers comparisons by itself, and differently from the values it has.
class Judge : public Object,
              public QXKeyValueQualifierEvaluation,
              public QXKeyComparisonQualifierEvaluation {
 public:
  int i = 0;
  bool evaluateWithKey(StringArg key, Selector s, const PropertyValue& value) const override {
    return (lengthOf(key) + s.text().size() + (value.isNull() ? 1U : 0U)) % 2 == 0;
  }
  bool evaluateWithLeftKey(StringArg left, Selector s, StringArg right) const override {
    return (lengthOf(left) + s.text().size() + 2 * lengthOf(right)) % 3 == 0;
  }

 private:
  static std::size_t lengthOf(StringArg key) { return key.isNil() ? 7 : key.utf8().size(); }
};
inline void describe(ClassBuilder<Judge>& c) {
  c.name("GeneratedJudge").property("i", &Judge::i);
  c.conforms<QXKeyValueQualifierEvaluation>().conforms<QXKeyComparisonQualifierEvaluation>();
}

// One that answers comparisons with constants alone.
class HalfJudge : public Object, public QXKeyValueQualifierEvaluation {
 public:
  int i = 0;
  bool evaluateWithKey(StringArg, Selector, const PropertyValue& value) const override {
    return value.isNumber();
  }
};
inline void describe(ClassBuilder<HalfJudge>& c) {
  c.name("GeneratedHalfJudge").property("i", &HalfJudge::i);
  c.conforms<QXKeyValueQualifierEvaluation>();
}

// A qualifier of the application.
class OwnRule : public QXQualifier {
 public:
  bool evaluateWithObject(const PropertyValue& object) const override {
    return !object.isNil() && (object.isString() || object.isDictionary());
  }
};
inline void describe(ClassBuilder<OwnRule>& c) {
  c.name("GeneratedOwnRule").inherits<QXQualifier>();
}

template <class Choices>
class Generator {
 public:
  explicit Generator(Choices choices) : choices_(std::move(choices)) {}

  // Qualifiers of the application among the leaves from here on; records of plain structs refuse
  // them.
  void drawOwnRules() { ownRules_ = true; }

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

  // Numbers of every kind where their ranges and precision end.
  PropertyValue edge() {
    using Double = std::numeric_limits<double>;
    static const PropertyValue edges[] = {std::numeric_limits<std::int64_t>::min(),
                                          std::numeric_limits<std::int64_t>::max(),
                                          std::numeric_limits<std::uint64_t>::max(),
                                          std::numeric_limits<std::int32_t>::min(),
                                          std::numeric_limits<std::int32_t>::max(),
                                          std::int64_t{1} << 53,
                                          (std::int64_t{1} << 53) + 1,
                                          -(std::int64_t{1} << 53) - 1,
                                          9007199254740992.0,
                                          9223372036854775808.0,
                                          18446744073709551616.0,
                                          -0.0,
                                          Double::quiet_NaN(),
                                          Double::infinity(),
                                          -Double::infinity(),
                                          Double::denorm_min(),
                                          Double::max(),
                                          std::numeric_limits<float>::max(),
                                          0.1F,
                                          0.1,
                                          DecimalNumber::initWithString("0.1"),
                                          DecimalNumber::initWithString("9007199254740993"),
                                          DecimalNumber::initWithString("18446744073709551615")};
    return of(edges);
  }

  PropertyValue value(unsigned depth = 0) {
    switch (below(depth > 2 ? 11 : 14)) {
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
        return edge();
      case 10:
        return make<Grade>(integer());
      case 11:
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
                                         "isNear:",
                                         "hasPrefix:"};
    return of(selectors);
  }

  Ref<QXQualifier> leaf() {
    if (ownRules_ && below(12) == 0) return make<OwnRule>();
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
  PropertyValue native() {
    const auto object = make<Native>();
    fill(*object);
    return object;
  }
  // Anything that may stand in an array.
  PropertyValue object() {
    switch (below(8)) {
      case 0:
        return make<Judge>();
      case 1:
        return make<HalfJudge>();
      case 2:
      case 3:
        return native();
      case 4: {
        PropertyValue v = value();
        return v.isNil() ? PropertyValue(null) : v;
      }
      default:
        return dictionary();
    }
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
  bool ownRules_ = false;
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
