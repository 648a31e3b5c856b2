#pragma once

// How strings keep their units. An immutable String has them right behind its object, in the
// narrowest form; a MutableString owns a buffer that widens when it must and may stay wide when it
// need not.

#include <cstddef>
#include <cstdint>
#include <string>

#include <QXFoundation/string.h>

#include "frame/text_span.h"

namespace qx::detail {

struct StringStorage {
  static bool isMutable(const String& s) { return ObjectAccess::has(s, kMutableVariant); }
  static bool isWide(const String& s) { return ObjectAccess::has(s, kWide); }

  // Of an immutable string. So many bytes may be read there whatever the length.
  static const void* inlineUnits(const String& s) { return &s + 1; }
  static constexpr std::size_t kReadable = 8;

  static TextSpan span(const String& s) {
    TextSpan t;
    t.data = isMutable(s) ? static_cast<const MutableString&>(s).units_
                          : static_cast<const void*>(&s + 1);
    t.size = s.length_;
    t.wide = isWide(s);
    return t;
  }

  // Never zero; equal strings have equal hashes whatever their form.
  static std::uint32_t hash(const String& s) {
    const std::uint32_t known = s.hash_.load(std::memory_order_relaxed);
    return known != 0 ? known : computeHash(s);
  }

  // A new immutable string with room for the units, which the caller fills before anyone else sees
  // it.
  static Ref<String> allocate(std::size_t length, bool wide, void** units);
  // The units in the narrowest form.
  static Ref<String> make(TextSpan text);

  static bool fitsLatin1(TextSpan text);
  // Precondition: fitsLatin1.
  static std::string narrowed(TextSpan text);

  // A range that leaves the text raises RangeException in the name of `operation`.
  static void replace(MutableString& s, Range range, TextSpan with, const char* operation);

 private:
  static std::uint32_t computeHash(const String& s);
};

// An immutable string with the parameter's text; the given object itself where it is one already.
Ref<String> immutableString(StringArg text);

}  // namespace qx::detail
