#pragma once

// What stands at a place of a qualifier tree: one of exactly the library's classes, whose meaning
// is known and which is walked without recursion, or something that has to be asked.

#include <cstdint>

#include <QXFoundation/qualifier.h>

namespace qx::detail {

enum class NodeKind : std::uint8_t {
  conjunction,
  disjunction,
  negation,
  constantTest,
  keyPairTest,
  custom
};

// The class that was made, whatever it derives from.
NodeKind exactKind(const Object& object);

// A node as its class sees it. `object` is null for a member that is no object at all.
struct Node {
  NodeKind kind = NodeKind::custom;
  const Object* object = nullptr;

  static Node of(const PropertyValue& member) {
    const Object* o = member.object();
    return {o == nullptr ? NodeKind::custom : exactKind(*o), o};
  }
  static Node of(const QXQualifier& qualifier) { return {exactKind(qualifier), &qualifier}; }

  bool isCompound() const { return kind <= NodeKind::negation; }

  // Of and, or; null when it has none.
  const Array* members() const {
    return kind == NodeKind::conjunction
               ? static_cast<const QXAndQualifier*>(object)->qualifiers().get()
               : static_cast<const QXOrQualifier*>(object)->qualifiers().get();
  }
  // Of not; null when it has none.
  const QXQualifier* inner() const {
    return static_cast<const QXNotQualifier*>(object)->qualifier().get();
  }
  const ConstantTest& constantTest() const {
    return static_cast<const QXKeyValueQualifier*>(object)->test();
  }
  const KeyPairTest& keyPairTest() const {
    return static_cast<const QXKeyComparisonQualifier*>(object)->test();
  }
};

// How far qualifiers may nest; a qualifier that holds itself is told by going beyond. Walking
// raises InvalidArgumentException there.
inline constexpr std::size_t kMaxNesting = std::size_t{1} << 22;
[[noreturn]] void raiseNesting();

// Asks a member of and, or that is none of the library's nodes: by the protocol, else by selector,
// which raises where the member can not be evaluated.
bool evaluateCustom(const PropertyValue& member, const PropertyValue& object);

}  // namespace qx::detail
