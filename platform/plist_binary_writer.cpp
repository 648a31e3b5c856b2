// Property lists in their binary form.

#include <bit>
#include <limits>
#include <vector>

#include <QXFoundation/data.h>
#include <QXFoundation/date.h>

#include "frame/hash_index.h"
#include "frame/hashing.h"
#include "frame/string_storage.h"
#include "frame/unicode.h"
#include "frame/utf.h"
#include "platform/plist_binary_format.h"
#include "platform/plist_fault.h"
#include "platform/plist_limits.h"
#include "platform/plist_rules.h"
#include "platform/plist_walk.h"
#include "platform/property_list_io.h"

namespace qx::detail {
namespace {

// An object that will stand in the list. Equal leaves of one kind are one object.
struct PlistObject {
  enum class Kind : std::uint8_t {
    boolean,
    signedInteger,
    unsignedInteger,
    single,
    real,
    date,
    ascii,
    utf16,
    data,
    array,
    dictionary
  };

  Kind kind;
  std::uint32_t count;  // elements or entries of a container
  union {
    std::uint64_t bits;    // of a number or date, or where a container's references begin
    const String* string;  // borrowed from the value
    const Data* data;
  };
};

using Kind = PlistObject::Kind;

PlistObject objectOfBits(Kind kind, std::uint64_t bits) {
  PlistObject o{kind, 0, {}};
  o.bits = bits;
  return o;
}

// A visitor that numbers the objects and notes what refers to what. Nothing is written before the
// whole value was found to be writable.
class PlistNumbering {
 public:
  explicit PlistNumbering(const PropertyValue& root) : root_(root) {}

  const std::vector<PlistObject>& objects() const { return objects_; }
  const std::vector<std::uint32_t>& references() const { return references_; }

  void open(const Array& a) { openContainer(Kind::array, a.count(), a.count()); }
  void open(const Dictionary& d) { openContainer(Kind::dictionary, d.count(), 2 * d.count()); }
  void close(const Object&) { open_.pop_back(); }

  // What is met again is written again: whoever reads the list may want to change one alone.
  bool again() {
    if (!checked_) requireWritable(root_, PropertyListFormat::binary);
    checked_ = true;
    return false;
  }

  void key(const String& key) { references_[open_.back().nextKey++] = numberOf(key); }

  void scalar(const PropertyValue& v) {
    const std::uint32_t number = numberOfScalar(v);
    if (!open_.empty()) references_[open_.back().nextValue++] = number;
  }

 private:
  // Places in references_.
  struct Open {
    std::size_t nextKey;
    std::size_t nextValue;
  };

  void openContainer(Kind kind, std::size_t count, std::size_t references) {
    const std::uint32_t number = append(objectOfBits(kind, references_.size()));
    objects_.back().count = static_cast<std::uint32_t>(count);
    if (!open_.empty()) references_[open_.back().nextValue++] = number;
    const std::size_t first = references_.size();
    open_.push_back({first, first + references - count});
    references_.resize(first + references);
  }

  std::uint32_t append(const PlistObject& o) {
    if (objects_.size() >= kMaxPlistObjects) {
      throw PlistFault{PropertyListErrorCode::limitExceeded, "there are too many objects"};
    }
    objects_.push_back(o);
    return static_cast<std::uint32_t>(objects_.size() - 1);
  }

  std::uint32_t numberOfScalar(const PropertyValue& v) {
    if (v.isString()) return numberOf(static_cast<const String&>(*v.object()));
    if (v.isData()) return numberOf(static_cast<const Data&>(*v.object()));
    if (v.isDate()) {
      const auto& date = static_cast<const Date&>(*v.object());
      requireWritableDate(date.timeIntervalSince1970(), PropertyListFormat::binary);
      return numberOf(Kind::date,
                      std::bit_cast<std::uint64_t>(date.timeIntervalSinceReferenceDate()));
    }
    const NumericValue n = writableNumber(v);
    switch (n.kind) {
      case NumberKind::boolean:
        return numberOf(Kind::boolean, n.u);
      case NumberKind::unsignedInteger:
        return numberOf(Kind::unsignedInteger, n.u);
      case NumberKind::single:
        return numberOf(Kind::single, std::bit_cast<std::uint32_t>(static_cast<float>(n.d)));
      case NumberKind::real:
        return numberOf(Kind::real, std::bit_cast<std::uint64_t>(n.d));
      default:
        return numberOf(Kind::signedInteger, n.u);
    }
  }

  // The object that equals the new one, or the new one itself.
  template <class Equals>
  std::uint32_t numberOf(const PlistObject& o, std::uint32_t hash, Equals&& equals) {
    const std::size_t known = index_.find(
        hash, [&](std::size_t i) { return objects_[i].kind == o.kind && equals(objects_[i]); });
    if (known != HashIndex::kAbsent) return static_cast<std::uint32_t>(known);
    const std::uint32_t number = append(o);
    index_.insert(hash, number);
    return number;
  }

  std::uint32_t numberOf(Kind kind, std::uint64_t bits) {
    const auto hash =
        static_cast<std::uint32_t>(hashWord(bits + static_cast<std::uint64_t>(kind)) >> 32);
    return numberOf(objectOfBits(kind, bits), hash,
                    [&](const PlistObject& other) { return other.bits == bits; });
  }

  std::uint32_t numberOf(const String& s) {
    const TextSpan text = StringStorage::span(s);
    PlistObject o = objectOfBits(Kind::utf16, 0);
    o.string = &s;
    if (!text.wide && asciiPrefix(text.latin1View()) == text.size) o.kind = Kind::ascii;
    if (text.wide) requireWritableText(text, PropertyListFormat::binary);
    return numberOf(o, StringStorage::hash(s), [&](const PlistObject& other) {
      return other.string == &s || equalUnits(StringStorage::span(*other.string), text);
    });
  }

