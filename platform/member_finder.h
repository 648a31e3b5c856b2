#pragma once

// Finding the characters of a set in a text, prepared once for many finds.

#include <cstddef>

#include <QXFoundation/character_set.h>
#include <QXFoundation/string.h>

#include "frame/text_span.h"

namespace qx::detail {

// Borrows the text and the set.
class MemberFinder {
 public:
  MemberFinder(TextSpan text, const CharacterSet& set);

  // The first member at or after `from`, of one code unit, or two for a surrogate pair; location
  // kNotFound when there is none. A low surrogate at `from` counts without what stands before it.
  Range find(std::size_t from) const;

 private:
  // A run of members among the units: `low`, and as many after it as `span` says.
  struct Run {
    char16_t low;
    char16_t span;
  };
  static constexpr std::size_t kMaxRuns = 3;

  void prepareRuns();
  template <class Unit>
  Range findInRuns(const Unit* units, std::size_t from) const;
  Range findInBytes(std::size_t from) const;
  Range findCharacter(std::size_t from) const;

  TextSpan text_;
  const CharacterSet& set_;
  // Where the members are few runs of single units, sixteen bytes are tested at a time.
  Run runs_[kMaxRuns] = {};
  std::size_t runCount_ = 0;
  bool byRuns_ = true;
};

}  // namespace qx::detail
