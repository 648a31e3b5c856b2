#include <algorithm>
#include <bit>
#include <string>
#include <vector>

#include <QXFoundation/archiver.h>
#include <QXFoundation/array.h>
#include <QXFoundation/date.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/number.h>
#include <QXFoundation/set.h>
#include <QXFoundation/string.h>

#include "frame/array_storage.h"
#include "frame/class_record.h"
#include "frame/deep.h"
#include "frame/dictionary_storage.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "platform/archive_format.h"
#include "platform/plist_builder.h"

namespace qx {

using detail::archive::Tag;

struct Unarchiver::State {
  State(Unarchiver& o, std::string_view b)
      : owner(o), bytes(b), equalities(kFreeComparisons + kComparisonsOfByte * b.size()) {
    const std::string_view magic = detail::archive::kMagic;
    if (!std::string_view(bytes).starts_with(magic)) fail("these bytes are no archive");
    at = magic.size();
    if (byte() != detail::archive::kVersion)
      fail("the archive is of a version that is not known here");
  }

  [[noreturn]] void fail(const std::string& reason) const {
    detail::raiseInvalidArgument(kFailure + std::to_string(at) + ": " + reason);
  }

  // ---- bytes

  std::size_t remaining() const { return bytes.size() - at; }
  unsigned char byte() {
    if (remaining() == 0) fail("it ends within a value");
    return static_cast<unsigned char>(bytes[at++]);
  }
  std::uint64_t number() {
    std::uint64_t n = 0;
    for (unsigned shift = 0;; shift += 7) {
      const unsigned char b = byte();
      if (shift == 63 && b > 1) fail("a number is too large");
      n |= std::uint64_t{b & 0x7FU} << shift;
      if ((b & 0x80) == 0) return n;
    }
  }
  template <class Bits>
  Bits fixed() {
    if (remaining() < sizeof(Bits)) fail("it ends within a value");
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof(Bits); ++i) bits |= std::uint64_t{byte()} << (8 * i);
    return static_cast<Bits>(bits);
  }
  // A count of things that take at least `size` bytes each: what cannot be there is refused before
  // memory is taken.
  std::size_t count(std::size_t size) {
    const std::uint64_t n = number();
    const std::size_t left = remaining() - std::min(remaining(), promised);
    if (n > left / size) fail("a count is larger than what follows");
    return static_cast<std::size_t>(n);
  }
  // A count of values, which remain promised until `promisedValue` has given them: containers
  // within each other can not count the same bytes.
  std::size_t promise(std::size_t valuesOfEach) {
    const std::size_t n = count(valuesOfEach);
    promised += n * valuesOfEach;
    return n;
  }
  std::string_view run(std::size_t size) {
    const std::string_view r = std::string_view(bytes).substr(at, size);
    at += size;
    return r;
  }

  // ---- values

  PropertyValue decode() {
    const unsigned char code = byte();
    const bool isMutable = (code & detail::archive::kMutable) != 0;
    const Tag tag = static_cast<Tag>(code & ~unsigned{detail::archive::kMutable});
    if (isMutable && !hasMutableVariant(tag)) fail("a value of an unknown kind");
    switch (tag) {
      case Tag::nil:
        return {};
      case Tag::null:
        return null;
      case Tag::no:
        return false;
      case Tag::yes:
        return true;
      case Tag::signedInteger: {
        const std::uint64_t z = number();
        return static_cast<std::int64_t>(z >> 1 ^ (~(z & 1) + 1));
      }
      case Tag::unsignedInteger:
        return number();
      case Tag::single:
        return std::bit_cast<float>(fixed<std::uint32_t>());
      case Tag::real:
        return std::bit_cast<double>(fixed<std::uint64_t>());
      case Tag::reference:
        return reference();
      default:
        return decodeObject(tag, isMutable);
    }
  }

  static bool hasMutableVariant(Tag tag) {
    return tag == Tag::narrowString || tag == Tag::wideString || tag == Tag::data ||
           tag == Tag::array || tag == Tag::dictionary || tag == Tag::set;
  }

  PropertyValue reference() {
    const std::uint64_t n = number();
    if (n >= objects.size() || objects[n].isNil())
      fail("a reference to an object that is not there");
    if (holdsItself(n)) fail("an immutable container holds itself");
    return objects[n];
  }

