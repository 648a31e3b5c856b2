#include <bit>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#include <QXFoundation/archiver.h>
#include <QXFoundation/array.h>
#include <QXFoundation/date.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/number.h>
#include <QXFoundation/set.h>
#include <QXFoundation/string.h>

#include "frame/class_record.h"
#include "frame/numeric.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "platform/archive_format.h"

namespace qx {

using detail::NumericValue;
using detail::ObjectAccess;
using detail::ObjectKind;
using detail::archive::Tag;

struct Archiver::State {
  explicit State(Archiver& o) : owner(o) {
    out += detail::archive::kMagic;
    out += static_cast<char>(detail::archive::kVersion);
  }

  void tag(Tag t, bool mutableVariant = false) {
    out += static_cast<char>(static_cast<unsigned char>(t) |
                             (mutableVariant ? detail::archive::kMutable : 0));
  }
  void number(std::uint64_t n) {
    for (; n >= 0x80; n >>= 7) out += static_cast<char>(n | 0x80);
    out += static_cast<char>(n);
  }
  template <class Bits>
  void fixed(Bits bits) {
    for (std::size_t i = 0; i < sizeof bits; ++i) out += static_cast<char>(bits >> (8 * i));
  }
  void bytes(std::string_view b) {
    number(b.size());
    out += b;
  }

  void encode(const PropertyValue& v) {
    NumericValue n;
    if (v.isNil()) return tag(Tag::nil);
    if (v.isNull()) return tag(Tag::null);
    const Object* o = v.object();
    const bool coded = o != nullptr && o->cls().record().encode != nullptr;
    if (!coded && detail::numericOf(v, n) && n.kind != NumberKind::decimal) return encodeNumber(n);
    const auto [known, isNew] = numbers.emplace(o, numbers.size());
    if (!isNew) {
      tag(Tag::reference);
      return number(known->second);
    }
    // The count keeps the address from being given to another object while the archive grows.
    kept.push_back(v);
    if (depth == kMaxArchiveDepth) {
      detail::raiseInvalidArgument(
          "-[NSArchiver encodeObject:]: objects are nested more than 512 deep");
    }
    ++depth;
    coded ? encodeInstance(*o) : encodeKind(*o);
    --depth;
  }

  void encodeNumber(const NumericValue& n) {
    switch (n.kind) {
      case NumberKind::boolean:
        return tag(n.i != 0 ? Tag::yes : Tag::no);
      case NumberKind::unsignedInteger:
        tag(Tag::unsignedInteger);
        return number(n.u);
      case NumberKind::single:
        tag(Tag::single);
        return fixed(std::bit_cast<std::uint32_t>(static_cast<float>(n.d)));
      case NumberKind::real:
        tag(Tag::real);
        return fixed(std::bit_cast<std::uint64_t>(n.d));
      default:
        tag(Tag::signedInteger);
        number(static_cast<std::uint64_t>(n.i) << 1 ^ static_cast<std::uint64_t>(n.i >> 63));
    }
  }

  void encodeKind(const Object& o) {
    const bool isMutable = ObjectAccess::has(o, detail::kMutableVariant);
    switch (ObjectAccess::kind(o)) {
      case ObjectKind::string:
        return encodeString(static_cast<const String&>(o), isMutable);
      case ObjectKind::number:
        tag(Tag::decimal);
        return bytes(static_cast<const Number&>(o).stringValue());
      case ObjectKind::data:
        tag(Tag::data, isMutable);
        return bytes(static_cast<const Data&>(o).view());
      case ObjectKind::date:
        tag(Tag::date);
        return fixed(
            std::bit_cast<std::uint64_t>(static_cast<const Date&>(o).timeIntervalSince1970()));
      case ObjectKind::array:
        tag(Tag::array, isMutable);
        return encodeAll(static_cast<const Array&>(o));
      case ObjectKind::set:
        tag(Tag::set, isMutable);
        return encodeAll(*static_cast<const Set&>(o).allObjects());
      case ObjectKind::dictionary:
        return encodeDictionary(static_cast<const Dictionary&>(o), isMutable);
      case ObjectKind::cls:
        tag(Tag::cls);
        return classNumber(static_cast<const Class&>(o));
      default:
        detail::raiseInvalidArgument(std::string("-[NSArchiver encodeObject:]: the class ") +
                                     o.cls().name() + " declares no archiving");
    }
  }

  void encodeString(const String& s, bool isMutable) {
    const detail::TextSpan text = detail::StringStorage::span(s);
    tag(text.wide ? Tag::wideString : Tag::narrowString, isMutable);
    if (!text.wide) return bytes(text.latin1View());
    number(text.size);
    for (std::size_t i = 0; i < text.size; ++i) fixed(static_cast<std::uint16_t>(text[i]));
  }

  void encodeAll(const Array& a) {
    const Ref<Array> elements =
        Array::from(a.begin(), a.count());  // a class's encoding may change what it stands in
    number(elements->count());
    for (const PropertyValue& v : *elements) encode(v);
  }

  void encodeDictionary(const Dictionary& d, bool isMutable) {
    tag(Tag::dictionary, isMutable);
    const Ref<Array> keys = d.allKeys();
    const Ref<Array> values = d.allValues();
    number(keys->count());
    for (const PropertyValue& key : *keys) encode(key);
    for (const PropertyValue& value : *values) encode(value);
  }

  void encodeInstance(const Object& o) {
    tag(Tag::instance);
    classNumber(o.cls());
    o.cls().record().encode(o, owner);
    tag(Tag::end);
  }

  void classNumber(const Class& c) {
    const auto [known, isNew] = classes.emplace(&c, classes.size());
    number(known->second);
    if (isNew) bytes(c.name());
  }

  Archiver& owner;
  std::string out;
  std::unordered_map<const Object*, std::size_t> numbers;
  std::unordered_map<const Class*, std::size_t> classes;
  std::vector<PropertyValue> kept;
  std::size_t depth = 0;
  std::size_t count = 0;
};

Archiver::Archiver() : state_(std::make_unique<State>(*this)) {}
Archiver::~Archiver() = default;

void Archiver::encodeObject(const PropertyValue& value) {
  ++state_->count;
  state_->encode(PropertyValue(value));
}

Ref<Data> Archiver::archiverData() const { return Data::from(state_->out); }
std::size_t Archiver::objectCount() const { return state_->count; }

Ref<Data> Archiver::archivedDataWithRootObject(const PropertyValue& root) {
  Archiver archiver;
  archiver.encodeObject(root);
  return archiver.archiverData();
}

}  // namespace qx
