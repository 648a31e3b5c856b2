// Property lists from their binary form.

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
#include "platform/plist_rules.h"
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
        known_(table_.objectCount(), kUnread),
        unclaimed_(table_.objectBytes()),
        copiesLeft_(maxCopiedValues(bytes.size())),
        copiedBytesLeft_(maxCopiedBytes(bytes.size())) {}

  PropertyValue read() {
    const PlistRecord r = table_.record(table_.root());
    if (!r.isContainer()) return builder_.leaf(makeLeaf(r, table_.root()));
    open(r, table_.root());
    while (!open_.empty()) advance();
    if (sharesContainers_) requireWalkable(root_);
    return std::move(root_);
  }

 private:
  // What known_ says of an object, unless it is the place of what was made of it.
  static constexpr std::uintptr_t kUnread = 0;
  static constexpr std::uintptr_t kOpen = 1;      // a container that is being read
  static constexpr std::uintptr_t kToRepeat = 2;  // read, and to be made again at each reference

  // A container that is being read: what belongs to it stands on the stacks from there on.
  struct Open {
    PlistRecord record;
    std::uint64_t number;
    std::uint64_t next;  // element or entry
    std::size_t firstValue;
    std::size_t firstKey;
    // A dictionary with the keys of the one before at this depth: neither keys nor values are on
    // the stacks then, as values are put into it at once.
    Ref<Dictionary> expected;
    PropertyValue* slots = nullptr;  // of `expected`
  };
  // The references to the keys of a dictionary.
  struct Keys {
    const unsigned char* references = nullptr;
    std::uint64_t count = 0;
  };

  // Reads objects of the innermost container until one of them is entered, or the container ends.
  void advance() {
    Open& o = open_.back();  // stays where it is until another one is opened
    const std::uint64_t keys = o.record.kind() == kPlistDictionary ? o.record.count : 0;
    while (o.next != o.record.count) {
      const std::uint64_t number = table_.reference(o.record, keys + o.next++);
      const std::uintptr_t known = known_[number];
      if (known > kToRepeat) {
        put(o, again(number));
        continue;
      }
      if (known == kOpen) PlistTable::fail(o.record.at, "a container holds itself");
      const PlistRecord r = table_.record(number);
      if (r.isContainer()) return open(r, number);
      put(o, builder_.leaf(makeLeaf(r, number)));
    }
    close();
  }

  // As the value that comes next in that container.
  void put(Open& o, PropertyValue value) {
    if (o.slots != nullptr) {
      o.slots[o.next - 1] = std::move(value);
    } else {
      values_.push_back(std::move(value));
    }
  }

  // Only what is an object of its own is remembered: not the numbers that values hold inline.
  PropertyValue makeLeaf(const PlistRecord& r, std::uint64_t number) {
    if (known_[number] == kUnread) claim(r);
    PropertyValue made = leafOf(r);
    remember(number, made.object());
    if (builder_.makesMutableLeaves()) owned_.push_back(made);
    return made;
  }

  void remember(std::uint64_t number, Object* made) {
    known_[number] = made == nullptr ? kToRepeat : reinterpret_cast<std::uintptr_t>(made);
  }
  Object* madeOf(std::uint64_t number) const { return reinterpret_cast<Object*>(known_[number]); }

  PropertyValue again(std::uint64_t number) {
    Object* made = madeOf(number);
    if (!ObjectAccess::has(*made, kLeaf)) sharesContainers_ = true;
    if (!builder_.makesMutableLeaves()) return made;
    const PlistRecord r = table_.record(number);
    spend(copiedBytesLeft_, r.size, r.at);
    return builder_.leaf(made);
  }

  void open(const PlistRecord& r, std::uint64_t number) {
    if (open_.size() >= kMaxPropertyListDepth) {
      throw PlistFault{
          PropertyListErrorCode::limitExceeded,
          "containers are nested more than " + std::to_string(kMaxPropertyListDepth) + " deep",
          r.at};
    }
    if (known_[number] == kUnread) claim(r);
    if (builder_.makesMutableContainers()) spend(copiesLeft_, r.referenceCount() + 1, r.at);
    known_[number] = kOpen;
    open_.push_back({r, number, 0, values_.size(), keys_.size(), nullptr});
    if (r.kind() == kPlistDictionary) readKeys();
  }

  void readKeys() {
    Open& o = open_.back();
    const PlistRecord& r = o.record;
    const std::size_t depth = open_.size();
    if (lastKeys_.size() <= depth) lastKeys_.resize(depth + 1);
    Keys& last = lastKeys_[depth];
    if (builder_.expected(depth) != nullptr && last.count == r.count &&
        std::memcmp(last.references, r.bytes, r.count * table_.referenceWidth()) == 0) {
      o.expected = builder_.emptyExpectedDictionary(depth);
      o.slots = DictionaryStorage::values(*o.expected);
      return;
    }
    last = {r.bytes, r.count};
    for (std::uint64_t i = 0; i < r.count; ++i) keys_.push_back(key(table_.reference(r, i), r));
  }

  Ref<String> key(std::uint64_t number, const PlistRecord& dictionary) {
    if (known_[number] <= kToRepeat) {
      const PlistRecord r = table_.record(number);
      if (!r.isText()) PlistTable::fail(dictionary.at, "a key of a dictionary is no string");
      const PropertyValue made = makeLeaf(r, number);
      Ref<String> shared = builder_.key(static_cast<String*>(made.object()));
      remember(number, shared.get());
      return shared;
    }
    if (ObjectAccess::kind(*madeOf(number)) != ObjectKind::string) {
      PlistTable::fail(dictionary.at, "a key of a dictionary is no string");
    }
    return static_cast<String*>(madeOf(number));
  }

  void close() {
    Open o = std::move(open_.back());
    PropertyValue made = finished(o);
    open_.pop_back();
    remember(o.number, builder_.makesMutableContainers() ? nullptr : made.object());
    if (open_.empty()) {
      root_ = std::move(made);
    } else {
      put(open_.back(), std::move(made));
    }
  }

  PropertyValue finished(Open& o) {
    if (o.slots != nullptr) return std::move(o.expected);
    PropertyValue* const values = values_.data() + o.firstValue;
    PropertyValue made = o.record.kind() == kPlistArray
                             ? builder_.array(values, values_.size() - o.firstValue)
                             : dictionary(o, values);
    values_.resize(o.firstValue);
    return made;
  }

  PropertyValue dictionary(const Open& o, PropertyValue* values) {
    const Ref<String>* keys = keys_.data() + o.firstKey;
    PropertyValue d = builder_.dictionary(open_.size(), keys, values, o.record.count);
    if (d.isNil()) {
      const Ref<String>& repeated = keys[firstRepeatedKey(keys, o.record.count)];
      PlistTable::fail(o.record.at,
                       "the key \"" + repeated->utf8().substr(0, 100) + "\" stands twice");
    }
    keys_.resize(o.firstKey);
    return d;
  }

  // Each byte is part of one object alone: otherwise a short list could hold long objects without
  // end.
  void claim(const PlistRecord& r) {
    const std::uint64_t bytes = static_cast<std::uint64_t>(r.bytes - table_.at(r.at)) + r.size;
    if (bytes > unclaimed_) PlistTable::fail(r.at, "objects overlap");
    unclaimed_ -= bytes;
  }

  static void spend(std::uint64_t& left, std::uint64_t amount, std::size_t at) {
    if (amount > left) {
      throw PlistFault{PropertyListErrorCode::limitExceeded,
                       "objects are referred to so often that the list holds too many values", at};
    }
    left -= amount;
  }

  // Shared containers may make a list deeper and larger than any object was when it was read.
  void requireWalkable(const PropertyValue& root) const {
    try {
      requireBounded(root);
    } catch (PlistFault& fault) {
      fault.byte = table_.record(table_.root()).at;
      throw;
    }
  }

  PlistTable table_;
  PlistBuilder builder_;
  // By number. What was made is borrowed: none of it is given up before all is read.
  std::vector<std::uintptr_t> known_;
  PropertyValue root_;
  std::vector<PropertyValue> owned_;  // leaves that stand in the list as copies alone
  std::vector<Open> open_;
  std::vector<PropertyValue> values_;
  std::vector<Ref<String>> keys_;
  std::vector<Keys> lastKeys_;  // by depth
  std::uint64_t unclaimed_;     // bytes
  std::uint64_t copiesLeft_;
  std::uint64_t copiedBytesLeft_;
  bool sharesContainers_ = false;
};

}  // namespace

PropertyValue readBinaryPlist(std::string_view bytes, PropertyListMutability mutability) {
  return BinaryReader(bytes, mutability).read();
}

}  // namespace qx::detail