  // Whether object n is an immutable container that is being decoded, with nothing but immutable
  // containers between: no program can have made such a cycle, and none could take it apart.
  bool holdsItself(std::size_t n) const {
    if (!isImmutableContainer(objects[n])) return false;
    for (std::size_t i = open.size(); i-- > 0;) {
      if (open[i] == n) return true;
      const PropertyValue& o = objects[open[i]];  // nil: an immutable set, made last
      if (!o.isNil() && !isImmutableContainer(o)) return false;
    }
    return false;
  }

  static bool isImmutableContainer(const PropertyValue& v) {
    return (v.isArray() || v.isDictionary()) &&
           !detail::ObjectAccess::has(*v.object(), detail::kMutableVariant);
  }

  // Takes the number that the object has among the others before what it holds is decoded.
  std::size_t reserveNumber() {
    objects.emplace_back();
    return objects.size() - 1;
  }
  PropertyValue keep(std::size_t number, PropertyValue v) { return objects[number] = std::move(v); }

  PropertyValue decodeObject(Tag tag, bool isMutable) {
    const std::size_t number = reserveNumber();
    if (open.size() == kMaxArchiveDepth) fail("objects are nested more than 512 deep");
    open.push_back(number);
    PropertyValue v = decodeKind(tag, isMutable, number);
    open.pop_back();
    return v;
  }

  PropertyValue decodeKind(Tag tag, bool isMutable, std::size_t number) {
    switch (tag) {
      case Tag::cls:
        return keep(number, PropertyValue(const_cast<Class*>(&classNumber())));
      case Tag::narrowString:
      case Tag::wideString:
        return keep(number, decodeString(tag == Tag::wideString, isMutable));
      case Tag::data: {
        const std::string_view b = run(count(1));
        return keep(number,
                    isMutable ? PropertyValue(MutableData::from(b)) : PropertyValue(Data::from(b)));
      }
      case Tag::date:
        return keep(number, Date::dateWithTimeIntervalSince1970(
                                std::bit_cast<double>(fixed<std::uint64_t>())));
      case Tag::decimal: {
        const std::string_view text = run(count(1));
        const auto decimal = DecimalNumber::initWithString(text);
        if (decimal->stringValue() != text) fail("a decimal number is malformed");
        return keep(number, decimal);
      }
      case Tag::array:
        return decodeArray(isMutable, number);
      case Tag::dictionary:
        return decodeDictionary(isMutable, number);
      case Tag::set:
        return decodeSet(isMutable, number);
      case Tag::instance:
        return decodeInstance(number);
      default:
        fail("a value of an unknown kind");
    }
  }

  PropertyValue decodeString(bool wide, bool isMutable) {
    Ref<String> s;
    if (wide) {
      const std::size_t length = count(2);
      std::u16string units(length, u'\0');
      for (char16_t& unit : units) unit = fixed<std::uint16_t>();
      s = String::fromUtf16(units);
    } else {
      s = String::fromLatin1(run(count(1)));
    }
    return isMutable ? PropertyValue(MutableString::from(s)) : PropertyValue(s);
  }

  PropertyValue promisedValue() {
    --promised;
    return decode();
  }

  PropertyValue element() {
    PropertyValue v = promisedValue();
    if (v.isNil()) fail("a container holds nil");
    return v;
  }

  PropertyValue decodeArray(bool isMutable, std::size_t number) {
    const std::size_t n = promise(1);
    if (isMutable) {
      const auto a = MutableArray::init();
      keep(number, a);
      for (std::size_t i = 0; i < n; ++i) a->addObject(element());
      return a;
    }
    const auto a = detail::ArrayStorage::allocate(n);
    std::fill_n(detail::ArrayStorage::values(*a), n, PropertyValue(null));
    keep(number, a);
    for (std::size_t i = 0; i < n; ++i) detail::ArrayStorage::values(*a)[i] = element();
    return a;
  }

  Ref<String> key() {
    const PropertyValue k = promisedValue();
    if (!k.isString()) fail("a key is no string");
    return k.as<String>();
  }

  // The keys come first, so that an immutable dictionary can stand before its values do.
  PropertyValue decodeDictionary(bool isMutable, std::size_t number) {
    const std::size_t n = promise(2);
    std::vector<Ref<String>> keys;
    for (std::size_t i = 0; i < n; ++i) keys.push_back(key());
    if (isMutable) {
      if (detail::firstRepeatedKey(keys.data(), n) < n) fail("a key stands twice in a dictionary");
      const auto d = MutableDictionary::init();
      keep(number, d);
      for (std::size_t i = 0; i < n; ++i) d->setObject(element(), keys[i]);
      return d;
    }
    std::vector<PropertyValue> places(n, PropertyValue(null));
    for (Ref<String>& k : keys) k = detail::immutableString(k);
    const Ref<Dictionary> d = builder.build(keys.data(), places.data(), n);
    if (d->count() != n) fail("a key stands twice in a dictionary");
    keep(number, d);
    for (std::size_t i = 0; i < n; ++i) detail::DictionaryStorage::values(*d)[i] = element();
    return d;
  }

