#pragma once

// A program bound to the dictionaries of one shape, or to the objects of one class: each step knows
// where its value stands and decides the common cases on the spot.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <QXFoundation/property_value.h>

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
  std::uint8_t accepted = 0;  // as in CompiledTest
  FieldType type = FieldType::none;
  std::uint32_t place = 0;  // slot of a dictionary, offset in bytes within an object
  const BoundStep* next[2] = {nullptr, nullptr};  // on false, on true
  union {
    std::int64_t integer;
    double real;
    std::size_t length;  // of the constant's bytes
  };
  union {
    const char* bytes;  // the constant's, Latin-1 for a dictionary, UTF-8 for a field
    const WildcardPattern* pattern;
  };
  const Program::Step* step = nullptr;

  BoundStep() : integer(0), bytes(nullptr) {}
};

class BoundProgram {
 public:
  // The layout is that of the dictionaries' shape.
  void bindToShape(const Program& program, const Layout& layout);
  // The layout is that of the object's class; the object tells where its fields stand.
  void bindToClass(const Program& program, const Layout& layout, const Object& object);

  // Evaluates over the values of a dictionary that can not change meanwhile, or over the fields at
  // `base`. What has no place is left to `unbound(step)`. Before a comparison that may run code of
  // the application, `unbound.hold()` is called.
  template <class Unbound>
  [[gnu::always_inline]] bool run(const void* base, Unbound&& unbound) const {
    const BoundStep* at = entry_;
    while (at < end_) at = at->next[decide(*at, base, unbound) ? 1 : 0];
    return at != end_;
  }

  // The slots whose strings are looked into: it pays to ask for their memory early.
  const std::vector<std::uint32_t>& textSlots() const { return textSlots_; }

 private:
  static bool accepts(const BoundStep& step, int order) {
    return (step.accepted >> (order + 1) & 1) != 0;
  }

  template <class T>
  static int order(T a, T b) {
    return (a > b) - (a < b);
  }

  // NaN orders below the constant, which is none.
  static int orderReal(double a, double constant) {
    return a == constant ? 0 : a > constant ? 1 : -1;
  }

  template <class Unbound>
  [[gnu::always_inline]] bool decide(const BoundStep& step, const void* base,
                                     Unbound&& unbound) const {
    switch (step.way) {
      case BoundStep::Way::wordInteger: {
        const PropertyValue& v = slot(step, base);
        if (!WordAccess::isInlineSigned(v)) return other(step, v, unbound);
        return accepts(step, order(WordAccess::inlineSigned(v), step.integer));
      }
      case BoundStep::Way::wordReal: {
        const PropertyValue& v = slot(step, base);
        if (!WordAccess::isInlineDouble(v)) return other(step, v, unbound);
        return accepts(step, orderReal(WordAccess::inlineDouble(WordAccess::word(v)), step.real));
      }
      case BoundStep::Way::wordText: {
        const PropertyValue& v = slot(step, base);
        const String* text = immutableText(v);
        if (text == nullptr) return other(step, v, unbound);
        return accepts(step, equalBytes(*text, step) ? 0 : 1);
      }
      case BoundStep::Way::wordPattern: {
        const PropertyValue& v = slot(step, base);
        const String* text = immutableText(v);
        if (text == nullptr || StringStorage::isWide(*text)) return other(step, v, unbound);
        return step.pattern->matchesBytes(
            {static_cast<const char*>(StringStorage::inlineUnits(*text)), text->length()});
      }
      case BoundStep::Way::wordOther:
        return other(step, slot(step, base), unbound);
      case BoundStep::Way::int32:
        return accepts(step, order(std::int64_t{field<std::int32_t>(step, base)}, step.integer));
      case BoundStep::Way::int64:
        return accepts(step, order(field<std::int64_t>(step, base), step.integer));
      case BoundStep::Way::real:
        return accepts(step, orderReal(field<double>(step, base), step.real));
      case BoundStep::Way::text: {
        const auto& text = field<std::string>(step, base);
        const bool equal =
            text.size() == step.length && std::memcmp(text.data(), step.bytes, step.length) == 0;
        return accepts(step, equal ? 0 : 1);
      }
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
  template <class T>
  static const T& field(const BoundStep& step, const void* base) {
    return *reinterpret_cast<const T*>(static_cast<const char*>(base) + step.place);
  }
  template <class Unbound>
  static bool other(const BoundStep& step, const PropertyValue& v, Unbound&& unbound) {
    if (!comparesQuietly(v) || !step.step->test->isQuiet()) unbound.hold();
    return step.step->test->decide(v);
  }
  template <class Unbound>
  static bool otherField(const BoundStep& step, const void* base, Unbound&& unbound) {
    if (step.type == FieldType::value || !step.step->test->isQuiet()) unbound.hold();
    return decideField(step, base);
  }
  static bool decideField(const BoundStep& step, const void* base);

  // The string, when it is of exactly the immutable class.
  const String* immutableText(const PropertyValue& v) const {
    const Object* o = v.object();
    return o != nullptr && ObjectAccess::classIndex(*o) == stringIndex_
               ? static_cast<const String*>(o)
               : nullptr;
  }
  static bool equalBytes(const String& text, const BoundStep& step) {
    return text.length() == step.length && !StringStorage::isWide(text) &&
           std::memcmp(StringStorage::inlineUnits(text), step.bytes, step.length) == 0;
  }

  void start(const Program& program);
  void bindWord(BoundStep& bound, const CompiledTest& test);
  void bindField(BoundStep& bound, const CompiledTest& test, const Place& place,
                 const Object& object);

  // Behind the steps stand two more, where a run ends: rejected at `end_`, accepted behind it.
  std::vector<BoundStep> steps_;
  const BoundStep* entry_ = nullptr;
  const BoundStep* end_ = nullptr;
  std::vector<std::uint32_t> textSlots_;
  std::uint16_t stringIndex_ = 0;
};

}  // namespace qx::detail
