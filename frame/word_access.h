#pragma once

// The library's view of a value's word.

#include <bit>
#include <cstdint>

#include <QXFoundation/property_value.h>

#include "frame/numeric.h"

namespace qx::detail {

struct WordAccess {
  using V = PropertyValue;
  static std::uint64_t word(const V& v) { return v.word_; }
  static bool isInlineSigned(const V& v) { return (v.word_ & V::kTagMask) == V::kSignedTag; }
  static std::int64_t inlineSigned(const V& v) { return static_cast<std::int64_t>(v.word_) >> 3; }
  static bool isInlineDouble(const V& v) {
    const std::uint64_t tag = v.word_ & V::kTagMask;
    return tag == V::kSmallDoubleTag || tag == V::kLargeDoubleTag;
  }
  static double inlineDouble(std::uint64_t word) {
    return std::bit_cast<double>(std::rotr(word, 4));
  }

  static bool inlineNumber(const V& v, NumericValue& out) {
    switch (v.word_ & V::kTagMask) {
      case V::kSignedTag:
        out = NumericValue::signedInteger(inlineSigned(v));
        return true;
      case V::kUnsignedTag:
        out = NumericValue::unsignedInteger(v.word_ >> 3);
        return true;
      case V::kSmallDoubleTag:
      case V::kLargeDoubleTag:
        out = NumericValue::real(inlineDouble(v.word_));
        return true;
      case V::kFloatTag:
        out = NumericValue::single(std::bit_cast<float>(static_cast<std::uint32_t>(v.word_ >> 32)));
        return true;
      case V::kSpecialTag:
        return specialNumber(v.word_, out);
      default:
        return false;
    }
  }

  static bool specialNumber(std::uint64_t word, NumericValue& out);
};

}  // namespace qx::detail