  PropertyValue decodeSet(bool isMutable, std::size_t number) {
    const std::size_t n = promise(1);
    const auto members = MutableArray::init();
    if (isMutable) {
      const auto s = MutableSet::init();
      keep(number, s);
      for (std::size_t i = 0; i < n; ++i) members->addObject(element());
      const detail::EqualityBudget::Spending spending(equalities);
      placing([&] {
        for (const PropertyValue& m : *members) s->addObject(m);
      });
      return s;
    }
    for (std::size_t i = 0; i < n; ++i) members->addObject(element());
    Ref<Set> s;
    const detail::EqualityBudget::Spending spending(equalities);
    placing([&] { s = Set::from(members); });
    return keep(number, s);
  }

  // Code that may refuse what was decoded without knowing where it stood.
  template <class Work>
  void placing(Work work) {
    try {
      work();
    } catch (const InvalidArgumentException& e) {
      if (e.reason().starts_with(kFailure)) throw;
      fail(e.reason());
    }
  }

  PropertyValue decodeInstance(std::size_t number) {
    const Class& c = classNumber();
    const detail::ClassRecord& record = c.record();
    if (record.makeEmpty == nullptr)
      fail(std::string("the class ") + c.name() + " declares no archiving");
    const Ref<Object> o = record.makeEmpty();
    keep(number, o);
    placing([&] { record.decode(*o, owner); });
    if (byte() != static_cast<unsigned char>(Tag::end)) {
      fail(std::string("an object of the class ") + c.name() + " holds more than it decodes");
    }
    return o;
  }

  const Class& classNumber() {
    const std::uint64_t n = number();
    if (n > classes.size()) fail("a class that is not there");
    if (n < classes.size()) return *classes[n];
    const std::string_view name = run(count(1));
    const Class* c = classNamed(name);
    if (c == nullptr) fail("the class " + std::string(name.substr(0, 100)) + " is not known");
    classes.push_back(c);
    return *c;
  }

  // Empties the mutable containers that were made, so that no circle among them outlives a failed
  // decoding.
  void takeApart() {
    for (const PropertyValue& o : objects) {
      if (const auto a = o.as<MutableArray>()) a->removeAllObjects();
      if (const auto d = o.as<MutableDictionary>()) d->removeAllObjects();
      if (const auto s = o.as<MutableSet>()) s->removeAllObjects();
    }
  }

  // Members of sets whose difference lies deep within them hash alike, and are compared each with
  // each: an archive made for that shall not take the square of its size.
  static constexpr std::uint64_t kFreeComparisons = std::uint64_t{1} << 21;
  static constexpr std::uint64_t kComparisonsOfByte = 4;
  // How every reason begins.
  static constexpr const char* kFailure = "archive, byte ";

  Unarchiver& owner;
  std::string bytes;
  std::size_t at = 0;
  std::size_t promised = 0;  // values that the containers being decoded still wait for
  std::vector<PropertyValue> objects;
  std::vector<const Class*> classes;
  detail::DictionaryBuilder builder;
  detail::EqualityBudget equalities;
  std::vector<std::size_t> open;  // numbers of the objects that are being decoded, outermost first
};

Unarchiver::Unarchiver(In<Data> archive)
    : state_(std::make_unique<State>(*this, archive->view())) {}
Unarchiver::~Unarchiver() = default;

PropertyValue Unarchiver::decodeObject() { return state_->decode(); }
bool Unarchiver::isAtEnd() const { return state_->remaining() == 0; }

PropertyValue Unarchiver::unarchiveObjectWithData(In<Data> archive) {
  Unarchiver u(archive);
  try {
    PropertyValue root = u.decodeObject();
    if (!u.isAtEnd()) u.state_->fail("there are bytes after the root object");
    return root;
  } catch (...) {
    u.state_->takeApart();
    throw;
  }
}

PropertyValue Unarchiver::unarchiveObjectWithData(In<Data> archive, Ref<Error>* error) {
  try {
    return unarchiveObjectWithData(archive);
  } catch (const InvalidArgumentException& e) {
    detail::fill(error, Error::errorWithDomain(QXArchiveErrorDomain, 1,
                                               dict({{NSLocalizedDescriptionKey, e.reason()}})));
    return {};
  }
}

}  // namespace qx
