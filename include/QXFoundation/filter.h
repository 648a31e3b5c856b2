// Filtering by qualifiers: arrays of objects, and any standard algorithm over described C++ types.
//
//     auto hits = filteredArrayUsingQualifier(people, q);
//
//     struct Row {
//       std::string name;
//       int age;
//     };
//     void describe(qx::ClassBuilder<Row>& c) {  // beside the plain struct
//       c.name("Row").property("name", &Row::name).property("age", &Row::age);
//     }
//     std::erase_if(rows, qx::Matching<Row>(q));
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include <QXFoundation/array.h>
#include <QXFoundation/class.h>
#include <QXFoundation/class_builder.h>
#include <QXFoundation/object.h>
#include <QXFoundation/qualifier.h>

namespace qx {

// A new array of the elements for which the qualifier is true, in their order, duplicates kept;
// empty for a nil qualifier, nil for a nil array. While application code runs (getters,
// evaluators), elements that it takes out of a mutable array are still evaluated. Can be performed
// by selector on arrays.
QX_EXPORT Ref<MutableArray> filteredArrayUsingQualifier(In<Array> array, In<QXQualifier> qualifier);

namespace detail {
class ClassProgram;
class StructProgram;

// The qualifier bound to a class, without the class's C++ type.
class QX_EXPORT BoundToClass {
 public:
  BoundToClass(In<QXQualifier> qualifier, const Class& cls);
  bool accepts(const Object& object) const;
  bool acceptsNil() const;

 private:
  Ref<QXQualifier> qualifier_;
  std::shared_ptr<const ClassProgram> program_;
};

class QX_EXPORT BoundToStruct {
 public:
  BoundToStruct(In<QXQualifier> qualifier, const Class& cls);
  bool accepts(const Subject& record) const;

 private:
  std::shared_ptr<const StructProgram> program_;
};
}  // namespace detail

// A qualifier bound to the described type T: a predicate for algorithms over T, or over Ref<T>
// where T is an Object. It says what evaluateWithObject says, and reads a plain struct's fields
// without making an object. Copies share what was prepared; one may be used by several threads at
// once. A nil qualifier accepts nothing.
//
// A plain struct is no object: a tree with a custom qualifier class raises
// InvalidArgumentException, when the predicate is made, or when it meets one that was added to a
// caller's mutable array since.
template <class T>
class Matching {
  static_assert(
      detail::LibraryClass<T> || Described<T>,
      "Matching<T>: declare  void describe(qx::ClassBuilder<T>&)  beside T, in T's namespace");
  static constexpr bool kIsObject = std::is_base_of_v<Object, T>;

 public:
  // Prepares the qualifier for T; see above for what is refused.
  explicit Matching(In<QXQualifier> qualifier) : bound_(qualifier, classOf<T>()) {}

  // Whether the qualifier accepts the record.
  bool operator()(const T& record) const {
    if constexpr (kIsObject) {
      return bound_.accepts(record);
    } else {
      return bound_.accepts(detail::Subject::of(record));
    }
  }
  // A nil reference is evaluated as a nil object.
  bool operator()(const Ref<T>& object) const
    requires kIsObject
  {
    return object == nullptr ? bound_.acceptsNil() : bound_.accepts(*object.get());
  }

 private:
  std::conditional_t<kIsObject, detail::BoundToClass, detail::BoundToStruct> bound_;
};

}  // namespace qx
