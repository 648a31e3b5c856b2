#pragma once

// The frame of a binary property list: trailer, table and objects as runs of bytes, each checked
// before it is used.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/plist_binary_format.h"

namespace qx::detail {

// One object as it stands in the list.
struct PlistRecord {
  std::uint8_t marker;         // its first byte
  std::size_t at;              // of that byte
  std::uint64_t count;         // bytes, units, elements or entries, by the kind
  const unsigned char* bytes;  // behind marker and count
  std::size_t size;            // of those bytes

  unsigned kind() const { return marker >> 4; }
  bool isText() const { return kind() == kPlistAscii || kind() == kPlistUtf16; }
  bool isContainer() const { return kind() == kPlistArray || kind() == kPlistDictionary; }
  // Of a container.
  std::uint64_t referenceCount() const { return kind() == kPlistDictionary ? 2 * count : count; }
};

class PlistTable {
 public:
  // Borrows the bytes. Throws a PlistFault unless header, trailer and table fit together.
  explicit PlistTable(std::string_view bytes);

  std::uint64_t objectCount() const { return objectCount_; }
  std::uint64_t root() const { return root_; }
  // Bytes that the objects have for themselves.
  std::uint64_t objectBytes() const { return table_ - kPlistMagic.size(); }
  const unsigned char* at(std::size_t offset) const { return bytes_ + offset; }

  // The object, all of whose bytes lie before the table. Precondition: number < objectCount().
  PlistRecord record(std::uint64_t number) const {
    PlistRecord r{};
    r.at = offset(number);
    r.bytes = bytes_ + r.at;
    r.marker = *r.bytes++;
    r.count = r.marker & 15U;
    if (r.count == kPlistLongSize) readLongCount(r);
    const std::uint64_t left = table_ - static_cast<std::uint64_t>(r.bytes - bytes_);
    const std::uint64_t width = unitWidths_[r.kind()];
    // Counts are checked against what is there before they are multiplied, by 16 at most.
    if (width == 0) {
      const std::uint8_t size = kFixedSizes[r.marker];
      r.size = size != kNotFixed ? size : failWithoutSize(r);
    } else {
      if (r.count > left) failEnd(r);
      r.size = r.count * width;
    }
    if (r.size > left) failEnd(r);
    return r;
  }
  // The reference at that position behind a container's count; it names an object that is there.
  std::uint64_t reference(const PlistRecord& container, std::uint64_t position) const {
    const unsigned char* const from = container.bytes + position * referenceWidth_;
    const std::uint64_t number = bigEndian(from, referenceWidth_);
    if (number >= objectCount_) failReference(from);
    return number;
  }
  std::size_t referenceWidth() const { return referenceWidth_; }

  // Throws a PlistFault of code `malformed`.
  [[noreturn]] static void fail(std::size_t at, std::string reason);

 private:
  std::uint64_t offset(std::uint64_t number) const {
    const std::size_t at = table_ + number * offsetWidth_;
    const std::uint64_t place = bigEndian(bytes_ + at, offsetWidth_);
    if (place < kPlistMagic.size() || place >= table_) fail(at, "an object is not within the list");
    return place;
  }
  [[noreturn]] void failReference(const unsigned char* from) const;
  [[noreturn]] static void failEnd(const PlistRecord& r);
  // Reads the count that stands behind the marker, for kinds that have one.
  void readLongCount(PlistRecord& r) const;
  // For first bytes of kinds that have no count and are none of the fixed ones.
  [[noreturn]] static std::uint64_t failWithoutSize(const PlistRecord& r);

  // Of what stands behind the first byte, for kinds that have no count.
  static constexpr std::uint8_t kNotFixed = 0xFF;
  static constexpr std::array<std::uint8_t, 256> kFixedSizes = [] {
    std::array<std::uint8_t, 256> sizes{};
    sizes.fill(kNotFixed);
    for (unsigned power = 0; power <= 4; ++power) {
      sizes[kPlistInteger << 4 | power] = static_cast<std::uint8_t>(1U << power);
    }
    sizes[kPlistFalse] = sizes[kPlistTrue] = 0;
    sizes[kPlistReal32] = 4;
    sizes[kPlistReal64] = sizes[kPlistDate] = 8;
    return sizes;
  }();

  const unsigned char* bytes_;
  std::size_t trailer_ = 0;
  std::size_t offsetWidth_ = 0;
  std::size_t referenceWidth_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t table_ = 0;
  std::array<std::uint64_t, 16> unitWidths_{};  // by kind; 0 for kinds without a count
};

}  // namespace qx::detail
