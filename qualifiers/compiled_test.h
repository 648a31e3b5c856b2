#pragma once

// A comparison with a constant, taken apart for many objects: by the operator and the kind of the
// constant, with the general comparison for everything else.

#include <cstdint>
#include <string>

#include <QXFoundation/property_value.h>

#include "frame/native_field.h"
#include "frame/numeric.h"
#include "frame/text_span.h"
#include "qualifiers/leaf_test.h"

namespace qx::detail {

// Borrows the test. Gives what `test.decide` gives for every value.
class CompiledTest {
 public:
  explicit CompiledTest(const ConstantTest& test);

  bool decide(const PropertyValue& left) const;
  bool decide(const NativeField& field) const;
  const ConstantTest& test() const { return *test_; }

  // What a binding to places knows of the constant.
  enum class Kind : std::uint8_t { general, integer, number, text, pattern };
  Kind kind() const { return kind_; }
  // Whether the comparison is true of a left value that stands so to the constant: -1, 0, 1.
  bool accepts(int order) const { return (accepted_ >> (order + 1) & 1U) != 0; }
  // Whether comparing a plain string or an inline value with the constant runs no code of the
  // application.
  bool isQuiet() const { return isQuiet_; }
  // Whether equality alone decides.
  bool equates() const { return equates_; }
  std::int64_t integer() const { return integer_; }
  const NumericValue& number() const { return number_; }
  TextSpan text() const { return text_; }
  // The text whose bytes equal texts have in UTF-8; null when there is none such.
  const std::string* utf8() const { return hasUtf8_ ? &utf8_ : nullptr; }

 private:
  void compileNumber();
  void compileText();
  bool decideText(TextSpan left) const;
  bool decideUtf8(std::string_view left, const NativeField& field) const;
  bool decideNumber(const NumericValue& left) const {
    return accepts(compareNumbers(left, number_));
  }

  const ConstantTest* test_;
  Kind kind_ = Kind::general;
  bool onNil_;
  bool isQuiet_;
  bool equates_ = false;  // equality alone decides
  std::uint8_t accepted_ =
      0;  // bit order + 1, for each order of left against the constant that is true
  std::int64_t integer_ = 0;
  NumericValue number_;
  TextSpan text_;
  // The constant as UTF-8, when equal texts have equal bytes: it holds nothing that ill-formed text
  // reads as.
  std::string utf8_;
  bool hasUtf8_ = false;
  bool isAscii_ = false;
};

}  // namespace qx::detail
