// Qualifiers: predicates over objects, as objects. A qualifier reads an object's values by key and
// compares them.
//
//     auto adults = qx::qualifierWithQualifierFormat("age > %d and name like %@", 21, "J*");
//     adults->evaluateWithObject(qx::dict({{"name", "Jim"}, {"age", 30}}));   // true
//     auto hits = filteredArrayUsingQualifier(people, adults);                // filter.h
//
// In code, a tree is built from the classes below, or written with `qx::key` (qualifier_key.h).
//
// A format is read once, from left to right:
//
//     comparison [and|or comparison]...      where a comparison is   [not] key operator value
//
// A key is made of letters, digits and # $ % @ _; a key path, with its dots, comes as an argument:
// "%s = %@". Operators are case-sensitive and stand between blanks: = (==)  != (<>)  <=  <  >=  >
// contains  like caseInsensitiveLike. Values:
//
//     %@ %d %f %s       the next argument: any value, an integer, a floating-point number (narrowed
//                       to single precision), text
//     'text' "text"     text
//     word              the second key of a comparison of two keys; text, once a constant stood
//                       before it
//     nil               no value, which nothing equals: absence is compared with %@ and null
//     (Class)word       an instance that the class's text initialiser makes; also (Class)'text'
//
// Keys may hold conversions too ("%s = %d"); %% is a percent sign.
//
// Much is accepted that is not meant: an unknown operator never matches, text after a comparison
// that is no connective is ignored, digits are a key ("age > 21"), `and` mixed with `or` drops a
// comparison, quoted text ends the format. `explainQualifierFormat` says where that happens.
//
// Qualifiers are immutable and may be evaluated by several threads at once, as far as the objects
// they hold allow it (a caller's mutable array of qualifiers stays the caller's). `isEqual` is
// identity.
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include <QXFoundation/array.h>
#include <QXFoundation/class.h>
#include <QXFoundation/class_builder.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/qualifier_format.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/string.h>
#include <QXFoundation/string_arg.h>

namespace qx {

struct FormatExplanation;

namespace detail {
struct ConstantTest;
struct KeyPairTest;
struct QualifierCoding;
}  // namespace detail

// ---- custom evaluation ----
// A class takes evaluation over by deriving from one of these and declaring it:
// `builder.conforms<P>()`.

// What every qualifier implements. Any object that declares it may stand among the members of and,
// or.
struct QX_EXPORT QXQualifierEvaluation {
  // The protocol as a value, and whether the object is accepted.
  static const Protocol& protocol();
  virtual bool evaluateWithObject(const PropertyValue& object) const = 0;

 protected:
  ~QXQualifierEvaluation() = default;
};

// An evaluated object that answers comparisons with a constant itself; it is not asked for values
// then. The key is nil where the qualifier's is.
struct QX_EXPORT QXKeyValueQualifierEvaluation {
  // The protocol as a value, and the answer to a comparison.
  static const Protocol& protocol();
  virtual bool evaluateWithKey(StringArg key, Selector operatorSelector,
                               const PropertyValue& value) const = 0;

 protected:
  ~QXKeyValueQualifierEvaluation() = default;
};

// The same for comparisons of two keys.
struct QX_EXPORT QXKeyComparisonQualifierEvaluation {
  // The protocol as a value, and the answer to a comparison.
  static const Protocol& protocol();
  virtual bool evaluateWithLeftKey(StringArg leftKey, Selector operatorSelector,
                                   StringArg rightKey) const = 0;

 protected:
  ~QXKeyComparisonQualifierEvaluation() = default;
};

// ---- the base class ----

// Evaluates to false by itself. An application's qualifier derives from it and overrides
// `evaluateWithObject`, which is called wherever the qualifier stands in a tree.
class QX_EXPORT QXQualifier : public Object, public QXQualifierEvaluation {
 public:
  // A qualifier that accepts nothing.
  static Ref<QXQualifier> init();

  // A new array of the nine operator texts: = != <= < >= > contains like caseInsensitiveLike.
  static Ref<Array> allQualifierOperators();
  // A new array of the first six.
  static Ref<Array> relationalQualifierOperators();
  // The operator's text, never "==" or "<>"; nil for a selector that is none of the nine.
  static Ref<String> stringForOperatorSelector(Selector selector);
  // Exact and case-sensitive; the null selector for every other text, and for nil.
  static Selector operatorSelectorForString(StringArg string);

  // A qualifier that is true when all (any) of the values are equal to what the object has under
  // their keys: of one entry the comparison itself, else an and- (or-) qualifier. A nil dictionary
  // counts as empty.
  static Ref<QXQualifier> qualifierToMatchAllValues(In<Dictionary> values);
  static Ref<QXQualifier> qualifierToMatchAnyValue(In<Dictionary> values);

