#include <cstring>
#include <new>

#include <QXFoundation/data.h>

#include "frame/hashing.h"
#include "frame/library_class.h"
#include "frame/object_memory.h"
#include "frame/raise.h"

namespace qx {

namespace {
constexpr std::size_t kMaxBytes = ~std::size_t{0} / 2;
}

Data::Data(detail::Passkey, std::size_t length, unsigned bits)
    : Object(detail::ObjectKind::data, bits | detail::kLeaf), length_(length) {}

// The bytes stand right behind the object.
Ref<Data> Data::from(std::string_view bytes) {
  static const std::uint16_t index = detail::classIndexOf(classOf<Data>());
  if (bytes.size() > kMaxBytes) detail::raiseTooLong("a data");
  void* memory = detail::ObjectMemory::allocate(sizeof(detail::Made<Data>) + bytes.size());
  auto* d = ::new (memory) detail::Made<Data>(detail::Passkey{}, bytes.size());
  detail::ObjectAccess::setClass(*d, index, 0);
  if (!bytes.empty())
    std::memcpy(static_cast<void*>(static_cast<Data*>(d) + 1), bytes.data(), bytes.size());
  return Ref<Data>::adopt(d);
}

const unsigned char* Data::bytes() const {
  if (detail::ObjectAccess::has(*this, detail::kMutableVariant)) {
    return reinterpret_cast<const unsigned char*>(
        static_cast<const MutableData*>(this)->buffer_.data());
  }
  return reinterpret_cast<const unsigned char*>(this + 1);
}

bool Data::isEqual(const PropertyValue& other) const {
  return other.isData() && static_cast<const Data*>(other.object())->view() == view();
}
std::size_t Data::hash() const { return detail::hashBytes(bytes(), length_); }

std::string Data::description() const {
  constexpr char kDigits[] = "0123456789abcdef";
  constexpr std::size_t kShown = 1024;
  std::string text = "<";
  for (std::size_t i = 0; i < length_ && i < kShown; ++i) {
    if (i != 0 && i % 4 == 0) text += ' ';
    text += kDigits[bytes()[i] >> 4];
    text += kDigits[bytes()[i] & 15];
  }
  if (length_ > kShown) text += "...";
  return text + ">";
}

Ref<Object> Data::copy() const { return const_cast<Data*>(this); }
Ref<Object> Data::mutableCopy() const { return MutableData::from(view()); }

MutableData::MutableData(detail::Passkey) : Data(detail::Passkey{}, 0, detail::kMutableVariant) {}
Ref<MutableData> MutableData::from(std::string_view bytes) {
  auto d = make<MutableData>(detail::Passkey{});
  d->appendBytes(bytes);
  return d;
}
void MutableData::appendBytes(std::string_view bytes) {
  buffer_.append(bytes);
  length_ = buffer_.size();
}
void MutableData::setData(std::string_view bytes) {
  buffer_.assign(bytes);
  length_ = buffer_.size();
}
Ref<Object> MutableData::copy() const { return Data::from(view()); }

void describe(ClassBuilder<Data>& c) {
  c.setCore();
  c.name("NSData").inherits<Object>();
  c.property("length", &Data::length);
}
void describe(ClassBuilder<MutableData>& c) {
  c.setCore();
  c.name("NSMutableData").inherits<Data>();
}

const Class& classObject(detail::Type<Data>) { return detail::buildLibraryClass<Data>(); }
const Class& classObject(detail::Type<MutableData>) {
  return detail::buildLibraryClass<MutableData>();
}

}  // namespace qx
