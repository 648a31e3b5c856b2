#pragma once

// Work over nested data that must not nest on the stack, and must end on data that holds itself.

#include <cstddef>
#include <string>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>

namespace qx::detail {

// Equality of a container with a value. Iterative over arrays and dictionaries whose classes keep
// the value model's equality; a pair of containers met again counts as equal, so that cyclic and
// shared data end. Sets within sets nest at most 200 deep: beyond that it raises
// InvalidArgumentException.
bool deepEqual(const Array& a, const PropertyValue& b);
bool deepEqual(const Dictionary& a, const PropertyValue& b);

// Hash of a container from its count and what it holds directly; containers inside count by kind
// and size alone.
std::size_t shallowHash(const Array& a);
std::size_t shallowHash(const Dictionary& d);
// What a member contributes to that.
std::size_t memberHash(const PropertyValue& v);

// "(1, two, \"a b\")", "{age = 42; name = Bob;}". At most 60 levels deep and about 16 MiB long;
// "..." stands for the rest.
std::string describeDeep(const PropertyValue& container);
std::string describeDeep(const Object& container);

}  // namespace qx::detail
