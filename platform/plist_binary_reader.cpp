// Property lists from their binary form.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

#include <QXFoundation/data.h>
#include <QXFoundation/date.h>

#include "frame/string_storage.h"
#include "frame/utf.h"
#include "platform/plist_binary_table.h"
#include "platform/plist_builder.h"
#include "platform/plist_fault.h"
#include "platform/plist_limits.h"
#include "platform/property_list_io.h"

namespace qx::detail {
namespace {

std::string_view viewOf(const PlistRecord& r) {
  return {reinterpret_cast<const char*>(r.bytes), r.size};
}

PropertyValue integerOf(const PlistRecord& r) {
  const auto isNegative = [](std::uint64_t n) { return n >> 63 != 0; };
  if (r.size < 8) return static_cast<std::int64_t>(bigEndian(r.bytes, r.size));
  const std::uint64_t low = bigEndian(r.bytes + r.size - 8, 8);
  if (r.size == 8) return static_cast<std::int64_t>(low);
  const std::uint64_t high = bigEndian(r.bytes, 8);
  if (high == 0 && isNegative(low)) return low;
  if (high != (isNegative(low) ? ~std::uint64_t{0} : 0)) {
    PlistTable::fail(r.at, "an integer is beyond 64 bits");
  }
  return static_cast<std::int64_t>(low);
}

PropertyValue dateOf(const PlistRecord& r) {
  const auto seconds = std::bit_cast<double>(bigEndian(r.bytes, 8));
  if (!std::isfinite(seconds)) PlistTable::fail(r.at, "a date is no moment in time");
  return Date::dateWithTimeIntervalSinceReferenceDate(seconds);
}

Ref<String> asciiOf(const PlistRecord& r) {
  const std::string_view text = viewOf(r);
  if (asciiPrefix(text) != text.size()) PlistTable::fail(r.at, "an ASCII string holds other bytes");
  return StringStorage::make(TextSpan::latin1(text));
}

Ref<String> utf16Of(const PlistRecord& r) {
  std::u16string units(r.size / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    units[i] = static_cast<char16_t>(r.bytes[2 * i] << 8 | r.bytes[2 * i + 1]);
  }
  for (std::size_t at = 0; at < units.size();) {
    if (isSurrogate(nextCodePoint(units.data(), units.size(), at))) {
      PlistTable::fail(r.at, "a string holds a lone surrogate");
    }
  }
  return StringStorage::make(units);
}

PropertyValue leafOf(const PlistRecord& r) {
  switch (r.kind()) {
    case kPlistInteger:
      return integerOf(r);
    case kPlistAscii:
      return asciiOf(r);
    case kPlistUtf16:
      return utf16Of(r);
    case kPlistData:
      return Data::from(viewOf(r));
    default:
      break;
  }
  if (r.marker == kPlistDate) return dateOf(r);
  if (r.marker == kPlistReal64) return std::bit_cast<double>(bigEndian(r.bytes, 8));
  if (r.marker == kPlistReal32) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(r.bytes, 4)));
  }
  return r.marker == kPlistTrue;
}

class BinaryReader {
 public:
  BinaryReader(std::string_view bytes, PropertyListMutability mutability)
      : table_(bytes),
        builder_(mutability),
        made_(table_.objectCount(), nullptr),
        sizes_(table_.objectCount(), kUnread),
        unclaimed_(table_.objectBytes()),
        copiesLeft_(maxCopiedValues(bytes.size())) {}

  PropertyValue read() {
    visit(table_.root());
    while (!open_.empty()) advance();
    if (sizes_[table_.root()] > maxExpandedValues(distinct_)) {
      failLimit(table_.record(table_.root()).at);
    }
    return std::move(values_.front());
  }

 private:
  // What sizes_ says of an object: how many values it is when each occurrence within it counts (or
  // nearly 2^32, which stands for more), or one of these.
  static constexpr std::uint32_t kUnread = 0;
  static constexpr std::uint32_t kOpen = ~std::uint32_t{0};  // it is being read

  // A container that is being read: what belongs to it stands on the stacks from there on.
  struct Open {
    PlistRecord record;
    std::uint64_t number;
    std::uint64_t next;  // element or entry
    std::size_t firstValue;
    std::size_t firstKey;
    std::uint64_t size = 1;
    bool isExpected =
        false;  // a dictionary of the keys of the one before, which are not on the stack
  };
  // The references to the keys of a dictionary.
  struct Keys {
    const unsigned char* references = nullptr;
    std::uint64_t count = 0;
  };

  [[noreturn]] static void failLimit(std::size_t at) {
    throw PlistFault{PropertyListErrorCode::limitExceeded,
                     "objects are referred to so often that the list holds too many values", at};
  }

  // Reads objects of the innermost container until one of them is entered, or the container ends.
  void advance() {
    const std::size_t depth = open_.size();
    while (open_.size() == depth) {
      Open& o = open_.back();
      if (o.next == o.record.count) return close();
      const std::uint64_t position = o.next++;
      const bool isArray = o.record.kind() == kPlistArray;
      visit(table_.reference(o.record, isArray ? position : o.record.count + position));
    }
  }

  void visit(std::uint64_t number) {
    if (made_[number] != nullptr) return addAgain(number);
    if (sizes_[number] == kOpen) {
      PlistTable::fail(open_.back().record.at, "a container holds itself");
    }
    const PlistRecord r = table_.record(number);
    if (r.isContainer()) {
      open(r, number);
    } else {
      add(builder_.leaf(makeLeaf(r, number)), 1);
    }
  }

