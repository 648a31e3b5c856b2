#pragma once

// What is known of a class: its own declarations, and tables that hold them together with the
// inherited ones.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <QXFoundation/class.h>
#include <QXFoundation/class_builder.h>

#include "frame/comparison.h"
#include "frame/key_text.h"

namespace qx::detail {

struct ProtocolConformance {
  const Protocol* protocol;
  void* (*cast)(Object&);
};

// Open addressing over positions in a vector; filled once, then only read.
class FrozenIndex {
 public:
  void build(const std::vector<std::uint32_t>& hashes);
  // Asks `matches(position)` for each candidate; gives the position, or the vector's size.
  template <class Matches>
  std::size_t find(std::uint32_t hash, Matches&& matches) const {
    if (slots_.empty()) return kAbsent;
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = hash & mask; slots_[at] != 0; at = (at + 1) & mask) {
      if (matches(slots_[at] - 1)) return slots_[at] - 1;
    }
    return kAbsent;
  }
  static constexpr std::size_t kAbsent = ~std::size_t{0};

 private:
  std::vector<std::uint32_t> slots_;  // position + 1; 0 is free
};

// Filled by ClassBuilder, then sealed; immutable and immortal from then on.
struct ClassRecord {
  const char* name = "";
  std::string shownName;  // behind `name` of a class that declares none
  const Class* super = nullptr;
  std::uint16_t index = 0;
  // Set for the value model's own classes, whose operations the comparisons know without asking.
  bool core = false;
  // Set for the library's own classes: the composition adds operations to no others.
  bool ofLibrary = false;
  // A bit for each of the nine comparisons, and kComparesItself, that the class or a base declares
  // by itself.
  std::uint16_t ownComparisons = 0;
  std::vector<const ClassRecord*> lineage;  // from the root to this one

  // Declared, then completed by the inherited ones when sealed.
  std::vector<Property> properties;
  std::vector<Operation> operations;
  std::vector<Operation> classOperations;
  std::vector<ProtocolConformance> protocols;
  PropertyValue (*fromText)(StringArg) = nullptr;
  void (*encode)(const Object&, Archiver&) = nullptr;
  void (*decode)(Object&, Unarchiver&) = nullptr;
  Ref<Object> (*makeEmpty)() = nullptr;

  const Class* object = nullptr;

  static constexpr std::uint16_t kComparesItself = 1U << 15;

  // Null when there is none.
  const Property* findProperty(const KeyText& key) const;
  const Operation* findOperation(Selector selector) const;
  const Operation* findClassOperation(Selector selector) const;
  bool declares(Comparison comparison) const {
    return (ownComparisons >> static_cast<unsigned>(comparison) & 1U) != 0;
  }
  bool isA(const ClassRecord& other) const {
    return lineage.size() >= other.lineage.size() && lineage[other.lineage.size() - 1] == &other;
  }

  // Ends the declarations: adds what the composition gives to a class of this name, and what is
  // inherited.
  void seal();

 private:
  void inheritFrom(const ClassRecord* base);
  void indexNames();

  std::vector<std::unique_ptr<KeyText>> propertyKeys_;
  FrozenIndex propertyIndex_;
  FrozenIndex operationIndex_;
  FrozenIndex classOperationIndex_;
};

// An operation of that name, or a property as its getter ("age") or setter ("setAge:").
bool responds(const ClassRecord& record, Selector selector);
// The property that a selector without an operation stands for; null when there is none.
const Property* accessedProperty(const ClassRecord& record, Selector selector);

const Class& classAtIndex(std::uint16_t index);
// Below are the root class, which is also what objects have whose class is not set yet, and the
// class of class objects.
inline constexpr std::uint16_t kFirstDescribedClass = 2;
// The class of the null object.
const Class& nullClass();

// How a class of this library is made, from its describe(). `classObject` of the class calls it.
template <class T>
const Class& buildLibraryClass() {
  static const Class& c = findOrBuildClass(typeid(T), [](ClassRecord& record) {
    record.ofLibrary = true;
    ClassBuilder<T> builder(record);
    describe(builder);
  });
  return c;
}

}  // namespace qx::detail
