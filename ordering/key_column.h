#pragma once

// The keys of a run of elements, in a form in which they are compared without the elements.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <QXFoundation/class.h>

#include "frame/numeric.h"
#include "frame/text_span.h"
#include "ordering/entry_sort.h"
#include "ordering/key_reader.h"
#include "ordering/ranking.h"

namespace qx::detail {

// Filled with one key after the other. Borrows the texts and decimals of the keys: they must stay
// until the column is ranked.
class KeyColumn {
 public:
  // What is known of the comparison of the keys with one another.
  enum class Order : unsigned char {
    // Each compares with each, by the value model's own comparison, into one order.
    total,
    // None supports the comparison: each compares as the same with each.
    none,
    // Anything else, the comparisons of the application's classes included.
    unknown,
  };

  // Of `elements` elements at most. With `ignoringCase`, texts alone support the comparison.
  KeyColumn(std::size_t elements, bool ignoringCase);

  // The key of an element; the elements' numbers must ascend.
  void add(std::uint32_t element, const BorrowedKey& key);
  void add(std::uint32_t element, const PropertyValue& key);

  Order order() const;
  // Ends the column. The order must be total.
  Ranking rank();

 private:
  enum class Kind : unsigned char { empty, integers, reals, numbers, dates, texts, inert, other };

  void addObject(std::uint32_t element, const Object& key);
  void addNumber(std::uint32_t element, const NumericValue& n);
  void addInteger(std::uint32_t element, std::int64_t i);
  void addReal(std::uint32_t element, double d);
  void addDate(std::uint32_t element, double seconds);
  void addMixed(std::uint32_t element, const NumericValue& n);
  void addText(std::uint32_t element, TextSpan text);
  void addUtf8(std::uint32_t element, std::string_view text);

  // True when the column is of that kind, or becomes so; otherwise its order is unknown.
  bool is(Kind kind);
  bool integersAreReals() const;
  void makeReals();
  void makeMixed();
  TextSpan kept(std::u16string text);
  std::vector<unsigned char> tiesByKey() const;
  Ranking rankMixed();

  const std::size_t elements_;
  const bool ignoringCase_;
  Kind kind_ = Kind::empty;
  bool wide_ = false;
  std::vector<SortEntry> entries_;
  std::vector<NumericValue> numbers_;  // of Kind::numbers, by element
  std::vector<TextSpan> texts_;        // of Kind::texts, by element
  std::vector<std::unique_ptr<const std::u16string>> made_;
};

}  // namespace qx::detail
