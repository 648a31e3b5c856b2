#include "collections/text_replacement.h"

#include <algorithm>
#include <cstring>

#include "frame/raise.h"
#include "frame/string_storage.h"

namespace qx::detail {
namespace {

// Copies a piece, widening it where it must be, and gives the place behind it.
unsigned char* put(unsigned char* to, TextSpan piece) {
  if (piece.size != 0) std::memcpy(to, piece.data, piece.size);
  return to + piece.size;
}
char16_t* put(char16_t* to, TextSpan piece) {
  return visitUnits(
      piece, [to](const auto* units, std::size_t count) { return std::copy_n(units, count, to); });
}

}  // namespace

template <class Unit>
void Replacements::write(Unit* to, TextSpan with) const {
  std::size_t done = 0;
  for (const Place& place : places_) {
    to = put(to, text_.substr(done, place.location - done));
    to = put(to, with);
    done = std::size_t{place.location} + place.length;
  }
  put(to, text_.substr(done));
}

Ref<String> Replacements::apply(TextSpan with) const {
  std::size_t added = 0;
  std::size_t length = 0;
  if (__builtin_mul_overflow(places_.size(), std::size_t{with.size}, &added) ||
      __builtin_add_overflow(text_.size - removed_, added, &length)) {
    raiseTooLong("a string");
  }
  const bool wide = text_.wide || !StringStorage::fitsLatin1(with);
  void* units = nullptr;
  Ref<String> result = StringStorage::allocate(length, wide, &units);
  if (!wide) {
    const std::string narrowed = with.wide ? StringStorage::narrowed(with) : std::string();
    write(static_cast<unsigned char*>(units), with.wide ? TextSpan::latin1(narrowed) : with);
    return result;
  }
  write(static_cast<char16_t*>(units), with);
  const TextSpan written = StringStorage::span(*result);
  return StringStorage::fitsLatin1(written) ? StringStorage::make(written) : result;
}

}  // namespace qx::detail
