#pragma once

// What the subsystems add to the frame: classes that can be found by name, and operations of the
// value types. The one table stands in library/composition.cpp; it is referenced by name, so that
// static linking keeps it.

#include <span>

#include <QXFoundation/class.h>

namespace qx::detail {

class ClassBuilderBase;

// Operations for the class of that name, entered when it is built.
struct AddedOperations {
  const char* className;
  void (*add)(ClassBuilderBase& builder);
};

struct NamedClass {
  const char* name;
  const Class& (*get)();
};

template <class T>
constexpr NamedClass namedClass(const char* name) {
  return {name, []() -> const Class& { return classObject(Type<T>{}); }};
}

std::span<const AddedOperations> addedOperations();
std::span<const NamedClass> libraryClasses();

}  // namespace qx::detail
