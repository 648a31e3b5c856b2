#pragma once

// Qualifiers as text for people, in the likeness of a format.

#include <string>

#include <QXFoundation/qualifier.h>

namespace qx::detail {

// Texts end in "..." where they would be longer than this many bytes.
inline constexpr std::size_t kMaxTreeText = 4096;
inline constexpr std::size_t kMaxValueText = 200;

std::string describeTree(const QXQualifier& qualifier);

// A constant: text in quotes, everything else by its description.
std::string describeConstant(const PropertyValue& value);

// One comparison, without what it compares in an object.
std::string describeLeaf(const ConstantTest& test);
std::string describeLeaf(const KeyPairTest& test);

// Cut to the number of bytes, not within a character.
std::string shortened(std::string text, std::size_t limit);

}  // namespace qx::detail
