#pragma once

// Evaluation of many elements at once, step by step instead of element by element: each step tests
// all that reach it in one loop and passes them on to the next steps. No outcome is then a jump to
// predict, and the memory that later elements need is asked for early.

#include <cstddef>
#include <cstdint>
#include <span>

#include "qualifiers/bound_program.h"

namespace qx::detail {

// Where the values of each step stand in dictionaries of several layouts.
class PlaceTable {
 public:
  static constexpr std::size_t kLayouts = 64;
  static constexpr std::uint8_t kAbsent = 0xFF;

  void set(std::size_t step, std::size_t layout, std::uint8_t slot) { slots_[step][layout] = slot; }
  const std::uint8_t* ofStep(std::size_t step) const { return slots_[step]; }

 private:
  std::uint8_t slots_[BoundProgram::kMaxBlockSteps][kLayouts];
};

// Belongs to one thread, and is used for one block after the other.
class BlockRun {
 public:
  static constexpr std::size_t kSize = 128;
  using Index = std::uint8_t;

  // To be filled for each element: where its values or fields begin, and the number of its layout
  // where a table of places is used.
  const void** bases() { return bases_; }
  Index* layouts() { return layouts_; }

  // Both decide the first of the elements, up to one whose test may run code of the application,
  // and give their number. The program suits blocks. Objects all are of the class that it is bound
  // to; dictionaries have values in the places that the table tells for one layout, or for the
  // layout of each.
  std::size_t decideObjects(const BoundProgram& program, std::size_t count);
  std::size_t decideDictionaries(const BoundProgram& program, const PlaceTable& places,
                                 std::size_t layout, std::size_t count);
  static constexpr std::size_t kLayoutOfEach = PlaceTable::kLayouts;

  // The slot whose texts a step of the last block looked into in most dictionaries, so that it pays
  // to ask for those of the next block early.
  std::uint32_t mostTexts() const { return mostTexts_; }
  static constexpr std::uint32_t kNoTexts = ~std::uint32_t{0};

  // The elements that were decided and accepted, ascending; ends with the next block.
  std::span<const Index> accepted() const { return {accepted_, acceptedCount_}; }

 private:
  // Places of each element's value for a step.
  struct OnePlace;
  struct NoPlace;
  struct PlaceByLayout;
  template <class Values>
  struct NarrowText;
  class ShortTexts;
  static constexpr std::size_t kMostTexts = 8;  // that are looked for at once

  template <class Take>
  std::size_t decide(const BoundProgram& program, std::size_t count, Take take);
  template <class Values>
  void testWords(const BoundStep& step, std::size_t at, Values values);
  template <class Values, class Other>
  void testTexts(const BoundStep& step, std::size_t at, Values values, Other other);
  template <class T>
  void testIntegerFields(const BoundStep& step, std::size_t at);
  void testFields(const BoundStep& step, std::size_t at);
  template <class Read, class Other>
  void testReals(const BoundStep& step, std::size_t at, Read read, Other other);
  void testTextFields(const BoundStep& step, std::size_t at);
  template <class Values>
  void testTextsForEquality(const BoundStep& step, std::size_t at, Values values);
  template <class Test, class Ask>
  void split(const BoundStep* const* next, std::size_t at, Test test, Ask ask);
  bool decideOther(const BoundStep& step, const PropertyValue& value, Index element);
  bool decideOtherField(const BoundStep& step, Index element);
  void finish(std::size_t acceptedList);

  static constexpr std::size_t kLists = BoundProgram::kMaxBlockSteps + 2;

  const void* bases_[kSize];
  Index layouts_[kSize];
  // The elements that have reached each step, and the two ends.
  Index lists_[kLists][kSize];
  std::size_t counts_[kLists];
  bool isAscending_[kLists];
  const BoundStep* first_ = nullptr;
  const BoundProgram* program_ = nullptr;
  std::size_t undecided_ = 0;  // the first element whose test may run code of the application
  Index* accepted_ = nullptr;
  std::size_t acceptedCount_ = 0;
  std::uint32_t mostTexts_ = kNoTexts;
};

}  // namespace qx::detail
