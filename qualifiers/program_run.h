#pragma once

// Running a program over objects, and over records of a plain struct.

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include <QXFoundation/property_value.h>

#include "qualifiers/bindings.h"
#include "qualifiers/block_run.h"
#include "qualifiers/layout.h"
#include "qualifiers/program.h"
#include "qualifiers/value_kinds.h"

namespace qx::detail {

// Runs over many objects, one after the other, and remembers the layouts it has met. Belongs to one
// thread. The caller holds the objects, none of which is nil.
class ProgramRun {
 public:
  explicit ProgramRun(const Program& program) : program_(program), bindings_(program) {}

  // Adds the elements that are accepted to `hits`, an array of exactly the class MutableArray, in
  // their order. The elements are those at the start, whatever code of the application does to the
  // array meanwhile.
  void select(const Array& array, MutableArray& hits);

 private:
  template <class Test>
  struct Unbound;

  // Before code of the application may run: takes a copy of an array that it could change.
  void hold();

  bool accepts(const PropertyValue& value);
  bool acceptsFixed(const Dictionary& dictionary, const Binding& binding);
  bool acceptsObject(Object& object);
  bool acceptsUnbound(const PropertyValue& value);
  bool acceptsChanging(const Dictionary& dictionary, const PropertyValue& value);

  // Each puts the first of the elements [start, end), as far as they are of one kind, into the
  // block, decides them, and gives how many are decided.
  struct Elements;
  std::size_t decideBlock(std::size_t start, std::size_t end);
  std::size_t decideDictionaries(std::size_t start, std::size_t end);
  std::size_t gatherMixed(std::size_t start, std::size_t from, std::size_t end);
  std::size_t decideObjects(std::size_t start, std::size_t end);

  // Both add those of the elements [start, end) that are accepted. As a block, as many as go so,
  // and gives their number.
  std::size_t selectBlock(std::size_t start, std::size_t end, MutableArray& hits);
  void selectOneByOne(std::size_t start, std::size_t end, MutableArray& hits);

  const Program& program_;
  const std::uint16_t dictionaryClass_ = dictionaryClasses().fixed;
  const Array* array_ = nullptr;
  Ref<Array> held_;
  const PropertyValue* values_ = nullptr;
  std::size_t count_ = 0;
  Bindings bindings_;
  BlockRun block_;
};

// A program bound to one class with the first record that comes, which tells where fields stand.
// Usable by several threads at once.
class FirstBinding {
 public:
  const BoundProgram& of(const Program& program, const Layout& layout,
                         const Subject& subject) const {
    if (!isBound_.load(std::memory_order_acquire)) [[unlikely]]
      bind(program, layout, subject);
    return bound_;
  }

 private:
  void bind(const Program& program, const Layout& layout, const Subject& subject) const;

  mutable std::atomic<bool> isBound_ = false;
  mutable std::mutex mutex_;
  mutable BoundProgram bound_;
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
  FirstBinding binding_;
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
  FirstBinding binding_;
};

}  // namespace qx::detail
