#include "qualifiers/tree_printer.h"

#include <algorithm>
#include <vector>

#include "qualifiers/leaf_test.h"
#include "qualifiers/node.h"
#include "qualifiers/operator_table.h"

namespace qx::detail {
namespace {

// True while a tree is printed on this thread: a constant may hold a qualifier, and by that the
// very one at work.
thread_local bool printing = false;

struct Printing {
  Printing() { printing = true; }
  ~Printing() { printing = false; }
  Printing(const Printing&) = delete;
  Printing& operator=(const Printing&) = delete;
};

std::string keyText(const Ref<String>& key) {
  return key == nullptr ? "nil" : shortened(key->utf8(), kMaxValueText);
}

std::string operatorName(Selector selector) {
  const std::string_view text = operatorText(selector);
  if (!text.empty()) return std::string(text);
  return selector.isNull() ? "?" : std::string(selector.text());
}

// Prints from left to right with a list of what is still to come, so that nesting costs no stack.
class TreePrinter {
 public:
  std::string print(const QXQualifier& root) {
    push(Node::of(root), const_cast<QXQualifier*>(&root), false);
    while (!rest_.empty() && out_.size() <= kMaxTreeText) {
      const Item item = std::move(rest_.back());
      rest_.pop_back();
      item.literal != nullptr ? void(out_ += item.literal) : print(item);
    }
    return shortened(std::move(out_), kMaxTreeText);
  }

 private:
  // Something to print: a literal, or a node with the value it came from.
  struct Item {
    const char* literal = nullptr;
    PropertyValue held;
    Node node;
    bool inBrackets = false;
  };

  void push(const char* literal) { rest_.push_back({literal, {}, {}, false}); }
  void push(const Node& node, const PropertyValue& held, bool inBrackets) {
    rest_.push_back({nullptr, held, node, inBrackets});
  }

  void print(const Item& item) {
    switch (item.node.kind) {
      case NodeKind::conjunction:
        return printMembers(item, "and()", " and ");
      case NodeKind::disjunction:
        return printMembers(item, "or()", " or ");
      case NodeKind::negation:
        return printNegation(item.node.inner());
      case NodeKind::constantTest:
        out_ += describeLeaf(item.node.constantTest());
        return;
      case NodeKind::keyPairTest:
        out_ += describeLeaf(item.node.keyPairTest());
        return;
      case NodeKind::custom:
        out_ += item.held.description();
    }
  }

  void printNegation(const QXQualifier* inner) {
    out_ += "not ";
    if (inner == nullptr) {
      out_ += "nil";
    } else {
      push(Node::of(*inner), const_cast<QXQualifier*>(inner), true);
    }
  }

  void printMembers(const Item& item, const char* whenEmpty, const char* connective) {
    const Array* members = item.node.members();
    const std::size_t count = members == nullptr ? 0 : members->count();
    if (count == 0) {
      out_ += whenEmpty;
      return;
    }
    // A single member needs the word told.
    const bool brackets = item.inBrackets || count == 1;
    if (count == 1) out_ += item.node.kind == NodeKind::conjunction ? "and" : "or";
    if (brackets) {
      out_ += '(';
      push(")");
    }
    // Members beyond the limit can not show.
    for (std::size_t i = std::min(count, kMaxTreeText); i-- > 0;) {
      const PropertyValue member = members->begin()[i];
      push(Node::of(member), member, count > 1);
      if (i > 0) push(connective);
    }
  }

  std::string out_;
  std::vector<Item> rest_;
};

}  // namespace

std::string shortened(std::string text, std::size_t limit) {
  if (text.size() <= limit) return text;
  std::size_t end = limit - 3;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  return text + "...";
}

std::string describeConstant(const PropertyValue& value) {
  if (value.isNil()) return "nil";
  if (value.isNull()) return "null";
  if (!value.isString()) return shortened(value.description(), kMaxValueText);
  std::string text = "\"";
  for (const char c : shortened(value.description(), kMaxValueText)) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  return text + '"';
}

std::string describeLeaf(const ConstantTest& test) {
  return keyText(test.path.text()) + ' ' + operatorName(test.selector) + ' ' +
         describeConstant(test.value);
}

std::string describeLeaf(const KeyPairTest& test) {
  return keyText(test.left.text()) + ' ' + operatorName(test.selector) + ' ' +
         keyText(test.right.text());
}

std::string describeTree(const QXQualifier& qualifier) {
  if (printing || exactKind(qualifier) == NodeKind::custom) return qualifier.Object::description();
  const Printing now;
  return TreePrinter().print(qualifier);
}

}  // namespace qx::detail
