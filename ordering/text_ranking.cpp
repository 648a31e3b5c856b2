#include "ordering/text_ranking.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

#include "frame/unicode.h"

namespace qx::detail {
namespace {

// A key holds some units, and below them how many units the text still had: at most one more than
// it holds, which says that the text goes on. So a text is before all that it begins, whatever
// units follow, and texts of equal keys are either equal or go on alike.

// Seven Latin-1 units and a byte.
struct NarrowKeys {
  static constexpr std::size_t kUnits = 7;
  static bool goesOn(std::uint64_t key) { return (key & 0xFF) > kUnits; }
  static std::uint64_t of(TextSpan text, std::size_t from, bool lower);
};

// Three 16-bit units and a fourth.
struct WideKeys {
  static constexpr std::size_t kUnits = 3;
  static bool goesOn(std::uint64_t key) { return (key & 0xFFFF) > kUnits; }
  static std::uint64_t of(TextSpan text, std::size_t from, bool lower);
};

template <class Word>
std::uint64_t bigEndian(const unsigned char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  if constexpr (std::endian::native == std::endian::big) return word;
  return sizeof(Word) == 8 ? __builtin_bswap64(word)
                           : __builtin_bswap32(static_cast<std::uint32_t>(word));
}

// The first eight bytes, or all, from the top of the word down.
std::uint64_t leadingBytes(const unsigned char* bytes, std::size_t size) {
  if (size >= 8) return bigEndian<std::uint64_t>(bytes);
  if (size >= 4) {
    return bigEndian<std::uint32_t>(bytes) << 32 | bigEndian<std::uint32_t>(bytes + size - 4)
                                                       << (64 - 8 * size);
  }
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < size; ++i) word |= std::uint64_t{bytes[i]} << (56 - 8 * i);
  return word;
}

// ASCII capitals to small letters, in eight bytes of ASCII at once.
std::uint64_t lowerBytes(std::uint64_t word) {
  constexpr std::uint64_t kEach = 0x0101010101010101U;
  const std::uint64_t fromA = word + kEach * (0x80 - 'A');
  const std::uint64_t beyondZ = word + kEach * (0x7F - 'Z');
  return word | (fromA & ~beyondZ & kEach * 0x80) >> 2;
}

std::uint64_t NarrowKeys::of(TextSpan text, std::size_t from, bool lower) {
  const std::size_t rest = text.size - from;
  std::uint64_t word = leadingBytes(text.bytes() + from, rest) & ~std::uint64_t{0xFF};
  if (lower) word = lowerBytes(word);
  return word | std::min(rest, kUnits + 1);
}

std::uint64_t WideKeys::of(TextSpan text, std::size_t from, bool lower) {
  const std::size_t rest = text.size - from;
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < kUnits; ++i) {
    const char32_t unit = i < rest ? text[from + i] : 0;
    word = word << 16 | (lower ? asciiLower(unit) : unit);
  }
  return word << 16 | std::min(rest, kUnits + 1);
}

// Entries whose texts are alike up to some place, and go on.
struct Run {
  std::size_t first;
  std::size_t count;
};

template <class Keys>
class TextSorter {
 public:
  TextSorter(std::vector<SortEntry>& entries, const std::vector<TextSpan>& texts, bool lower,
             std::vector<unsigned char>& tied)
      : entries_(entries), texts_(texts), lower_(lower), tied_(tied) {}

  void sort() {
    std::vector<Run> runs;
    order({0, entries_.size()}, runs);
    std::vector<Run> next;
    // Texts that begin alike are often the same. That is looked at seldom enough to cost little
    // where it is not so.
    std::size_t comparesWhole = Keys::kUnits;
    for (std::size_t from = Keys::kUnits; !runs.empty(); from += Keys::kUnits) {
      next.clear();
      for (const Run& run : runs) {
        if (from == comparesWhole && areSame(run)) {
          markTied(run);
        } else {
          readKeys(run, from);
          order(run, next);
        }
      }
      if (from == comparesWhole) comparesWhole *= 2;
      runs.swap(next);
    }
  }

 private:
  // Sorts a run by its keys, marks what is equal, and adds what goes on alike to `next`.
  void order(Run run, std::vector<Run>& next) {
    sortEntries(std::span(entries_).subspan(run.first, run.count), room_);
    const std::size_t end = run.first + run.count;
    for (std::size_t i = run.first; i < end;) {
      const std::size_t start = i++;
      while (i < end && entries_[i].key == entries_[start].key) ++i;
      if (i - start == 1) continue;
      if (Keys::goesOn(entries_[start].key)) {
        next.push_back({start, i - start});
      } else {
        markTied({start, i - start});
      }
    }
  }

  void markTied(Run run) {
    const auto first = tied_.begin() + static_cast<std::ptrdiff_t>(run.first);
    std::fill(first + 1, first + static_cast<std::ptrdiff_t>(run.count), 1);
  }

  bool areSame(Run run) const {
    const TextSpan text = textAt(run.first);
    const std::size_t end = run.first + run.count;
    for (std::size_t i = run.first + 1; i < end; ++i) {
      prefetch(i, end, 0);
      const TextSpan other = textAt(i);
      if (other.data != text.data && !equalUnits(other, text)) return false;
    }
    return true;
  }

  void readKeys(Run run, std::size_t from) {
    const std::size_t end = run.first + run.count;
    for (std::size_t i = run.first; i < end; ++i) {
      prefetch(i, end, from);
      entries_[i].key = Keys::of(textAt(i), from, lower_);
    }
  }

  TextSpan textAt(std::size_t entry) const { return texts_[entries_[entry].element]; }

  // Asks for the memory of the texts some entries behind `entry`, from a unit on.
  void prefetch(std::size_t entry, std::size_t end, std::size_t unit) const {
    if (entry + 2 * kAhead < end) __builtin_prefetch(&texts_[entries_[entry + 2 * kAhead].element]);
    if (entry + kAhead < end) {
      const TextSpan ahead = textAt(entry + kAhead);
      __builtin_prefetch(ahead.bytes() + (ahead.wide ? 2 * unit : unit));
    }
  }

  // How many entries ahead memory is asked for.
  static constexpr std::size_t kAhead = 8;

  std::vector<SortEntry>& entries_;
  const std::vector<TextSpan>& texts_;
  const bool lower_;
  std::vector<unsigned char>& tied_;
  std::vector<SortEntry> room_;
};

}  // namespace

std::uint64_t leadingKey(TextSpan text, TextForm form) {
  return form.wide ? WideKeys::of(text, 0, form.lower) : NarrowKeys::of(text, 0, form.lower);
}

void sortTexts(std::vector<SortEntry>& entries, const std::vector<TextSpan>& texts, TextForm form,
               std::vector<unsigned char>& tied) {
  if (form.wide) {
    TextSorter<WideKeys>(entries, texts, form.lower, tied).sort();
  } else {
    TextSorter<NarrowKeys>(entries, texts, form.lower, tied).sort();
  }
}

}  // namespace qx::detail
