#include "tools/qx/qualifier_forms.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <QXFoundation/array.h>
#include <QXFoundation/class.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/number.h>

#include "tools/qx/failure.h"
#include "tools/qx/json_builder.h"
#include "tools/qx/json_writer.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

using qx::PropertyValue;
using qx::Ref;

// Two levels of JSON for each level of a tree, and two for a constant.
constexpr std::size_t kMaxTreeDepth = kMaxJsonDepth / 2 - 1;

void checkDepth(std::size_t depth) {
  if (depth > kMaxTreeDepth) {
    throw Failure("the tree is nested more than " + std::to_string(kMaxTreeDepth) + " levels deep");
  }
}

// And, or and not with what they hold; everything else is a leaf.
struct Compound {
  const char* name = nullptr;  // null: a leaf
  Ref<qx::Array> members;
};

Compound compoundOf(const PropertyValue& qualifier) {
  if (const auto* q = qualifier.peek<qx::QXAndQualifier>()) return {"and", q->qualifiers()};
  if (const auto* q = qualifier.peek<qx::QXOrQualifier>()) return {"or", q->qualifiers()};
  if (const auto* q = qualifier.peek<qx::QXNotQualifier>())
    return {"not", qx::array(q->qualifier())};
  return {};
}

bool isObjectOfClass(const PropertyValue& v) {
  const bool isJson = v.isString() || v.isNumber() || v.isNull() || v.isArray() || v.isDictionary();
  return !isJson || v.peek<qx::DecimalNumber>() != nullptr;
}

// Keys in the format's own letters stand bare, like in a format.
std::string keyLabel(const Ref<qx::String>& key) {
  if (key == nullptr) return "absent key";
  const std::string text = key->utf8();
  const auto isBare = [](char c) { return qx::detail::format::isWordByte(c) || c == '.'; };
  if (!text.empty() && std::all_of(text.begin(), text.end(), isBare)) return text;
  std::string quoted;
  appendJsonString(quoted, text);
  return quoted;
}

std::string operatorLabel(qx::Selector selector) {
  const Ref<qx::String> text = qx::QXQualifier::stringForOperatorSelector(selector);
  return text == nullptr ? " ? " : " " + text->utf8() + " ";
}

// Constants as JSON; those that JSON does not have as in a cast.
std::string constantLabel(const PropertyValue& v) {
  if (v == nullptr) return "nil";
  if (isObjectOfClass(v))
    return std::string("(") + v.cls()->name() + ")" + printable(v.description());
  std::string text;
  appendJson(text, v);
  return text;
}

// One qualifier in one line.
std::string labelOf(const PropertyValue& qualifier) {
  if (const auto* q = qualifier.peek<qx::QXKeyValueQualifier>()) {
    return keyLabel(q->key()) + operatorLabel(q->selector()) + constantLabel(q->value());
  }
  if (const auto* q = qualifier.peek<qx::QXKeyComparisonQualifier>()) {
    const std::string right =
        q->rightKey() == nullptr ? "absent key" : "key " + keyLabel(q->rightKey());
    return keyLabel(q->leftKey()) + operatorLabel(q->selector()) + right;
  }
  return qualifier == nullptr ? "nil" : compoundOf(qualifier).name;
}

void appendIndented(std::string& out, const PropertyValue& qualifier, std::size_t depth) {
  checkDepth(depth);
  out.append(2 * depth, ' ').append(labelOf(qualifier)) += '\n';
  const Compound compound = compoundOf(qualifier);
  if (compound.name == nullptr) return;
  for (const PropertyValue& member : *compound.members) appendIndented(out, member, depth + 1);
}

// ---- JSON

PropertyValue textOrNull(const Ref<qx::String>& text) {
  return text == nullptr ? PropertyValue(qx::null) : PropertyValue(text);
}

PropertyValue operatorText(qx::Selector selector) {
  return textOrNull(qx::QXQualifier::stringForOperatorSelector(selector));
}

// A decimal number has a class of its own, and is shown with it.
PropertyValue constantDump(const PropertyValue& v) {
  if (v == nullptr) return qx::null;
  if (v.isString()) return qx::dict({{"s", v}});
  if (isObjectOfClass(v)) {
    return qx::dict({{"obj", qx::dict({{"class", v.cls()->name()}, {"string", v.description()}})}});
  }
  if (v.to<std::int64_t>() || v.to<std::uint64_t>()) return qx::dict({{"i", v}});
  if (v.isNumber() && v.as<qx::Number>()->kind() == qx::NumberKind::single)
    return qx::dict({{"f", v.doubleValue()}});
  return qx::dict({{"obj", v}});
}

PropertyValue dump(const PropertyValue& qualifier, std::size_t depth) {
  checkDepth(depth);
  if (qualifier == nullptr) return qx::null;
  if (const auto* q = qualifier.peek<qx::QXKeyValueQualifier>()) {
    return qx::array("kv", textOrNull(q->key()), operatorText(q->selector()),
                     constantDump(q->value()));
  }
  if (const auto* q = qualifier.peek<qx::QXKeyComparisonQualifier>()) {
    return qx::array("kc", textOrNull(q->leftKey()), operatorText(q->selector()),
                     textOrNull(q->rightKey()));
  }
  const Compound compound = compoundOf(qualifier);
  const auto members = qx::MutableArray::init();
  for (const PropertyValue& member : *compound.members) members->addObject(dump(member, depth + 1));
  if (qualifier.peek<qx::QXNotQualifier>() != nullptr)
    return qx::array("not", members->firstObject());
  return qx::array(compound.name, members);
}

// ---- Graphviz

std::string dotQuoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + '"';
}

// Appends the qualifier's node, and what is below it. Gives the node's number; `next` is the first
// free one.
std::size_t appendNodes(std::string& out, const PropertyValue& qualifier, std::size_t& next,
                        std::size_t depth) {
  checkDepth(depth);
  const std::size_t number = next++;
  const Compound compound = compoundOf(qualifier);
  const std::string name = "  n" + std::to_string(number);
  out += name + " [label=" + dotQuoted(labelOf(qualifier)) +
         (compound.name == nullptr ? ", shape=box" : "") + "];\n";
  if (compound.name == nullptr) return number;
  for (const PropertyValue& member : *compound.members) {
    const std::size_t below = appendNodes(out, member, next, depth + 1);
    out += name + " -> n" + std::to_string(below) + ";\n";
  }
  return number;
}

}  // namespace

std::string indentedText(const Ref<qx::QXQualifier>& qualifier) {
  std::string out;
  appendIndented(out, qualifier, 0);
  return out;
}

std::string jsonText(const Ref<qx::QXQualifier>& qualifier) {
  std::string out;
  appendJson(out, dump(qualifier, 0));
  return out + '\n';
}

std::string dotText(const Ref<qx::QXQualifier>& qualifier) {
  std::string out = "digraph qualifier {\n  node [fontname=\"monospace\"];\n";
  std::size_t next = 0;
  appendNodes(out, qualifier, next, 0);
  return out + "}\n";
}

}  // namespace qxtool
