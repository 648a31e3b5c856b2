#include "frame/string_storage.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "frame/hashing.h"
#include "frame/object_memory.h"
#include "frame/raise.h"
#include "frame/utf.h"

namespace qx {

String::String(detail::Passkey, std::size_t length, unsigned bits)
    : Object(detail::ObjectKind::string, bits | detail::kLeaf),
      length_(static_cast<std::uint32_t>(length)) {}

MutableString::MutableString(detail::Passkey)
    : String(detail::Passkey{}, 0, detail::kMutableVariant) {}
MutableString::~MutableString() { std::free(units_); }

namespace detail {
namespace {

constexpr std::size_t kMaxLength = std::numeric_limits<std::uint32_t>::max() - 1;

std::size_t byteCount(std::size_t units, bool wide) { return wide ? units * 2 : units; }

// Copies units of either form into a buffer of the form `wide`; narrowing is right only where the
// text fits.
void copyUnits(void* out, bool wide, TextSpan text) {
  if (text.size == 0) return;
  if (wide == text.wide) {
    std::memcpy(out, text.data, byteCount(text.size, wide));
  } else if (wide) {
    auto* to = static_cast<char16_t*>(out);
    for (std::size_t i = 0; i < text.size; ++i) to[i] = text.bytes()[i];
  } else {
    auto* to = static_cast<unsigned char*>(out);
    for (std::size_t i = 0; i < text.size; ++i) to[i] = static_cast<unsigned char>(text.units()[i]);
  }
}

}  // namespace

Ref<String> StringStorage::allocate(std::size_t length, bool wide, void** units) {
  if (length > kMaxLength) raiseTooLong("a string");
  static const std::uint16_t index = classIndexOf(classOf<String>());
  static_assert(sizeof(Made<String>) == sizeof(String));
  void* memory =
      ObjectMemory::allocate(sizeof(Made<String>) + std::max(byteCount(length, wide), kReadable));
  auto* s = ::new (memory) Made<String>(Passkey{}, length, wide ? unsigned{kWide} : 0U);
  ObjectAccess::setClass(*s, index, 0);
  *units = static_cast<String*>(s) + 1;
  return Ref<String>::adopt(s);
}

Ref<String> StringStorage::make(TextSpan text) {
  const bool wide = text.wide && !fitsLatin1(text);
  void* units = nullptr;
  Ref<String> s = allocate(text.size, wide, &units);
  copyUnits(units, wide, text);
  return s;
}

bool StringStorage::fitsLatin1(TextSpan text) {
  if (!text.wide) return true;
  char16_t all = 0;
  for (std::size_t i = 0; i < text.size; ++i) {
    all |= text.units()[i];
    if ((i & 63) == 63 && all > 0xFF) return false;
  }
  return all <= 0xFF;
}

std::string StringStorage::narrowed(TextSpan text) {
  std::string out(text.size, '\0');
  copyUnits(out.data(), false, text);
  return out;
}

std::uint32_t StringStorage::computeHash(const String& s) {
  const TextSpan text = span(s);
  if (isMutable(s)) {
    return text.wide && fitsLatin1(text) ? hashText(TextSpan::latin1(narrowed(text)))
                                         : hashText(text);
  }
  const std::uint32_t h = hashText(text);
  s.hash_.store(h, std::memory_order_relaxed);
  return h;
}

void StringStorage::replace(MutableString& s, Range range, TextSpan with, const char* operation) {
  const TextSpan old = span(s);
  if (range.location > old.size || range.length > old.size - range.location) {
    raiseRange(operation, range.location, range.length, old.size);
  }
  const std::size_t kept = old.size - range.length;
  if (with.size > kMaxLength - kept) raiseTooLong("a string");
  const bool wide = old.wide || !fitsLatin1(with);
  const std::size_t size = kept + with.size;
  const TextSpan tail = old.substr(range.location + range.length);
  const auto at = [&](void* base, std::size_t i) {
    return static_cast<char*>(base) + byteCount(i, wide);
  };
  // A text that is part of this very string would move under the copy.
  const auto* start = static_cast<const char*>(with.data);
  const auto* mine = static_cast<const char*>(old.data);
  const bool own =
      mine != nullptr && start >= mine && start <= mine + byteCount(old.size, old.wide);
  if (!own && wide == old.wide && byteCount(size, wide) <= s.capacity_) {
    if (tail.size != 0) {
      std::memmove(at(s.units_, range.location + with.size), tail.data, byteCount(tail.size, wide));
    }
    copyUnits(at(s.units_, range.location), wide, with);
  } else {
    const std::size_t capacity =
        std::max(byteCount(size, wide), std::min(s.capacity_ * 2, kMaxLength)) | 15;
    void* grown = std::malloc(capacity);
    if (grown == nullptr) throw std::bad_alloc();
    copyUnits(grown, wide, old.substr(0, range.location));
    copyUnits(at(grown, range.location), wide, with);
    copyUnits(at(grown, range.location + with.size), wide, tail);
    std::free(s.units_);
    s.units_ = grown;
    s.capacity_ = capacity;
  }
  s.length_ = static_cast<std::uint32_t>(size);
  if (wide) ObjectAccess::set(s, kWide);
}

Ref<String> immutableString(StringArg text) {
  if (text.isNil()) return nullptr;
  if (const String* s = text.object()) {
    return StringStorage::isMutable(*s) ? StringStorage::make(StringStorage::span(*s))
                                        : const_cast<String*>(s);
  }
  const std::string_view bytes = text.bytes();
  const Utf8Shape shape = scanUtf8(bytes);
  void* units = nullptr;
  Ref<String> s = StringStorage::allocate(shape.units, shape.wide, &units);
  if (shape.ascii) {
    if (!bytes.empty()) std::memcpy(units, bytes.data(), bytes.size());
  } else if (shape.wide) {
    utf8ToUtf16(bytes, static_cast<char16_t*>(units));
  } else {
    utf8ToLatin1(bytes, static_cast<unsigned char*>(units));
  }
  return s;
}

}  // namespace detail
}  // namespace qx
