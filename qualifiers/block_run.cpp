#include "qualifiers/block_run.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace qx::detail {
namespace {

using Index = BlockRun::Index;
using Way = BoundStep::Way;

constexpr auto kAskNothing = [](Index) {};

// Whether `next` tests what the step has rejected for another text under the same key.
bool isAlternative(const BoundStep& step, const BoundStep& next) {
  return next.way == Way::wordText && next.step->key == step.step->key &&
         next.next[1] == step.next[1] && !step.isNegated && !next.isNegated;
}

}  // namespace

// All elements have one layout.
struct BlockRun::OnePlace {
  const void* const* bases;
  std::uint32_t slot;
  const PropertyValue& operator()(Index element) const {
    return static_cast<const PropertyValue*>(bases[element])[slot];
  }
};

// No element has the key.
struct BlockRun::NoPlace {
  const PropertyValue& operator()(Index) const { return kNil; }
};

struct BlockRun::PlaceByLayout {
  const void* const* bases;
  const Index* layouts;
  const std::uint8_t* slots;
  const PropertyValue& operator()(Index element) const {
    const std::uint8_t slot = slots[layouts[element]];
    if (slot == PlaceTable::kAbsent) return kNil;
    return static_cast<const PropertyValue*>(bases[element])[slot];
  }
};

// Jumps lead to steps with lower numbers, so that all that reach a step are known when it is taken.
template <class Take>
std::size_t BlockRun::decide(const BoundProgram& program, std::size_t count, Take take) {
  program_ = &program;
  first_ = program.steps();
  const std::size_t ends = program.stepCount();
  std::fill_n(counts_, ends + 2, 0);
  std::fill_n(isAscending_, ends + 2, true);
  undecided_ = count;
  const std::size_t entry = program.entry();
  for (std::size_t i = 0; i < count; ++i) lists_[entry][i] = static_cast<Index>(i);
  counts_[entry] = count;
  for (std::size_t at = std::min(entry + 1, ends); at-- > 0;) {
    if (counts_[at] != 0) take(first_[at], at);
  }
  finish(ends + 1);
  return undecided_;
}

std::size_t BlockRun::decideObjects(const BoundProgram& program, std::size_t count) {
  return decide(program, count,
                [this](const BoundStep& step, std::size_t at) { testFields(step, at); });
}

std::size_t BlockRun::decideDictionaries(const BoundProgram& program, const PlaceTable& places,
                                         std::size_t layout, std::size_t count) {
  mostTexts_ = kNoTexts;
  return decide(program, count, [&](const BoundStep& step, std::size_t at) {
    const std::uint8_t* slots = places.ofStep(at);
    if (layout != kLayoutOfEach && step.isOfText() && counts_[at] > count / 2)
      mostTexts_ = slots[layout];
    if (layout == kLayoutOfEach) return testWords(step, at, PlaceByLayout{bases_, layouts_, slots});
    if (slots[layout] == PlaceTable::kAbsent) return testWords(step, at, NoPlace());
    testWords(step, at, OnePlace{bases_, slots[layout]});
  });
}

// Every element is written to both lists, and stays in the one that it belongs to.
template <class Test, class Ask>
[[gnu::always_inline]] inline void BlockRun::split(const BoundStep* const* next, std::size_t at,
                                                   Test test, Ask ask) {
  constexpr std::size_t kAhead = 16;
  const auto no = static_cast<std::size_t>(next[0] - first_);
  const auto yes = static_cast<std::size_t>(next[1] - first_);
  const Index* const from = lists_[at];
  Index* const rejected = lists_[no] + counts_[no];
  Index* const accepted = lists_[yes] + counts_[yes];
  const std::size_t count = counts_[at];
  for (std::size_t i = 0; i < std::min(kAhead, count); ++i) ask(from[i]);
  std::size_t hits = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (i + kAhead < count) ask(from[i + kAhead]);
    const Index element = from[i];
    const bool isHit = test(element);
    rejected[i - hits] = element;
    accepted[hits] = element;
    hits += isHit ? 1 : 0;
  }
  isAscending_[no] = isAscending_[at] && counts_[no] == 0;
  isAscending_[yes] = isAscending_[at] && counts_[yes] == 0;
  counts_[no] += count - hits;
  counts_[yes] += hits;
}