  // The qualifier that the format describes; nil for an empty format and for nil.
  // InvalidArgumentException for an unknown conversion, a missing argument, and an argument of the
  // wrong kind; of these a literal is checked by the compiler. `%d` takes integers of 32 bits.
  // Arguments that are left over are ignored.
  template <class... A>
  static Ref<QXQualifier> qualifierWithQualifierFormat(
      FormatString<std::type_identity_t<A>...> format, A&&... arguments) {
    const PropertyValue list[sizeof...(A) + 1] = {PropertyValue(std::forward<A>(arguments))...};
    return _qualifierWithQualifierFormat(format.text(), list, sizeof...(A));
  }
  // The same over a list of arguments; what would not compile raises.
  static Ref<QXQualifier> _qualifierWithQualifierFormat(StringArg format,
                                                        const PropertyValue* arguments,
                                                        std::size_t count);
  // The same qualifier, with remarks on what may not be meant. Include
  // <QXFoundation/qualifier_explanation.h>.
  template <class... A>
  static FormatExplanation explainQualifierFormat(FormatString<std::type_identity_t<A>...> format,
                                                  A&&... arguments);

  // Nil as object is allowed everywhere.
  bool evaluateWithObject(const PropertyValue& object) const override;

  // Variables are carried and never substituted: the first three give this qualifier itself.
  virtual Ref<QXQualifier> qualifierWithBindings(In<Dictionary> bindings,
                                                 bool requiresAllVariables) const;
  Ref<QXQualifier> qualifierByApplyingBindings(In<Dictionary> bindings) const;
  Ref<QXQualifier> qualifierByApplyingBindingsAllVariablesRequired(In<Dictionary> bindings) const;
  virtual Ref<Array> bindingKeys() const;                         // a new empty array
  virtual Ref<String> keyPathForBindingKey(StringArg key) const;  // nil

  // The object itself. The classes below give a new instance of exactly the class named, also for a
  // subclass.
  Ref<Object> copy() const override;
  // The tree as text that resembles a format, cut with "..." beyond some thousands of bytes:
  // comparisons with a constant show it as its description, text in quotes; two keys are compared
  // bare; the null selector is `?`.
  std::string description() const override;
};

// The free form of QXQualifier::qualifierWithQualifierFormat.
template <class... A>
Ref<QXQualifier> qualifierWithQualifierFormat(FormatString<std::type_identity_t<A>...> format,
                                              A&&... arguments) {
  return QXQualifier::qualifierWithQualifierFormat<A...>(format, std::forward<A>(arguments)...);
}

// ---- and, or, not ----

namespace detail {
// The listed qualifiers up to the first nil.
QX_EXPORT Ref<Array> listQualifiers(const In<QXQualifier>* first, std::size_t count);
// As built: the first, then every other one of those up to the first nil. An even number of them
// raises InvalidArgumentException, because nil itself would be the next member.
QX_EXPORT Ref<Array> listAlternateQualifiers(const In<QXQualifier>* first, std::size_t count);
}  // namespace detail

// True when every member is, in order, up to the first that is false; false for a nil object. A nil
// array counts as empty: true.
class QX_EXPORT QXAndQualifier : public QXQualifier {
 public:
  QXAndQualifier() = default;
  // As initWithQualifierArray; without members.
  explicit QXAndQualifier(In<Array> qualifiers) : qualifiers_(qualifiers.get()) {}
  static Ref<QXAndQualifier> init();
  // Keeps the very array: changes of a mutable one change the qualifier.
  static Ref<QXAndQualifier> initWithQualifierArray(In<Array> qualifiers);
  // The arguments up to the first nil; the end of the list counts as one.
  template <class... Q>
    requires(std::convertible_to<Q, In<QXQualifier>> && ...)
  static Ref<QXAndQualifier> initWithQualifiers(Q&&... qualifiers) {
    const In<QXQualifier> list[] = {In<QXQualifier>(qualifiers)..., nullptr};
    return initWithQualifierArray(detail::listQualifiers(list, sizeof...(Q)));
  }

  // The members; nil where none were given.
  const Ref<Array>& qualifiers() const { return qualifiers_; }
  bool evaluateWithObject(const PropertyValue& object) const override;
  // Shares the members, in a copy of the array.
  Ref<Object> copy() const override;

 private:
  friend struct detail::QualifierCoding;
  Ref<Array> qualifiers_;
};

// True when some member is, in order, up to the first that is true; false for a nil object and for
// no members.
class QX_EXPORT QXOrQualifier : public QXQualifier {
 public:
  QXOrQualifier() = default;
  // As initWithQualifierArray; without members.
  explicit QXOrQualifier(In<Array> qualifiers) : qualifiers_(qualifiers.get()) {}
  static Ref<QXOrQualifier> init();
  // Keeps the very array: changes of a mutable one change the qualifier.
  static Ref<QXOrQualifier> initWithQualifierArray(In<Array> qualifiers);
  // Keeps the first, third, fifth ... argument only, and raises InvalidArgumentException when their
  // number up to the first nil is even. Prefer initWithQualifierArray.
  template <class... Q>
    requires(std::convertible_to<Q, In<QXQualifier>> && ...)
  static Ref<QXOrQualifier> initWithQualifiers(Q&&... qualifiers) {
    const In<QXQualifier> list[] = {In<QXQualifier>(qualifiers)..., nullptr};
    return initWithQualifierArray(detail::listAlternateQualifiers(list, sizeof...(Q)));
  }