  // Numbers that values hold inline are made at each reference.
  PropertyValue makeLeaf(const PlistRecord& r, std::uint64_t number) {
    if (sizes_[number] == kUnread) claim(r);
    sizes_[number] = 1;
    PropertyValue made = leafOf(r);
    made_[number] = made.object();
    if (builder_.makesMutableLeaves()) owned_.push_back(made);
    return made;
  }

  void addAgain(std::uint64_t number) {
    if (builder_.makesMutableLeaves()) {
      constexpr std::size_t kBytesOfOneValue = 16;
      const PlistRecord r = table_.record(number);
      copy(r.size / kBytesOfOneValue, r.at);
    }
    add(builder_.leaf(made_[number]), sizes_[number]);
  }

  void open(const PlistRecord& r, std::uint64_t number) {
    if (open_.size() >= kMaxPropertyListDepth) {
      throw PlistFault{
          PropertyListErrorCode::limitExceeded,
          "containers are nested more than " + std::to_string(kMaxPropertyListDepth) + " deep",
          r.at};
    }
    if (sizes_[number] == kUnread) {
      claim(r);
      distinct_ += r.count;
    }
    if (builder_.makesMutableContainers()) copy(r.referenceCount() + 1, r.at);
    sizes_[number] = kOpen;
    open_.push_back({r, number, 0, values_.size(), keys_.size()});
    if (r.kind() == kPlistDictionary) readKeys();
  }

  void readKeys() {
    Open& o = open_.back();
    const PlistRecord& r = o.record;
    const std::size_t depth = open_.size();
    if (lastKeys_.size() <= depth) lastKeys_.resize(depth + 1);
    Keys& last = lastKeys_[depth];
    o.isExpected = builder_.expected(depth) != nullptr && last.count == r.count &&
                   std::memcmp(last.references, r.bytes, r.count * table_.referenceWidth()) == 0;
    if (o.isExpected) return;
    last = {r.bytes, r.count};
    for (std::uint64_t i = 0; i < r.count; ++i) keys_.push_back(key(table_.reference(r, i), r));
  }

  Ref<String> key(std::uint64_t number, const PlistRecord& dictionary) {
    if (made_[number] == nullptr) {
      const PlistRecord r = table_.record(number);
      if (!r.isText()) PlistTable::fail(dictionary.at, "a key of a dictionary is no string");
      const PropertyValue made = makeLeaf(r, number);
      Ref<String> shared = builder_.key(static_cast<String*>(made.object()));
      made_[number] = shared.get();
      return shared;
    }
    if (ObjectAccess::kind(*made_[number]) != ObjectKind::string) {
      PlistTable::fail(dictionary.at, "a key of a dictionary is no string");
    }
    return static_cast<String*>(made_[number]);
  }

  void close() {
    const Open o = open_.back();
    PropertyValue made =
        o.record.kind() == kPlistArray
            ? builder_.array(values_.data() + o.firstValue, values_.size() - o.firstValue)
            : dictionary(o);
    values_.resize(o.firstValue);
    open_.pop_back();
    sizes_[o.number] = static_cast<std::uint32_t>(std::min<std::uint64_t>(o.size, kOpen - 1));
    if (!builder_.makesMutableContainers()) made_[o.number] = made.object();
    add(std::move(made), sizes_[o.number]);
  }

  PropertyValue dictionary(const Open& o) {
    const Ref<String>* keys = keys_.data() + o.firstKey;
    PropertyValue d =
        builder_.dictionary(open_.size(), keys, values_.data() + o.firstValue, o.record.count);
    if (d.isNil()) {
      const Ref<String>& repeated = keys[firstRepeatedKey(keys, o.record.count)];
      PlistTable::fail(o.record.at,
                       "the key \"" + repeated->utf8().substr(0, 100) + "\" stands twice");
    }
    keys_.resize(o.firstKey);
    return d;
  }

  void add(PropertyValue v, std::uint64_t size) {
    values_.push_back(std::move(v));
    if (!open_.empty()) open_.back().size += size;
  }

  // Each byte is part of one object alone: otherwise a short list could hold long objects without
  // end.
  void claim(const PlistRecord& r) {
    const std::uint64_t bytes = static_cast<std::uint64_t>(r.bytes - table_.at(r.at)) + r.size;
    if (bytes > unclaimed_) PlistTable::fail(r.at, "objects overlap");
    unclaimed_ -= bytes;
  }

  void copy(std::uint64_t values, std::size_t at) {
    if (values > copiesLeft_) failLimit(at);
    copiesLeft_ -= values;
  }

  PlistTable table_;
  PlistBuilder builder_;
  // By number: leaves that are objects, and containers unless they are mutable. Borrowed: nothing
  // that was made is given up before all is read.
  std::vector<Object*> made_;
  std::vector<PropertyValue> owned_;  // leaves that stand in the list as copies alone
  std::vector<std::uint32_t> sizes_;
  std::vector<Open> open_;
  std::vector<PropertyValue> values_;
  std::vector<Ref<String>> keys_;
  std::vector<Keys> lastKeys_;  // by depth
  std::uint64_t unclaimed_;
  std::uint64_t copiesLeft_;
  std::uint64_t distinct_ = 1;  // values, those of each container counted once
};

}  // namespace

PropertyValue readBinaryPlist(std::string_view bytes, PropertyListMutability mutability) {
  return BinaryReader(bytes, mutability).read();
}

}  // namespace qx::detail
