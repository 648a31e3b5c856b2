#pragma once

// Running a program over objects, and over records of a plain struct.

#include <cstddef>
#include <memory>
#include <vector>

#include <QXFoundation/property_value.h>

#include "qualifiers/bound_program.h"
#include "qualifiers/layout.h"
#include "qualifiers/program.h"
#include "qualifiers/value_kinds.h"

namespace qx::detail {

// Runs over many objects, one after the other, and remembers the layouts it has met. Belongs to one
// thread. The caller holds the objects, none of which is nil.
class ProgramRun {
 public:
  explicit ProgramRun(const Program& program) : program_(program) {}

  // Adds the elements that are accepted to `hits`, an array of exactly the class MutableArray, in
  // their order. The elements are those at the start, whatever code of the application does to the
  // array meanwhile.
  void select(const Array& array, MutableArray& hits);

 private:
  struct Binding {
    Layout layout;
    BoundProgram bound;
  };

  template <class Test>
  struct Unbound;

  // Before code of the application may run: takes a copy of an array that it could change.
  void hold();

  bool accepts(const PropertyValue& value);
  bool acceptsFixed(const Dictionary& dictionary, const Binding& binding);
  bool acceptsObject(Object& object);
  bool acceptsUnbound(const PropertyValue& value);
  bool acceptsChanging(const Dictionary& dictionary, const PropertyValue& value);
  void askForTexts(const PropertyValue& value) const;
  void askAhead(std::size_t at, std::size_t count) const;

  const Binding& bindingOf(const Shape& shape);
  const Binding& bindingOf(const Object& object);
  // The binding with such a layout, made the recent one; null when there is none.
  template <class Source>
  Binding* find(const Source& source);
  Binding& replaceOne();

  static constexpr std::size_t kBindings = 64;
  const Program& program_;
  const std::uint16_t dictionaryClass_ = dictionaryClasses().fixed;
  const Array* array_ = nullptr;
  Ref<Array> held_;
  const PropertyValue* values_ = nullptr;
  std::vector<std::unique_ptr<Binding>> bindings_;
  Binding* recent_ = nullptr;
  std::size_t replaced_ = 0;
};

// Runs over objects of one class, and asks the qualifier itself about those of another. Immutable;
// usable by several threads at once.
class ClassProgram {
 public:
  ClassProgram(const QXQualifier& qualifier, const Class& cls);
  bool accepts(const Object& object) const;

 private:
  const Ref<const QXQualifier> qualifier_;
  const std::uint16_t classIndex_;
  const Program program_;
  Layout layout_;
};

// Runs over records of one described struct. Immutable; usable by several threads at once.
class StructProgram {
 public:
  // Raises InvalidArgumentException when the tree holds a qualifier that can be asked about objects
  // alone.
  StructProgram(const QXQualifier& qualifier, const Class& cls);
  bool accepts(const Subject& record) const;

 private:
  bool test(const Program::Step& step, const Subject& record) const;
  bool testNode(const Node& node, const Subject& record) const;
  PropertyValue read(const KeyPath& path, const Subject& record) const;
  [[noreturn]] void refuse(const PropertyValue& custom) const;
  void refuseCustom(const Node& root) const;

  const Class& class_;
  const Program program_;
  Layout layout_;
};

}  // namespace qx::detail