  // The members; nil where none were given.
  const Ref<Array>& qualifiers() const { return qualifiers_; }
  bool evaluateWithObject(const PropertyValue& object) const override;
  Ref<Object> copy() const override;

 private:
  friend struct detail::QualifierCoding;
  Ref<Array> qualifiers_;
};

// The opposite of its qualifier, which is asked about a nil object too; false without one.
class QX_EXPORT QXNotQualifier : public QXQualifier {
 public:
  QXNotQualifier() = default;
  // The opposite of that qualifier, or of none.
  explicit QXNotQualifier(In<QXQualifier> qualifier) : qualifier_(qualifier.get()) {}
  static Ref<QXNotQualifier> init();
  static Ref<QXNotQualifier> initWithQualifier(In<QXQualifier> qualifier);

  // The qualifier that is turned round, or nil.
  const Ref<QXQualifier>& qualifier() const { return qualifier_; }
  bool evaluateWithObject(const PropertyValue& object) const override;
  // Copies its qualifier too.
  Ref<Object> copy() const override;

 private:
  friend struct detail::QualifierCoding;
  Ref<QXQualifier> qualifier_;
};

// ---- comparisons ----

// Compares what the object has under a key path with a constant: the operation that the selector
// names is applied to the object's value, without converting either. False where that value does
// not have the operation. Where it is nil, only two are true: isEqualTo: when the constant is null,
// isNotEqualTo: when it is anything but null.
class QX_EXPORT QXKeyValueQualifier : public QXQualifier {
 public:
  QXKeyValueQualifier();
  // As initWithKey; without key, selector and value.
  QXKeyValueQualifier(StringArg key, SelectorFor<1> operatorSelector, const PropertyValue& value);
  static Ref<QXKeyValueQualifier> init();
  // Any operation of one argument that answers a bool will do; the null selector is false for every
  // object. A selector of another number of arguments, found only at run time, raises
  // InvalidArgumentException in the evaluation of a value that has the operation. A mutable string
  // as key is copied; the value is shared.
  static Ref<QXKeyValueQualifier> initWithKey(StringArg key, SelectorFor<1> operatorSelector,
                                              const PropertyValue& value);

  // What it was made with.
  const Ref<String>& key() const;
  Selector selector() const;
  const PropertyValue& value() const;
  bool evaluateWithObject(const PropertyValue& object) const override;
  Ref<Object> copy() const override;

  // Inside the library.
  const detail::ConstantTest& test() const { return *test_; }

 protected:
  ~QXKeyValueQualifier() override;

 private:
  friend struct detail::QualifierCoding;
  std::unique_ptr<const detail::ConstantTest> test_;
};

// Compares what the object has under two key paths. False where the left value is nil or does not
// have the operation.
class QX_EXPORT QXKeyComparisonQualifier : public QXQualifier {
 public:
  QXKeyComparisonQualifier();
  // With these keys and this operation, or without any. The rules for selectors are those of
  // QXKeyValueQualifier.
  QXKeyComparisonQualifier(StringArg leftKey, SelectorFor<1> operatorSelector, StringArg rightKey);
  static Ref<QXKeyComparisonQualifier> init();
  static Ref<QXKeyComparisonQualifier> initWithLeftKey(StringArg leftKey,
                                                       SelectorFor<1> operatorSelector,
                                                       StringArg rightKey);

  // What it was made with.
  const Ref<String>& leftKey() const;
  Selector selector() const;
  const Ref<String>& rightKey() const;
  bool evaluateWithObject(const PropertyValue& object) const override;
  Ref<Object> copy() const override;

  // Inside the library.
  const detail::KeyPairTest& test() const { return *test_; }

 protected:
  ~QXKeyComparisonQualifier() override;

 private:
  friend struct detail::QualifierCoding;
  std::unique_ptr<const detail::KeyPairTest> test_;
};

// The name of a variable, standing for a constant. It is carried along as it is: nothing is ever
// put in its place.
class QX_EXPORT QXQualifierVariable : public Object {
 public:
  QXQualifierVariable() = default;
  // A variable of that name.
  explicit QXQualifierVariable(StringArg key) : key_(key.string()) {}
  static Ref<QXQualifierVariable> variableWithKey(StringArg key);
  static Ref<QXQualifierVariable> initWithKey(StringArg key);

  // The name.
  const Ref<String>& key() const { return key_; }
  // "$name"
  std::string description() const override;

 private:
  friend struct detail::QualifierCoding;
  Ref<String> key_;
};

QX_EXPORT const Class& classObject(detail::Type<QXQualifier>);
QX_EXPORT const Class& classObject(detail::Type<QXAndQualifier>);
QX_EXPORT const Class& classObject(detail::Type<QXOrQualifier>);
QX_EXPORT const Class& classObject(detail::Type<QXNotQualifier>);
QX_EXPORT const Class& classObject(detail::Type<QXKeyValueQualifier>);
QX_EXPORT const Class& classObject(detail::Type<QXKeyComparisonQualifier>);
QX_EXPORT const Class& classObject(detail::Type<QXQualifierVariable>);

}  // namespace qx
