#pragma once

// A program bound to the dictionaries of one shape, or to the objects of one class: each step knows
// where its value stands and decides the common cases on the spot.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <QXFoundation/property_value.h>

#include "frame/same_bytes.h"
#include "frame/string_storage.h"
#include "frame/text_span.h"
#include "frame/unicode.h"
#include "frame/word_access.h"
#include "qualifiers/layout.h"
#include "qualifiers/program.h"
#include "qualifiers/value_kinds.h"

namespace qx::detail {

struct BoundStep {
  // What is decided here; what stands in the place and does not fit goes to the step's own test.
  enum class Way : std::uint8_t {
    wordInteger,  // an inline signed integer in a dictionary
    wordReal,     // an inline double in a dictionary
    wordText,     // an immutable string in a dictionary, equal or not
    wordPattern,  // an immutable string in a dictionary, against a pattern that its bytes decide
    wordOther,    // anything in a dictionary
    int32,        // fields of an object
    int64,
    real,
    text,     // equal or not
    pattern,  // against a pattern that the bytes decide
    otherField,
    unbound,  // evaluated without a place
  };

  Way way = Way::unbound;
  FieldType type = FieldType::none;
  // Slot of a dictionary; or bytes from where an object begins to the field, which may stand before
  // that, in a base of its class that comes first.
  std::int32_t place = 0;
  const BoundStep* next[2] = {nullptr, nullptr};  // on false, on true
  // Whether the range of integers, the relation to the real or the equality of texts decides the
  // other way round.
  bool isNegated = false;
  enum class Relation : std::uint8_t { equal, greater, greaterOrEqual };
  Relation relation = Relation::equal;  // to the real
  union {
    std::int64_t low;  // the first integer of the range
    double real;
    std::size_t length;  // of the constant's bytes
  };
  union {
    std::uint64_t span;  // the range's last integer less its first
    const char* bytes;   // the constant's, Latin-1 for a dictionary, UTF-8 for a field
    const WildcardPattern* pattern;
  };
  const Program::Step* step = nullptr;

  BoundStep() : low(0), span(0) {}
  bool isOfText() const { return way == Way::wordText || way == Way::wordPattern; }
};

// What a bound program leaves to others, where nothing has to be held meanwhile.
template <class Test>
struct WithoutHolding {
  const Test& test;
  bool operator()(const Program::Step& step) const { return test(step); }
  void hold() const {}
};
template <class Test>
WithoutHolding(const Test&) -> WithoutHolding<Test>;

class BoundProgram {
 public:
  static constexpr std::size_t kMaxBlockSteps = 16;

  // The layout is that of the dictionaries' shape.
  void bindToShape(const Program& program, const Layout& layout);
  // Without places, which the user of the steps finds by each dictionary's shape.
  void bindToWords(const Program& program);
  // The layout is that of the class of the subject, which tells where the fields stand.
  void bindToClass(const Program& program, const Layout& layout, const Subject& subject);

  // Evaluates over the values of a dictionary that can not change meanwhile, or over the fields at
  // `base`. What has no place is left to `unbound(step)`. Before a comparison that may run code of
  // the application, `unbound.hold()` is called.
  template <class Unbound>
  [[gnu::always_inline]] bool run(const void* base, Unbound&& unbound) const {
    const BoundStep* at = entry_;
    while (at < end_) at = at->next[decide(*at, base, unbound) ? 1 : 0];
    return at != end_;
  }

  // Whether every step has a way of its own and leads on to two different places, few enough steps
  // for whole blocks of elements.
  bool suitsBlocks() const { return suitsBlocks_; }
  // The steps, behind which two ends stand: of the rejected, and of the accepted. Jumps lead to
  // steps before, or to the ends.
  const BoundStep* steps() const { return steps_.data(); }
  std::size_t stepCount() const { return static_cast<std::size_t>(end_ - steps_.data()); }
  std::size_t entry() const { return static_cast<std::size_t>(entry_ - steps_.data()); }

  // The answers of the ways, by the value that stands in the place.
  static bool acceptsInteger(const BoundStep& step, std::int64_t n) {
    return (static_cast<std::uint64_t>(n) - static_cast<std::uint64_t>(step.low) <= step.span) !=
           step.isNegated;
  }
  // NaN is in no relation, so that it orders below the constant, which is none.
  static bool acceptsReal(const BoundStep& step, double d) {
    switch (step.relation) {
      case BoundStep::Relation::equal:
        return (d == step.real) != step.isNegated;
      case BoundStep::Relation::greater:
        return (d > step.real) != step.isNegated;
      default:
        return (d >= step.real) != step.isNegated;
    }
  }
  static bool acceptsText(const BoundStep& step, const String& text) {
    return StringStorage::isWide(text) ? step.isNegated : acceptsBytes(step, bytesOf(text));
  }
  static bool acceptsBytes(const BoundStep& step, std::string_view text) {
    const bool equal =
        text.size() == step.length && sameBytes(text.data(), step.bytes, step.length);
    return equal != step.isNegated;
  }
  static bool decideField(const BoundStep& step, const void* base);

