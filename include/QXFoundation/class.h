// Class: what the library knows of a class at run time. Its objects describe the application's
// classes too; see class_builder.h for how a class is declared.
//
//     const qx::Class* c = qx::classNamed("Person");
//     if (c && c->isSubclassOf(qx::classOf<Animal>())) ...
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/string_arg.h>

namespace qx {

class Archiver;
class Unarchiver;

// A named set of operations that a class may declare itself to offer. In C++ it is an abstract
// struct with `static const Protocol& protocol()`; see ClassBuilder::conforms.
class Protocol {
 public:
  // The name lives for ever (a literal).
  constexpr explicit Protocol(const char* name) : name_(name) {}
  Protocol(const Protocol&) = delete;
  Protocol& operator=(const Protocol&) = delete;
  const char* name() const { return name_; }

 private:
  const char* name_;
};

namespace detail {

// Room for a member pointer, opaque.
struct alignas(8) Payload {
  unsigned char bytes[16] = {};
};

// What a property is read from: an object, or a plain struct that was described.
class Subject {
 public:
  static Subject of(const Object& o) { return Subject(&o); }
  template <class T>
    requires(!std::is_base_of_v<Object, T>)
  static Subject of(const T& record) {
    return Subject(&record);
  }
  // The subject as the C++ type that declared the property.
  template <class T>
  const T& as() const {
    if constexpr (std::is_base_of_v<Object, T>) {
      return static_cast<const T&>(*static_cast<const Object*>(address_));
    } else {
      return *static_cast<const T*>(address_);
    }
  }
  template <class T>
  T& mutableAs() const {
    return const_cast<T&>(as<T>());
  }
  const void* address() const { return address_; }

 private:
  explicit Subject(const void* address) : address_(address) {}
  const void* address_;
};

// The types of fields that are read in place, without making a value.
enum class FieldType : std::uint8_t {
  none,  // only the getter knows
  boolean,
  int8,
  int16,
  int32,
  int64,
  uint8,
  uint16,
  uint32,
  uint64,
  single,
  real,
  text,   // std::string
  value,  // PropertyValue
};

// What a field or parameter takes of values, told without taking it.
struct Taken {
  bool (*fits)(const PropertyValue&);
  const char* (*wanted)();  // for people: "a string"
};

struct Operation;

struct Property {
  std::string_view name;
  PropertyValue (*get)(const Subject&, const Payload&);
  void (*set)(const Subject&, const Payload&, const PropertyValue&);  // null: by `setter` at most
  // Where the field stands, borrowed; null where the type is `none`.
  const void* (*field)(const Subject&, const Payload&);
  FieldType type;
  Payload payload;
  // The class's operation "setName:", which stores what has no `set`; null: read-only. Found when
  // the class is built.
  const Operation* setter = nullptr;
  // What `set` takes; null: it alone knows.
  const Taken* taken = nullptr;
};

struct Operation {
  Selector selector;
  PropertyValue (*call)(const PropertyValue& receiver, const Payload&,
                        const PropertyValue* arguments);
  std::size_t argumentCount;
  Payload payload;
  // What its only argument may be; null: `call` alone knows, or takes another number of arguments.
  const Taken* taken = nullptr;
};

// Which of the two sides of a class an operation is sought on.
enum class Side : bool { instance, cls };

struct ClassRecord;

}  // namespace detail

// A class as an object. Immortal and immutable; thread-safe.
class QX_EXPORT Class : public Object {
 public:
  // The run-time name, such as "NSString" or "Person".
  const char* name() const;
  // Null for a root class.
  const Class* superclass() const;
  bool isSubclassOf(const Class& other) const;
  bool instancesRespondToSelector(Selector selector) const;
  bool conformsToProtocol(const Protocol& protocol) const;
  // An instance made by the class's text initialiser; nil where the class has none or refuses the
  // text.
  PropertyValue initWithString(StringArg text) const;

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  std::string description() const override;
  Ref<Object> copy() const override;

  // Inside the library: what the class declares.
  const detail::ClassRecord& record() const { return *record_; }

 protected:
  friend struct detail::ClassRecord;
  // Inside the library.
  explicit Class(const detail::ClassRecord* record)
      : Object(detail::ObjectKind::cls, detail::kLeaf), record_(record) {}

 private:
  const detail::ClassRecord* record_;
};

// The class of that name, of the library, or of the application once it was registered; null when
// there is none.
QX_EXPORT const Class* classNamed(StringArg name);

QX_EXPORT const Class& classObject(detail::Type<Object>);
QX_EXPORT const Class& classObject(detail::Type<Class>);

namespace detail {
// The object behind a protocol's interface, or null when the value's class does not declare it.
QX_EXPORT void* protocolInterface(const PropertyValue& value, const Protocol& protocol);
}  // namespace detail

// The value as the interface P, borrowed, when its class declares to conform to P; null otherwise.
template <class P>
P* asProtocol(const PropertyValue& value) {
  return static_cast<P*>(detail::protocolInterface(value, P::protocol()));
}

}  // namespace qx
