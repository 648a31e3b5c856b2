#pragma once

// Key paths of preferences over a plain tree, step by step and with no thought of speed: what the
// library is compared with.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>

namespace test_support {

struct ReferenceFailure {};

struct ReferenceNode;
using ReferenceRef = std::shared_ptr<ReferenceNode>;  // null: absent

struct ReferenceNode {
  enum class Kind { leaf, dictionary, array };
  Kind kind = Kind::leaf;
  qx::PropertyValue leaf;
  std::vector<std::pair<std::u16string, ReferenceRef>> entries;
  std::vector<ReferenceRef> elements;

  bool isDictionary() const { return kind == Kind::dictionary; }
  bool isArray() const { return kind == Kind::array; }

  ReferenceRef entry(const std::u16string& key) const {
    if (!isDictionary()) throw ReferenceFailure();
    for (const auto& [k, v] : entries) {
      if (k == key) return v;
    }
    return nullptr;
  }
  void setEntry(const std::u16string& key, const ReferenceRef& value) {
    if (!isDictionary()) throw ReferenceFailure();
    for (auto& [k, v] : entries) {
      if (k == key) {
        v = value;
        return;
      }
    }
    entries.emplace_back(key, value);
  }
  void removeEntry(const std::u16string& key) {
    if (!isDictionary()) throw ReferenceFailure();
    std::erase_if(entries, [&](const auto& e) { return e.first == key; });
  }
};

inline ReferenceRef referenceContainer(ReferenceNode::Kind kind) {
  auto node = std::make_shared<ReferenceNode>();
  node->kind = kind;
  return node;
}

inline ReferenceRef referenceOf(const qx::PropertyValue& v) {
  auto node = std::make_shared<ReferenceNode>();
  if (const auto d = v.as<qx::Dictionary>()) {
    node->kind = ReferenceNode::Kind::dictionary;
    for (const auto& [key, value] : *d) node->entries.emplace_back(key.utf16(), referenceOf(value));
  } else if (const auto a = v.as<qx::Array>()) {
    node->kind = ReferenceNode::Kind::array;
    for (const auto& value : *a) node->elements.push_back(referenceOf(value));
  } else {
    node->leaf = v;
  }
  return node;
}

inline qx::PropertyValue valueOf(const ReferenceRef& node) {
  if (node == nullptr) return nullptr;
  if (node->isDictionary()) {
    const auto d = qx::MutableDictionary::init();
    for (const auto& [key, value] : node->entries) {
      d->setObject(valueOf(value), qx::String::fromUtf16(key));
    }
    return d;
  }
  if (node->isArray()) {
    const auto a = qx::MutableArray::init();
    for (const auto& value : node->elements) a->addObject(valueOf(value));
    return a;
  }
  return node->leaf;
}

inline std::vector<std::u16string> referenceComponents(const std::u16string& path) {
  std::vector<std::u16string> pieces(1);
  for (const char16_t unit : path) {
    if (unit == u'.') {
      pieces.emplace_back();
    } else {
      pieces.back() += unit;
    }
  }
  return pieces;
}

inline std::int32_t referenceIndex(const std::u16string& component) {
  const std::size_t length = component.size();
  if (length < 4 || component[length - 1] != u']') return -1;
  if (component[length - 2] == u'[') return 0;
  std::uint32_t sum = 0;
  std::uint32_t k = 0;
  for (std::size_t at = length - 2;; --at) {
    sum += (static_cast<std::uint32_t>(component[at]) - 48) * (k ^ 10U);
    ++k;
    if (at == 0) throw ReferenceFailure();
    if (component[at - 1] == u'[') return static_cast<std::int32_t>(sum);
  }
}

inline std::u16string referenceStandardized(const std::u16string& path) {
  std::u16string result;
  bool isFirst = true;
  for (const std::u16string& component : referenceComponents(path)) {
    std::u16string kept = component;
    for (std::size_t p = component.size(); p-- > 0;) {
      if (path[p] == u'[') {
        kept = component.substr(0, p);
        break;
      }
    }
    if (!isFirst) result += u'.';
    isFirst = false;
    result += kept;
  }
  return result;
}

class ReferenceTree {
 public:
  explicit ReferenceTree(const qx::PropertyValue& contents) : root(referenceOf(contents)) {}

  ReferenceRef get(const std::u16string& path) {
    ReferenceRef parent;
    return walk(path, false, parent);
  }

  // Null removes.
  void set(const std::u16string& path, const ReferenceRef& value) {
    ReferenceRef parent;
    walk(path, true, parent);
    const std::size_t dot = path.rfind(u'.');
    if (dot != std::u16string::npos && dot + 1 == path.size()) throw ReferenceFailure();
    const std::u16string leaf =
        referenceStandardized(dot == std::u16string::npos ? path : path.substr(dot + 1));
    if (value == nullptr) {
      parent->removeEntry(leaf);
    } else if (parent->isArray()) {
      setOnElements(*parent, leaf, value);
    } else {
      parent->setEntry(leaf, value);
    }
  }

  ReferenceRef root;

 private:
  static void setOnElements(ReferenceNode& array, const std::u16string& key,
                            const ReferenceRef& value) {
    for (const ReferenceRef& element : array.elements) {
      if (element->isArray()) {
        setOnElements(*element, key, value);
      } else {
        // Each container keeps a copy of its own.
        element->setEntry(key, referenceOf(valueOf(value)));
      }
    }
  }

  static void store(ReferenceNode& parent, const ReferenceRef& value, const std::u16string& key,
                    std::int32_t index) {
    if (index == -1) return parent.setEntry(key, value);
    const auto count = static_cast<std::int64_t>(parent.isArray() ? parent.elements.size()
                                                                  : parent.entries.size());
    if (index > count) return;
    if (!parent.isArray() || index < 0) throw ReferenceFailure();
    if (index == count) {
      parent.elements.push_back(value);
    } else {
      parent.elements[static_cast<std::size_t>(index)] = value;
    }
  }

  ReferenceRef walk(const std::u16string& path, bool create, ReferenceRef& parent) {
    parent = root;
    ReferenceRef current = root;
    std::u16string previousKey;
    std::int32_t carried = -1;
    std::int32_t marker = -1;
    bool isFirst = true;
    for (const std::u16string& component : referenceComponents(path)) {
      if (create && !isFirst) {
        if (current == nullptr) {
          if (marker != -1) {
            const auto array = referenceContainer(ReferenceNode::Kind::array);
            parent->setEntry(previousKey, array);
            parent = array;
          }
          current = referenceContainer(ReferenceNode::Kind::dictionary);
        }
        store(*parent, current, previousKey, carried);
      }
      isFirst = false;
      const ReferenceRef container = current;
      const std::u16string key = referenceStandardized(component);
      carried = referenceIndex(component);
      const ReferenceRef value = container == nullptr ? nullptr : container->entry(key);
      if (value != nullptr && value->isArray() && carried != -1) {
        parent = value;
        if (carried < static_cast<std::int64_t>(value->elements.size())) {
          if (carried < 0) throw ReferenceFailure();
          current = value->elements[static_cast<std::size_t>(carried)];
          marker = carried;
        } else {
          current = nullptr;
          marker = -1;
        }
      } else {
        current = value;
        parent = container;
        marker = carried;
      }
      previousKey = key;
    }
    return current;
  }
};

}  // namespace test_support
