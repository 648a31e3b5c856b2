#pragma once

// The way through a value that is to be written: depth first, in order, without recursion.
//
// A visitor has
//
//     void open(const Array&), open(const Dictionary&), close(...)
//     void key(const String&)            // before each value of a dictionary
//     void scalar(const PropertyValue&)  // everything but containers
//     bool again()                       // a container is met again: true to pass it by
//
// Containers that hold themselves, more than kMaxPropertyListDepth of them in one another, and
// values that fan out beyond maxExpandedValues are refused. Whatever is thrown on the way as a
// PlistFault gets the path of the value.

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/property_list.h>

#include "frame/dictionary_storage.h"
#include "platform/plist_fault.h"

namespace qx::detail {

// The containers on the way to the value that is looked at, and what is known of those met before.
class PlistTrail {
 public:
  struct Known {
    std::uint64_t expanded = 0;
    std::size_t height = 0;
    bool entered = false;
    bool open = false;  // it is on the way
  };
  struct Step {
    const Object* container;
    const Shape* shape;           // of a dictionary; null for an array
    const PropertyValue* values;  // elements, or the values of the shape's slots
    std::size_t end;
    Known* known;  // null unless it may be met again
    std::size_t next = 0;
    std::size_t height = 1;      // of the containers left so far within this one, itself included
    std::uint64_t expanded = 1;  // values within, each occurrence counted, itself included
  };

  std::vector<Step> steps;

  // What is known of a container that is about to be entered; null where it can not be met twice.
  // Refuses one that holds itself, and nesting too deep.
  Known* meet(const Object& container);
  void push(const Array& a, Known* known);
  void push(const Dictionary& d, Known* known);
  // Counts a container that was met before and is not entered again.
  void addKnown(const Known& known);
  void pop();
  // Refuses a root whose walk would be far longer than what it is made of.
  void requireBounded() const;
  // "layout.frames[2]", cut to a length for people; empty for the root.
  std::string path() const;

 private:
  void push(Step step, std::size_t count);

  // Only containers with more than one owner can be met twice.
  std::unordered_map<const Object*, Known> shared_;
  std::uint64_t distinct_ = 1;
  std::uint64_t expanded_ = 1;
};

template <class Visitor>
class PlistWalk {
 public:
  explicit PlistWalk(Visitor& visitor) : visitor_(visitor) {}

  void run(const PropertyValue& root) {
    try {
      visit(root);
      while (!trail_.steps.empty()) advance();
      trail_.requireBounded();
    } catch (PlistFault& fault) {
      if (!fault.path) fault.path = trail_.path();
      throw;
    }
  }

 private:
  // Visits values of the innermost container until one of them is entered, or the container ends.
  void advance() {
    const std::size_t depth = trail_.steps.size();
    while (trail_.steps.size() == depth) {
      PlistTrail::Step& s = trail_.steps.back();
      if (s.next == s.end) {
        leave(s);
        return;
      }
      const std::size_t slot = s.next++;
      if (s.shape != nullptr) {
        const String* key = s.shape->key(slot).get();
        if (key == nullptr) continue;
        visitor_.key(*key);
      }
      visit(s.values[slot]);
    }
  }

  void visit(const PropertyValue& v) {
    if (v.isArray()) {
      enter(static_cast<const Array&>(*v.object()));
    } else if (v.isDictionary()) {
      enter(static_cast<const Dictionary&>(*v.object()));
    } else {
      visitor_.scalar(v);
    }
  }

  template <class Container>
  void enter(const Container& c) {
    PlistTrail::Known* known = trail_.meet(c);
    if (known != nullptr && known->entered && visitor_.again()) {
      trail_.addKnown(*known);
    } else {
      visitor_.open(c);
      trail_.push(c, known);
    }
  }

  void leave(const PlistTrail::Step& s) {
    if (s.shape == nullptr) {
      visitor_.close(static_cast<const Array&>(*s.container));
    } else {
      visitor_.close(static_cast<const Dictionary&>(*s.container));
    }
    trail_.pop();
  }

  Visitor& visitor_;
  PlistTrail trail_;
};

template <class Visitor>
void walkPlist(const PropertyValue& root, Visitor& visitor) {
  PlistWalk<Visitor>(visitor).run(root);
}

}  // namespace qx::detail