// `read(element, real)` says whether a double stands there; else `other(element)` decides.
template <class Read, class Other>
void BlockRun::testReals(const BoundStep& step, std::size_t at, Read read, Other other) {
  const auto by = [&](auto relation) {
    split(
        step.next, at,
        [=, constant = step.real, isNegated = step.isNegated](Index element) {
          double real = 0;
          if (!read(element, real)) [[unlikely]]
            return other(element);
          return relation(real, constant) != isNegated;
        },
        kAskNothing);
  };
  switch (step.relation) {
    case BoundStep::Relation::equal:
      return by(std::equal_to<>());
    case BoundStep::Relation::greater:
      return by(std::greater<>());
    case BoundStep::Relation::greaterOrEqual:
      return by(std::greater_equal<>());
  }
}

template <class Values>
void BlockRun::testWords(const BoundStep& step, std::size_t at, Values values) {
  const auto other = [this, values, &step](Index element) {
    return decideOther(step, values(element), element);
  };
  if (step.way == Way::wordInteger) {
    return split(
        step.next, at,
        [=, known = step](Index element) {
          const PropertyValue& v = values(element);
          if (!WordAccess::isInlineSigned(v)) [[unlikely]]
            return other(element);
          return BoundProgram::acceptsInteger(known, WordAccess::inlineSigned(v));
        },
        kAskNothing);
  }
  if (step.way != Way::wordReal) return testTexts(step, at, values, other);
  const auto read = [values](Index element, double& real) {
    const PropertyValue& v = values(element);
    real = WordAccess::inlineDouble(WordAccess::word(v));
    return WordAccess::isInlineDouble(v);
  };
  testReals(step, at, read, other);
}

template <class Values>
struct BlockRun::NarrowText {
  Values values;
  const BoundProgram* program;
  // Null where none of the library's own stands there, or a wide one.
  const String* operator()(Index element) const {
    const String* text = program->immutableText(values(element));
    return text == nullptr || StringStorage::isWide(*text) ? nullptr : text;
  }
};

template <class Values, class Other>
void BlockRun::testTexts(const BoundStep& step, std::size_t at, Values values, Other other) {
  if (step.way == Way::wordText) return testTextsForEquality(step, at, values);
  const auto askForText = [values](Index element) { __builtin_prefetch(values(element).object()); };
  if (step.way != Way::wordPattern) return split(step.next, at, other, askForText);
  split(
      step.next, at,
      [=, narrowText = NarrowText<Values>{values, program_},
       pattern = step.pattern](Index element) {
        const String* text = narrowText(element);
        if (text == nullptr) [[unlikely]]
          return other(element);
        return pattern->matchesBytes(BoundProgram::bytesOf(*text));
      },
      askForText);
}

// Up to eight texts that fit a word each. Whether a string is one of them is no jump: with as many
// outcomes as texts it could not be foreseen.
class BlockRun::ShortTexts {
 public:
  // False where the step's text is too long.
  bool add(const BoundStep& step) {
    if (step.length > sizeof(std::uint64_t)) return false;
    Text& text = texts_[count_++];
    text.length = step.length;
    std::memcpy(&text.units, step.bytes, step.length);
    std::memset(&text.used, 0xFF, step.length);
    return true;
  }
  // Of an immutable string that is not wide.
  bool have(const String& string) const {
    static_assert(StringStorage::kReadable >= sizeof(std::uint64_t));
    std::uint64_t units = 0;
    std::memcpy(&units, StringStorage::inlineUnits(string), sizeof units);
    unsigned isOne = 0;
    for (std::size_t i = 0; i < count_; ++i) {
      const Text& text = texts_[i];
      isOne |=
          unsigned{string.length() == text.length} & unsigned{(units & text.used) == text.units};
    }
    return isOne != 0;
  }

 private:
  struct Text {
    std::size_t length = 0;
    std::uint64_t units = 0;
    std::uint64_t used = 0;  // the bits of the units that belong to the text
  };
  std::size_t count_ = 0;
  Text texts_[kMostTexts];
};

