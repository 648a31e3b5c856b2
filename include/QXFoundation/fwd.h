// Forward declarations of the value model, and the null object.
#pragma once

#include <QXFoundation/export.h>

namespace qx {

class Object;
class Class;
class Protocol;
class PropertyValue;
class StringArg;
class Selector;
class String;
class MutableString;
class Number;
class DecimalNumber;
class Data;
class MutableData;
class Date;
class Array;
class MutableArray;
class Dictionary;
class MutableDictionary;
class Set;
class MutableSet;
class Error;

template <class T>
class Ref;
template <class T>
class In;
template <class T>
class ClassBuilder;

// The type of `qx::null`, the one explicit "no value" object. It can be stored in containers; nil
// can not.
struct Null {
  // For the one below.
  explicit constexpr Null(int) {}
};
// The null object.
inline constexpr Null null{0};

// Three-way result of `compare` and its like, receiver against argument.
enum class ComparisonResult : signed char { ascending = -1, same = 0, descending = 1 };

}  // namespace qx