  std::uint32_t numberOf(const Data& d) {
    PlistObject o = objectOfBits(Kind::data, 0);
    o.data = &d;
    const auto hash = static_cast<std::uint32_t>(hashBytes(d.bytes(), d.length()));
    return numberOf(o, hash,
                    [&](const PlistObject& other) { return other.data->view() == d.view(); });
  }

  const PropertyValue& root_;
  std::vector<PlistObject> objects_;
  std::vector<std::uint32_t> references_;
  std::vector<Open> open_;
  HashIndex index_;  // of the leaves among objects_
  bool checked_ = false;
};

class BinaryWriter {
 public:
  BinaryWriter(const PlistNumbering& numbering, PlistOutput& out)
      : objects_(numbering.objects()),
        references_(numbering.references()),
        referenceWidth_(widthOf(objects_.size() - 1)),
        out_(out),
        start_(out.size()) {}

  void write() {
    out_.append(kPlistMagic);
    offsets_.reserve(objects_.size());
    for (const PlistObject& o : objects_) {
      offsets_.push_back(out_.size() - start_);
      object(o);
    }
    tableAndTrailer();
  }

 private:
  void object(const PlistObject& o) {
    switch (o.kind) {
      case Kind::boolean:
        return single(o.bits != 0 ? kPlistTrue : kPlistFalse, 0, 0);
      case Kind::signedInteger:
      case Kind::unsignedInteger:
        return integer(o);
      case Kind::single:
        return single(kPlistReal32, o.bits, 4);
      case Kind::real:
        return single(kPlistReal64, o.bits, 8);
      case Kind::date:
        return single(kPlistDate, o.bits, 8);
      case Kind::ascii:
        return bytes(kPlistAscii, StringStorage::span(*o.string).latin1View());
      case Kind::utf16:
        return utf16(StringStorage::span(*o.string));
      case Kind::data:
        return bytes(kPlistData, o.data->view());
      case Kind::array:
        return container(kPlistArray, o.count, o.bits, o.count);
      case Kind::dictionary:
        return container(kPlistDictionary, o.count, o.bits, std::size_t{2} * o.count);
    }
  }

  void single(std::uint8_t marker, std::uint64_t content, std::size_t width) {
    char* to = out_.room(16);
    *to++ = static_cast<char>(marker);
    out_.commit(putBigEndian(to, content, width));
  }

  // The narrow widths are unsigned, so that negative numbers take eight bytes, and what eight bytes
  // would call negative takes sixteen.
  static char* putInteger(char* to, std::uint64_t n, bool isUnsigned) {
    const bool isLong = isUnsigned && n >> 63 != 0;
    const std::size_t width = widthOf(n);
    const unsigned power = isLong ? 4U : static_cast<unsigned>(std::countr_zero(width));
    *to++ = static_cast<char>(kPlistInteger << 4 | power);
    if (isLong) to = putBigEndian(to, 0, 8);
    return putBigEndian(to, n, width);
  }
  void integer(const PlistObject& o) {
    out_.commit(putInteger(out_.room(32), o.bits, o.kind == Kind::unsignedInteger));
  }

  // Room for marker, count and content; the first two are written.
  char* head(PlistKind kind, std::size_t count, std::size_t content) {
    char* to = out_.room(16 + content);
    const bool isLong = count >= kPlistLongSize;
    *to++ =
        static_cast<char>(static_cast<std::size_t>(kind) << 4 | (isLong ? kPlistLongSize : count));
    return isLong ? putInteger(to, count, false) : to;
  }

  void bytes(PlistKind kind, std::string_view content) {
    char* to = head(kind, content.size(), content.size());
    if (!content.empty()) std::memcpy(to, content.data(), content.size());
    out_.commit(to + content.size());
  }

  void utf16(TextSpan text) {
    char* to = head(kPlistUtf16, text.size, 2 * text.size);
    for (std::size_t i = 0; i < text.size; ++i) to = putBigEndian(to, text[i], 2);
    out_.commit(to);
  }

  void container(PlistKind kind, std::size_t count, std::size_t first, std::size_t references) {
    char* to = head(kind, count, references * referenceWidth_);
    for (std::size_t i = 0; i < references; ++i) {
      to = putBigEndian(to, references_[first + i], referenceWidth_);
    }
    out_.commit(to);
  }

  void tableAndTrailer() {
    const std::size_t table = out_.size() - start_;
    const std::size_t width = widthOf(table);
    char* to = out_.room(offsets_.size() * width + kPlistTrailerSize);
    for (const std::size_t offset : offsets_) to = putBigEndian(to, offset, width);
    to = putBigEndian(to, 0, 6);
    to = putBigEndian(to, width, 1);
    to = putBigEndian(to, referenceWidth_, 1);
    to = putBigEndian(to, objects_.size(), 8);
    to = putBigEndian(to, 0, 8);
    out_.commit(putBigEndian(to, table, 8));
  }

  const std::vector<PlistObject>& objects_;
  const std::vector<std::uint32_t>& references_;
  const std::size_t referenceWidth_;
  PlistOutput& out_;
  const std::size_t start_;  // of the list in the output
  std::vector<std::size_t> offsets_;
};

}  // namespace

void writeBinaryPlist(const PropertyValue& root, PlistOutput& out) {
  PlistNumbering numbering(root);
  walkPlist(root, numbering);
  BinaryWriter(numbering, out).write();
}

}  // namespace qx::detail
