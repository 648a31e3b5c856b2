// Explanations: what a qualifier format was taken to mean, and why an object passes a qualifier or
// fails it.
//
//     auto e = qx::QXQualifier::explainQualifierFormat("age > 21 or city = %@", "Rome");
//     for (const qx::FormatRemark& r : e.remarks) show(r.column, r.text);
//     // 7: "21" is taken as a key; constants are given as arguments or in quotes
//
//     qx::explain(e.qualifier, person).text();
//     // false: or
//     //   false: age > 21 (age is 42, 21 is nil)
//     //   false: city = "Rome" (city is "Oslo")
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/qualifier.h>

namespace qx {

// Something in a format that is accepted and may not be meant.
struct FormatRemark {
  // What it is.
  enum class Kind {
    comparisonDropped,     // the word after it differs from the one before it: it is left out
    comparisonRepeated,    // the format ends in a connective: the last comparison counts twice
    textIgnored,           // no connective stands here: the rest is not read
    quotedTextEndsFormat,  // the parse ends at a closing quote: the rest is not read
    unknownOperator,       // the comparison is false for every object
    bareWordIsKey,         // a bare word on the right is the name of another key
    bareWordIsConstant,    // a bare word on the right is text, because a constant stands before it
    emptyKey,              // there is no key, or no second key
    nilValue,              // `nil` on the right, which nothing equals
    textDropped,           // text before a conversion: the argument alone is the value
    unknownClass,          // a cast names no class: the value is nil
    classWithoutText,      // a cast's class makes nothing of the text: the value is nil
    unbalanced,            // a quote or a cast is not closed
    argumentsUnused,       // more arguments than conversions were read
    more,                  // remarks beyond the first thousand are left out
  };

  // Which of these it is.
  Kind kind;
  // Where it begins, in characters (code points) from 1.
  std::size_t column;
  // A sentence in English.
  std::string text;
};

// What explainQualifierFormat gives.
struct FormatExplanation {
  // What the format makes; nil for an empty one.
  Ref<QXQualifier> qualifier;
  // In the order of their columns.
  std::vector<FormatRemark> remarks;
};

namespace detail {
QX_EXPORT FormatExplanation explainFormat(StringArg format, const PropertyValue* arguments,
                                          std::size_t count);
}

template <class... A>
FormatExplanation QXQualifier::explainQualifierFormat(
    FormatString<std::type_identity_t<A>...> format, A&&... arguments) {
  const PropertyValue list[sizeof...(A) + 1] = {PropertyValue(std::forward<A>(arguments))...};
  return detail::explainFormat(format.text(), list, sizeof...(A));
}

// Why an object passes a qualifier, or fails it.
class Explanation {
 public:
  // Inside the library.
  Explanation(bool result, std::string text) : result_(result), text_(std::move(text)) {}
  // What evaluateWithObject gives; false for a nil qualifier.
  bool result() const { return result_; }
  // A line for each part that was evaluated, indented by its depth in the tree, with the values
  // that were compared. Each line ends in a line feed. At most 200 lines and 40 levels; parts
  // beyond are evaluated without being shown.
  const std::string& text() const { return text_; }

 private:
  bool result_;
  std::string text_;
};

// Evaluates the qualifier once, as evaluateWithObject does, and tells what happened.
QX_EXPORT Explanation explain(In<QXQualifier> qualifier, const PropertyValue& object);

}  // namespace qx
