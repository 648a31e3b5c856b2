#pragma once

// A qualifier tree as a flat list of tests with jumps, made once for many objects. It is made of
// what can not change: the library's own classes over arrays that are immutable. Everything else
// stands in it as one step, which evaluates that part of the tree as it is at that time.

#include <cstdint>
#include <optional>
#include <vector>

#include <QXFoundation/qualifier.h>

#include "qualifiers/compiled_test.h"
#include "qualifiers/node.h"

namespace qx::detail {

class Program {
 public:
  using Target = std::uint32_t;
  static constexpr Target kAccept = ~Target{0};
  static constexpr Target kReject = kAccept - 1;
  static constexpr std::uint32_t kNoKey = ~std::uint32_t{0};

  struct Step {
    Node node;
    PropertyValue held;  // the node's object; keeps it for as long as the program lives
    std::optional<CompiledTest> test;  // of a constant test
    std::uint32_t key =
        kNoKey;  // number of the first step of the (left) key path; none for an absent key path
    std::uint32_t rightKey = kNoKey;  // of a key pair
    bool singleStep = false;          // the (left) key path has no further steps
    Target onTrue = kAccept;
    Target onFalse = kReject;

    // A test of a constant with what stands under one key.
    bool readsOneKey() const { return test && key != kNoKey && singleStep; }
  };

  // Holds the qualifier. Objects that are evaluated are never nil.
  explicit Program(const QXQualifier& root);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // The distinct first steps of the key paths; a layout tells where each is found.
  const std::vector<Ref<String>>& keys() const { return keys_; }
  const std::vector<Step>& steps() const { return steps_; }
  // Where a run begins.
  Target entry() const { return entry_; }

  // `test(step)` evaluates one step.
  template <class Test>
  bool run(Test&& test) const {
    Target at = entry_;
    while (at < steps_.size()) {
      const Step& step = steps_[at];
      at = test(step) ? step.onTrue : step.onFalse;
    }
    return at == kAccept;
  }

 private:
  // A compound node whose members are compiled from the last to the first, so that where each leads
  // is known.
  struct Open {
    Node node;
    std::size_t left;  // members still to compile
    Target onTrue;
    Target onFalse;
  };

  void open(const Node& node, const PropertyValue& member, Target onTrue, Target onFalse);
  void compileNext();
  void addStep(const Node& node, const PropertyValue& member, Target onTrue, Target onFalse);
  std::uint32_t keyNumber(const KeyPath& path);

  Ref<const QXQualifier> root_;
  std::vector<Step> steps_;
  std::vector<Ref<String>> keys_;
  std::vector<Open> open_;
  Target entry_ = kReject;  // where the part that was compiled last begins
};

}  // namespace qx::detail
