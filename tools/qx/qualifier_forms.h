// Qualifiers as `qx explain` shows them.
#pragma once

#include <string>

#include <QXFoundation/qualifier.h>

namespace qxtool {

// All of these take trees as formats make them, nil included, and give text that ends in a line
// feed. A tree that is nested deeper than what JSON may be is a Failure.

// A line for each qualifier, indented below the one it belongs to.
std::string indentedText(const qx::Ref<qx::QXQualifier>& qualifier);

// ["and", [Q, ...]], ["or", [Q, ...]], ["not", Q], ["kv", key, operator, constant], ["kc", key,
// operator, key]; null for nil, and as operator for text that is none. A constant is null for nil,
// {"s": text}, {"i": integer}, {"f": number of single precision}, {"obj": any other JSON value} or
// {"obj": {"class": name, "string": text}}.
std::string jsonText(const qx::Ref<qx::QXQualifier>& qualifier);

// A digraph for Graphviz.
std::string dotText(const qx::Ref<qx::QXQualifier>& qualifier);

}  // namespace qxtool
