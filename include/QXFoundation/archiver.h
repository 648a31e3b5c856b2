// Archiver and Unarchiver: objects and everything they refer to, to bytes and back.
//
//     qx::Ref<qx::Data> bytes = qx::Archiver::archivedDataWithRootObject(person);
//     qx::PropertyValue again = qx::Unarchiver::unarchiveObjectWithData(bytes);
//
// Archives are sequential and without keys: what a class encodes it decodes in the same order. An
// application class takes part by `archived()` in its description:
//
//     void encodeWithCoder(qx::Archiver& a) const { a.encodeObject(name); a.encodeObject(boss); }
//     void decodeWithCoder(qx::Unarchiver& u) { name = u.decode<std::string>(); boss =
//     u.decode<qx::Ref<Person>>(); }
//
// Kept: every kind of value, the kind of each number, mutable variants, identity (an object met
// twice is one object again) and cycles. An object is made empty before it decodes itself, so that
// within a cycle another object can meet it before it is complete. Neither is thread-safe; one
// coder belongs to one thread.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/data.h>
#include <QXFoundation/error.h>
#include <QXFoundation/property_value.h>

namespace qx {

// Objects may be nested this deep in an archive.
inline constexpr std::size_t kMaxArchiveDepth = 512;

// Writes values, one after the other, into an archive.
class QX_EXPORT Archiver {
 public:
  Archiver();
  Archiver(const Archiver&) = delete;
  Archiver& operator=(const Archiver&) = delete;
  ~Archiver();

  // Raises InvalidArgumentException for an object whose class declares no archiving, and beyond
  // kMaxArchiveDepth.
  static Ref<Data> archivedDataWithRootObject(const PropertyValue& root);

  // Writes the value, nil included. Raises as above; the archive is of no use then.
  void encodeObject(const PropertyValue& value);
  // What was encoded so far, as an archive.
  Ref<Data> archiverData() const;
  // How many times encodeObject was called, by the classes of encoded objects too.
  std::size_t objectCount() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Reads the values of an archive in the order in which they were written.
class QX_EXPORT Unarchiver {
 public:
  // Reads what an Archiver wrote. The bytes are copied. Nil raises.
  explicit Unarchiver(In<Data> archive);
  Unarchiver(const Unarchiver&) = delete;
  Unarchiver& operator=(const Unarchiver&) = delete;
  ~Unarchiver();

  // The one root object of an archive. Foreign or damaged bytes, an unknown class, and bytes after
  // the root raise InvalidArgumentException with the reason and the byte; memory is taken in
  // proportion to the bytes. Only classes that declare archiving are made. Bytes from strangers can
  // make objects that refer to each other in a circle, as counted objects of the application can
  // anyway; such a circle is the application's to take apart.
  static PropertyValue unarchiveObjectWithData(In<Data> archive);
  // The same; nil and an error (domain QXArchiveErrorDomain) instead of a raise. `error` may be
  // null.
  static PropertyValue unarchiveObjectWithData(In<Data> archive, Ref<Error>* error);

  // The next value in the order of encoding. Raises as above, and at the end of the archive.
  PropertyValue decodeObject();
  // The same as a C++ type or Ref; a value of another kind raises.
  template <class T>
  T decode() {
    return FromValue<T>::get(decodeObject());
  }
  bool isAtEnd() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qx