  // Of an immutable string that is not wide.
  static std::string_view bytesOf(const String& text) {
    return {static_cast<const char*>(StringStorage::inlineUnits(text)), text.length()};
  }
  // The string, when it is of exactly the immutable class.
  const String* immutableText(const PropertyValue& v) const {
    const Object* o = v.object();
    return o != nullptr && ObjectAccess::classIndex(*o) == stringIndex_
               ? static_cast<const String*>(o)
               : nullptr;
  }
  template <class T>
  static const T& field(const BoundStep& step, const void* base) {
    return *reinterpret_cast<const T*>(static_cast<const char*>(base) + step.place);
  }

  // Whether the step's own test of that value, or field, runs no code of the application.
  static bool isQuiet(const BoundStep& step, const PropertyValue& v) {
    return comparesQuietly(v) && step.step->test->isQuiet();
  }
  static bool isQuietField(const BoundStep& step) {
    return step.type != FieldType::value && step.step->test->isQuiet();
  }

 private:
  template <class Unbound>
  [[gnu::always_inline]] bool decide(const BoundStep& step, const void* base,
                                     Unbound&& unbound) const {
    switch (step.way) {
      case BoundStep::Way::wordInteger: {
        const PropertyValue& v = slot(step, base);
        if (!WordAccess::isInlineSigned(v)) return other(step, v, unbound);
        return acceptsInteger(step, WordAccess::inlineSigned(v));
      }
      case BoundStep::Way::wordReal: {
        const PropertyValue& v = slot(step, base);
        if (!WordAccess::isInlineDouble(v)) return other(step, v, unbound);
        return acceptsReal(step, WordAccess::inlineDouble(WordAccess::word(v)));
      }
      case BoundStep::Way::wordText: {
        const PropertyValue& v = slot(step, base);
        const String* text = immutableText(v);
        if (text == nullptr) return other(step, v, unbound);
        return acceptsText(step, *text);
      }
      case BoundStep::Way::wordPattern: {
        const PropertyValue& v = slot(step, base);
        const String* text = immutableText(v);
        if (text == nullptr || StringStorage::isWide(*text)) return other(step, v, unbound);
        return step.pattern->matchesBytes(bytesOf(*text));
      }
      case BoundStep::Way::wordOther:
        return other(step, slot(step, base), unbound);
      case BoundStep::Way::int32:
        return acceptsInteger(step, field<std::int32_t>(step, base));
      case BoundStep::Way::int64:
        return acceptsInteger(step, field<std::int64_t>(step, base));
      case BoundStep::Way::real:
        return acceptsReal(step, field<double>(step, base));
      case BoundStep::Way::text:
        return acceptsBytes(step, field<std::string>(step, base));
      case BoundStep::Way::pattern:
        return step.pattern->matchesBytes(field<std::string>(step, base));
      case BoundStep::Way::otherField:
        return otherField(step, base, unbound);
      case BoundStep::Way::unbound:
        break;
    }
    return unbound(*step.step);
  }

  static const PropertyValue& slot(const BoundStep& step, const void* base) {
    return static_cast<const PropertyValue*>(base)[step.place];
  }
  template <class Unbound>
  static bool other(const BoundStep& step, const PropertyValue& v, Unbound&& unbound) {
    if (!isQuiet(step, v)) unbound.hold();
    return step.step->test->decide(v);
  }
  template <class Unbound>
  static bool otherField(const BoundStep& step, const void* base, Unbound&& unbound) {
    if (!isQuietField(step)) unbound.hold();
    return decideField(step, base);
  }
  void start(const Program& program);
  void finish();
  static void setRange(BoundStep& bound, const CompiledTest& test);
  static bool setRelation(BoundStep& bound, const CompiledTest& test);
  void bindWord(BoundStep& bound, const CompiledTest& test);
  void bindField(BoundStep& bound, const CompiledTest& test, const Place& place,
                 const Subject& subject);

  // Behind the steps stand two more, where a run ends: rejected at `end_`, accepted behind it.
  std::vector<BoundStep> steps_;
  const BoundStep* entry_ = nullptr;
  const BoundStep* end_ = nullptr;
  bool suitsBlocks_ = false;
  std::uint16_t stringIndex_ = 0;
};

}  // namespace qx::detail
