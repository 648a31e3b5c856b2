#include "platform/text_finder.h"

#include <cstring>

#include "frame/string_storage.h"
#include "platform/unit_blocks.h"

namespace qx::detail {
namespace {

// Comparing may look at this many units for each unit of the text, and this many more.
constexpr std::size_t kCreditPerUnit = 4;
constexpr std::size_t kFirstCredit = 4096;

template <class Unit>
bool sameUnits(const Unit* a, const Unit* b, std::size_t count) {
  return std::memcmp(a, b, count * sizeof(Unit)) == 0;
}

}  // namespace

std::size_t findUnit(const unsigned char* units, std::size_t size, unsigned char wanted,
                     std::size_t from) {
  if (from >= size) return kNotFound;
  const void* at = std::memchr(units + from, wanted, size - from);
  return at == nullptr ? kNotFound
                       : static_cast<std::size_t>(static_cast<const unsigned char*>(at) - units);
}

std::size_t findUnit(const char16_t* units, std::size_t size, char16_t wanted, std::size_t from) {
  using Block = UnitBlock<char16_t>;
  const auto sought = Block::all(wanted);
  std::size_t at = from;
  for (; at < size && size - at >= Block::kUnits; at += Block::kUnits) {
    UnitHits<char16_t> hits(Block::load(units + at) == sought);
    if (hits.any()) return at + hits.take();
  }
  for (; at < size; ++at) {
    if (units[at] == wanted) return at;
  }
  return kNotFound;
}

TextFinder::TextFinder(TextSpan text, TextSpan part)
    : text_(text), part_(part), credit_(kFirstCredit + text.size * kCreditPerUnit) {
  impossible_ = part.empty() || part.size > text.size;
  if (impossible_ || text.wide == part.wide) return;
  if (text.wide) {
    widePart_ = part.toUtf16();
    part_ = widePart_;
  } else if (StringStorage::fitsLatin1(part)) {
    narrowPart_ = StringStorage::narrowed(part);
    part_ = TextSpan::latin1(narrowPart_);
  } else {
    impossible_ = true;
  }
}

std::size_t TextFinder::find(std::size_t from) {
  if (impossible_ || from > text_.size || part_.size > text_.size - from) return kNotFound;
  return text_.wide ? findUnits(text_.units(), part_.units(), from)
                    : findUnits(text_.bytes(), part_.bytes(), from);
}

// Where first and last unit stand in their distance, the units between are compared.
template <class Unit>
std::size_t TextFinder::findUnits(const Unit* text, const Unit* part, std::size_t from) {
  using Block = UnitBlock<Unit>;
  const std::size_t last = part_.size - 1;
  if (last == 0) return findUnit(text, text_.size, part[0], from);
  if (table_) return scanWithTable(text, part, from);
  const std::size_t end = text_.size - last;  // of the places where it can begin
  const std::size_t between = last - 1;
  const auto first = Block::all(part[0]);
  const auto final = Block::all(part[last]);
  std::size_t at = from;
  for (; at < end && end - at >= Block::kUnits; at += Block::kUnits) {
    UnitHits<Unit> hits((Block::load(text + at) == first) &
                        (Block::load(text + at + last) == final));
    while (hits.any()) {
      const std::size_t place = at + hits.take();
      if (sameUnits(text + place + 1, part + 1, between)) return place;
      if (credit_ < between) return scanWithTable(text, part, place + 1);
      credit_ -= between;
    }
  }
  for (; at < end; ++at) {
    if (text[at] != part[0] || text[at + last] != part[last]) continue;
    if (sameUnits(text + at + 1, part + 1, between)) return at;
    if (credit_ < between) return scanWithTable(text, part, at + 1);
    credit_ -= between;
  }
  return kNotFound;
}

template <class Unit>
std::size_t TextFinder::scanWithTable(const Unit* text, const Unit* part, std::size_t from) {
  if (!table_) table_.emplace(part, std::size_t{part_.size});
  PrefixTable::Scan<Unit> scan(*table_, part, part_.size);
  for (std::size_t i = from; i < text_.size; ++i) {
    if (scan.take(text[i])) return i + 1 - part_.size;
  }
  return kNotFound;
}

}  // namespace qx::detail
