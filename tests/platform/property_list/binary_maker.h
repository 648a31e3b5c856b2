#pragma once

// Binary property lists, right or wrong, made by hand for tests.

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qx::plist {

// A number of that many bytes, big-endian; what does not fit is cut off.
inline std::string wide(std::uint64_t n, std::size_t width) {
  std::string bytes(width, '\0');
  for (std::size_t i = 0; i < width && i < 8; ++i) {
    bytes[width - 1 - i] = static_cast<char>(n >> 8 * i);
  }
  return bytes;
}

class BinaryMaker {
 public:
  std::size_t offsetWidth = 1;
  std::size_t referenceWidth = 1;
  std::vector<std::string> objects;
  std::uint64_t root = 0;
  std::string header = "bplist00";
  // What the trailer says in place of what is there.
  std::optional<std::uint64_t> objectCount;
  std::optional<std::uint64_t> table;
  std::optional<std::uint64_t> statedOffsetWidth;
  std::optional<std::uint64_t> statedReferenceWidth;
  // The place of an object in place of its own.
  std::optional<std::uint64_t> secondOffset;
  std::string behindTable;

  std::size_t add(std::string object) {
    objects.push_back(std::move(object));
    return objects.size() - 1;
  }

  static std::string head(unsigned kind, std::uint64_t count) {
    if (count < 15) return std::string(1, static_cast<char>(kind << 4 | count));
    return std::string(1, static_cast<char>(kind << 4 | 15U)) + "\x12" + wide(count, 4);
  }
  static std::string integer(std::size_t width, std::uint64_t n) {
    return std::string(1, static_cast<char>(0x10 | std::countr_zero(width))) + wide(n, width);
  }
  static std::string longInteger(std::uint64_t high, std::uint64_t low) {
    return "\x14" + wide(high, 8) + wide(low, 8);
  }
  static std::string real(double d) { return "\x23" + wide(std::bit_cast<std::uint64_t>(d), 8); }
  static std::string date(double d) { return "\x33" + wide(std::bit_cast<std::uint64_t>(d), 8); }
  static std::string ascii(std::string_view text) { return head(5, text.size()).append(text); }
  static std::string data(std::string_view bytes) { return head(4, bytes.size()).append(bytes); }
  static std::string utf16(std::u16string_view units) {
    std::string bytes = head(6, units.size());
    for (const char16_t unit : units) bytes += wide(unit, 2);
    return bytes;
  }
  std::string array(const std::vector<std::uint64_t>& elements) const {
    return head(10, elements.size()) + references(elements);
  }
  std::string dictionary(const std::vector<std::uint64_t>& keys,
                         const std::vector<std::uint64_t>& values) const {
    return head(13, keys.size()) + references(keys) + references(values);
  }

  std::string bytes() const {
    std::string list = header;
    std::vector<std::uint64_t> offsets;
    for (const std::string& o : objects) {
      offsets.push_back(list.size());
      list += o;
    }
    if (secondOffset) offsets.at(1) = *secondOffset;
    const std::uint64_t tableAt = list.size();
    for (const std::uint64_t offset : offsets) list += wide(offset, offsetWidth);
    list += behindTable + std::string(6, '\0');
    list += wide(statedOffsetWidth.value_or(offsetWidth), 1);
    list += wide(statedReferenceWidth.value_or(referenceWidth), 1);
    return list + wide(objectCount.value_or(objects.size()), 8) + wide(root, 8) +
           wide(table.value_or(tableAt), 8);
  }

 private:
  std::string references(const std::vector<std::uint64_t>& numbers) const {
    std::string bytes;
    for (const std::uint64_t n : numbers) bytes += wide(n, referenceWidth);
    return bytes;
  }
};

// A list of one object.
inline std::string listOfOne(std::string object) {
  BinaryMaker m;
  m.add(std::move(object));
  return m.bytes();
}

// Calls `visit(bytes)` with one list in every width of offsets and of references. It reads as
// kReadingInEveryWidth.
template <class Visit>
void eachWidthOfOffsetsAndReferences(Visit visit) {
  for (std::size_t offsetWidth = 1; offsetWidth <= 8; ++offsetWidth) {
    for (std::size_t referenceWidth = 1; referenceWidth <= 8; ++referenceWidth) {
      BinaryMaker m;
      m.offsetWidth = offsetWidth;
      m.referenceWidth = referenceWidth;
      m.root = 3;
      m.add(BinaryMaker::ascii("key"));
      m.add(BinaryMaker::integer(1, 7));
      m.add(m.dictionary({0}, {1}));
      m.add(m.array({2, 1, 4, 2}));
      m.add(m.array({}));
      visit(m.bytes());
    }
  }
}
inline constexpr char kReadingInEveryWidth[] = "[{6b6579=i7,},i7,[],{6b6579=i7,},]";

}  // namespace qx::plist
