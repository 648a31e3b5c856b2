#pragma once

// One key that is compared with many others.

#include "frame/numeric.h"
#include "frame/text_span.h"
#include "frame/three_way.h"
#include "frame/word_access.h"
#include "ordering/borrowed_key.h"
#include "ordering/mode.h"

namespace qx::detail {

// Compares plain numbers and texts among themselves, without code of the application. Borrows the
// key.
class KeyProbe {
 public:
  KeyProbe(Mode mode, const BorrowedKey& key);

  // What the key answers to the mode's comparison with `other`; false where that takes more than
  // this.
  bool compare(const BorrowedKey& other, int& result) const {
    if (kind_ == Kind::integer && other.type == FieldType::value &&
        WordAccess::isInlineSigned(*other.value())) {
      result = threeWay(number_.i, WordAccess::inlineSigned(*other.value()));
      if (mode_.descending) result = -result;
      return true;
    }
    return compareAny(other, result);
  }

 private:
  bool compareAny(const BorrowedKey& other, int& result) const;

  enum class Kind : unsigned char { integer, number, text, other };

  const Mode mode_;
  Kind kind_ = Kind::other;
  NumericValue number_;
  TextSpan text_;
};

}  // namespace qx::detail