// "city is one of these" is a chain of equalities, each of which leads on to the next: the text is
// looked at once for all.
template <class Values>
void BlockRun::testTextsForEquality(const BoundStep& step, std::size_t at, Values values) {
  const BoundStep* chain[kMostTexts] = {&step};
  std::size_t length = 1;
  while (length < kMostTexts && isAlternative(*chain[length - 1], *chain[length - 1]->next[0])) {
    chain[length] = chain[length - 1]->next[0];
    ++length;
  }
  const BoundStep* const next[] = {chain[length - 1]->next[0], step.next[1]};
  const auto askForText = [values](Index element) { __builtin_prefetch(values(element).object()); };
  const auto generally = [&chain, length, values, narrowText = NarrowText<Values>{values, program_},
                          this](Index element) {
    const String* text = narrowText(element);
    bool isHit = false;
    for (std::size_t i = 0; i < length; ++i) {
      isHit |= text != nullptr ? BoundProgram::acceptsBytes(*chain[i], BoundProgram::bytesOf(*text))
                               : !isHit && decideOther(*chain[i], values(element), element);
    }
    return isHit;
  };
  ShortTexts shortTexts;
  for (std::size_t i = 0; i < length; ++i) {
    if (!shortTexts.add(*chain[i])) return split(next, at, generally, askForText);
  }
  split(
      next, at,
      [&shortTexts, &generally, narrowText = NarrowText<Values>{values, program_},
       isNegated = step.isNegated](Index element) {
        const String* text = narrowText(element);
        if (text == nullptr) [[unlikely]]
          return generally(element);
        return shortTexts.have(*text) != isNegated;
      },
      askForText);
}

template <class T>
void BlockRun::testIntegerFields(const BoundStep& step, std::size_t at) {
  split(
      step.next, at,
      [known = step, bases = bases_](Index element) {
        return BoundProgram::acceptsInteger(known, BoundProgram::field<T>(known, bases[element]));
      },
      kAskNothing);
}

void BlockRun::testFields(const BoundStep& step, std::size_t at) {
  const auto other = [this, &step](Index element) { return decideOtherField(step, element); };
  switch (step.way) {
    case Way::int32:
      return testIntegerFields<std::int32_t>(step, at);
    case Way::int64:
      return testIntegerFields<std::int64_t>(step, at);
    case Way::real: {
      const auto read = [known = step, bases = bases_](Index element, double& real) {
        real = BoundProgram::field<double>(known, bases[element]);
        return true;
      };
      return testReals(step, at, read, other);
    }
    case Way::text:
    case Way::pattern:
      return testTextFields(step, at);
    default:
      return split(step.next, at, other, kAskNothing);
  }
}

void BlockRun::testTextFields(const BoundStep& step, std::size_t at) {
  const auto textOf = [place = step.place, bases = bases_](Index element) -> const std::string& {
    return *reinterpret_cast<const std::string*>(static_cast<const char*>(bases[element]) + place);
  };
  const auto askForBytes = [textOf](Index element) { __builtin_prefetch(textOf(element).data()); };
  if (step.way == Way::text) {
    return split(
        step.next, at,
        [=, known = step](Index element) {
          return BoundProgram::acceptsBytes(known, textOf(element));
        },
        askForBytes);
  }
  split(
      step.next, at,
      [=, pattern = step.pattern](Index element) { return pattern->matchesBytes(textOf(element)); },
      askForBytes);
}

bool BlockRun::decideOther(const BoundStep& step, const PropertyValue& value, Index element) {
  if (BoundProgram::isQuiet(step, value)) return step.step->test->decide(value);
  undecided_ = std::min(undecided_, std::size_t{element});
  return false;
}

bool BlockRun::decideOtherField(const BoundStep& step, Index element) {
  if (BoundProgram::isQuietField(step)) return BoundProgram::decideField(step, bases_[element]);
  undecided_ = std::min(undecided_, std::size_t{element});
  return false;
}

// Where several steps accept, their elements come one step after the other.
void BlockRun::finish(std::size_t acceptedList) {
  Index* const list = lists_[acceptedList];
  std::size_t count = counts_[acceptedList];
  if (!isAscending_[acceptedList]) {
    bool isAccepted[kSize] = {};
    for (std::size_t i = 0; i < count; ++i) isAccepted[list[i]] = true;
    count = 0;
    for (std::size_t i = 0; i < kSize; ++i) {
      list[count] = static_cast<Index>(i);
      count += isAccepted[i] ? 1 : 0;
    }
  }
  accepted_ = list;
  acceptedCount_ =
      static_cast<std::size_t>(std::lower_bound(list, list + count, undecided_) - list);
}

}  // namespace qx::detail
