// Data and MutableData: a sequence of bytes.
//
//     auto d = qx::Data::from("bytes");  d->bytes()[0];
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx {

// Immutable bytes. The class is "NSData". Thread-safe.
class QX_EXPORT Data : public Object {
 public:
  // A copy of the bytes.
  static Ref<Data> from(std::string_view bytes);

  // The number of bytes, and the bytes, borrowed; those of mutable data until its next change.
  std::size_t length() const { return length_; }
  const unsigned char* bytes() const;
  // Borrowed from the object; a mutable one's ends with its next change.
  std::string_view view() const { return {reinterpret_cast<const char*>(bytes()), length_}; }

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  // "<0a1b2c3d 4e>", hexadecimal in groups of four bytes; of more than 1024 bytes the first 1024,
  // and "...".
  std::string description() const override;
  Ref<Object> copy() const override;
  Ref<Object> mutableCopy() const override;

  // Inside the library.
  Data(detail::Passkey, std::size_t length, unsigned bits = 0);

 protected:
  // The number of bytes.
  std::size_t length_;
};

// Bytes that change in place. The class is "NSMutableData". Belongs to one thread at a time.
class QX_EXPORT MutableData : public Data {
 public:
  // A copy of the bytes; no bytes.
  static Ref<MutableData> from(std::string_view bytes);
  static Ref<MutableData> init() { return from({}); }

  // Adds bytes behind those there are; replaces them all. The bytes may be the data's own.
  void appendBytes(std::string_view bytes);
  void setData(std::string_view bytes);
  Ref<Object> copy() const override;

  // Inside the library.
  explicit MutableData(detail::Passkey);

 private:
  friend class Data;
  std::string buffer_;
};

QX_EXPORT const Class& classObject(detail::Type<Data>);
QX_EXPORT const Class& classObject(detail::Type<MutableData>);

}  // namespace qx
