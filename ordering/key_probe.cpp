#include "ordering/key_probe.h"

#include "frame/unicode.h"

namespace qx::detail {

KeyProbe::KeyProbe(Mode mode, const BorrowedKey& key) : mode_(mode) {
  if (!mode.ignoringCase && isPlainNumber(key, number_)) {
    kind_ = number_.kind == NumberKind::signedInteger ? Kind::integer : Kind::number;
  } else if (isPlainText(key, text_)) {
    kind_ = Kind::text;
  }
}

bool KeyProbe::compareAny(const BorrowedKey& other, int& result) const {
  if (kind_ == Kind::integer || kind_ == Kind::number) {
    NumericValue n;
    if (!isPlainNumber(other, n)) return false;
    result = compareNumbers(number_, n);
  } else if (kind_ == Kind::text) {
    TextSpan t;
    if (!isPlainText(other, t)) return false;
    result = mode_.ignoringCase ? caseInsensitiveCompare(text_, t) : compareUnits(text_, t);
  } else {
    return false;
  }
  if (mode_.descending) result = -result;
  return true;
}

}  // namespace qx::detail
