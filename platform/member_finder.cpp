#include "platform/member_finder.h"

#include <algorithm>

#include "platform/character_set.h"
#include "platform/unit_blocks.h"

namespace qx::detail {
namespace {

constexpr char32_t kLastByte = 0xFF;
constexpr char32_t kFirstSurrogate = 0xD800;
constexpr Range kNone{kNotFound, 0};

}  // namespace

MemberFinder::MemberFinder(TextSpan text, const CharacterSet& set) : text_(text), set_(set) {
  prepareRuns();
}

// Surrogates are left to the search by characters, which knows about pairs.
void MemberFinder::prepareRuns() {
  for (const CodePointInterval& i : CharacterSetAccess::members(set_)) {
    if (!text_.wide && i.first > kLastByte) return;
    if (runCount_ == kMaxRuns || (text_.wide && i.last >= kFirstSurrogate)) {
      byRuns_ = false;
      return;
    }
    const char32_t last = text_.wide ? i.last : std::min(i.last, kLastByte);
    runs_[runCount_++] = {static_cast<char16_t>(i.first), static_cast<char16_t>(last - i.first)};
  }
}

Range MemberFinder::find(std::size_t from) const {
  if (byRuns_ && runCount_ == 0) return kNone;
  if (byRuns_) {
    return text_.wide ? findInRuns(text_.units(), from) : findInRuns(text_.bytes(), from);
  }
  return text_.wide ? findCharacter(from) : findInBytes(from);
}

// Runs that are not used stand in for the first one.
template <class Unit>
Range MemberFinder::findInRuns(const Unit* units, std::size_t from) const {
  using Block = UnitBlock<Unit>;
  typename Block::Lanes low[kMaxRuns];
  typename Block::Lanes span[kMaxRuns];
  for (std::size_t i = 0; i < kMaxRuns; ++i) {
    const Run& run = runs_[i < runCount_ ? i : 0];
    low[i] = Block::all(static_cast<Unit>(run.low));
    span[i] = Block::all(static_cast<Unit>(run.span));
  }
  std::size_t at = from;
  for (; at < text_.size && text_.size - at >= Block::kUnits; at += Block::kUnits) {
    const auto block = Block::load(units + at);
    UnitHits<Unit> hits((block - low[0] <= span[0]) | (block - low[1] <= span[1]) |
                        (block - low[2] <= span[2]));
    if (hits.any()) return {at + hits.take(), 1};
  }
  for (; at < text_.size; ++at) {
    for (std::size_t i = 0; i < runCount_; ++i) {
      if (static_cast<Unit>(units[at] - runs_[i].low) <= runs_[i].span) return {at, 1};
    }
  }
  return kNone;
}

Range MemberFinder::findInBytes(std::size_t from) const {
  const bool(&member)[256] = CharacterSetAccess::narrow(set_);
  const unsigned char* bytes = text_.bytes();
  std::size_t at = from;
  for (; at < text_.size && text_.size - at >= 8; at += 8) {
    const unsigned char* b = bytes + at;
    if (member[b[0]] || member[b[1]] || member[b[2]] || member[b[3]] || member[b[4]] ||
        member[b[5]] || member[b[6]] || member[b[7]]) {
      break;
    }
  }
  for (; at < text_.size; ++at) {
    if (member[bytes[at]]) return {at, 1};
  }
  return kNone;
}

Range MemberFinder::findCharacter(std::size_t from) const {
  for (std::size_t at = from; at < text_.size;) {
    const std::size_t start = at;
    if (CharacterSetAccess::contains(set_, text_.next(at))) return {start, at - start};
  }
  return kNone;
}

}  // namespace qx::detail
