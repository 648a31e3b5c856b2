#include "platform/character_set.h"

#include <algorithm>

#include "frame/hashing.h"
#include "frame/key_text.h"
#include "frame/library_class.h"
#include "frame/raise.h"
#include "frame/unicode.h"

namespace qx {

using detail::CodePointInterval;
using detail::CodePointIntervals;
using detail::kLastCodePoint;

namespace detail {

CodePointIntervals tidied(CodePointIntervals intervals) {
  std::sort(intervals.begin(), intervals.end(), [](const auto& a, const auto& b) {
    return a.first != b.first ? a.first < b.first : a.last < b.last;
  });
  CodePointIntervals tidy;
  for (const CodePointInterval& i : intervals) {
    if (!tidy.empty() && i.first <= tidy.back().last + 1) {
      tidy.back().last = std::max(tidy.back().last, i.last);
    } else {
      tidy.push_back(i);
    }
  }
  return tidy;
}

CodePointIntervals inverted(const CodePointIntervals& tidy) {
  CodePointIntervals others;
  char32_t next = 0;
  for (const CodePointInterval& i : tidy) {
    if (i.first > next) others.push_back({next, i.first - 1});
    next = i.last + 1;
  }
  if (next <= kLastCodePoint) others.push_back({next, kLastCodePoint});
  return others;
}

CodePointIntervals intervalsWhere(bool (*test)(char32_t) noexcept) {
  CodePointIntervals found;
  for (char32_t c = 0; c <= kLastCodePoint; ++c) {
    if (!test(c)) continue;
    if (!found.empty() && found.back().last + 1 == c) {
      found.back().last = c;
    } else {
      found.push_back({c, c});
    }
  }
  return found;
}

}  // namespace detail

namespace {

// Up to this many intervals are searched; more get a bit for each unit.
constexpr std::size_t kShort = 4;

Ref<CharacterSet> makeSet(CodePointIntervals tidy) {
  return make<CharacterSet>(detail::Passkey{}, std::move(tidy));
}

bool isWhitespaceOrNewline(char32_t c) noexcept {
  return detail::isWhitespace(c) || detail::isNewline(c);
}

// Made when it is first asked for, and kept for the life of the process.
template <bool (*Test)(char32_t) noexcept>
Ref<CharacterSet> namedSet() {
  static const auto* set = new Ref<CharacterSet>(makeSet(detail::intervalsWhere(Test)));
  return *set;
}

}  // namespace

CharacterSet::CharacterSet(detail::Passkey, CodePointIntervals members)
    : Object(detail::ObjectKind::object, detail::kLeaf), members_(std::move(members)) {
  for (const CodePointInterval& i : members_) {
    for (char32_t c = i.first; c <= i.last && c <= 0xFF; ++c) narrow_[c] = true;
  }
  if (members_.size() <= kShort) return;
  wide_.resize(0x10000 / 64);
  for (const CodePointInterval& i : members_) {
    for (char32_t c = i.first; c <= i.last && c <= 0xFFFF; ++c)
      wide_[c / 64] |= std::uint64_t{1} << (c % 64);
  }
}
CharacterSet::~CharacterSet() = default;

Ref<CharacterSet> CharacterSet::init() { return makeSet({}); }

Ref<CharacterSet> CharacterSet::characterSetWithCharactersInString(StringArg characters) {
  if (characters.isNil()) detail::raiseNil("+[NSCharacterSet characterSetWithCharactersInString:]");
  const detail::ArgText text(characters);
  CodePointIntervals members;
  for (const char32_t c : text->codePoints()) members.push_back({c, c});
  return makeSet(detail::tidied(std::move(members)));
}

Ref<CharacterSet> CharacterSet::characterSetWithRange(Range range) {
  constexpr std::size_t kCodePoints = kLastCodePoint + 1;
  if (range.location > kCodePoints || range.length > kCodePoints - range.location) {
    detail::raiseInvalidArgument(
        "+[NSCharacterSet characterSetWithRange:]: the range leaves the code points");
  }
  if (range.length == 0) return init();
  const auto first = static_cast<char32_t>(range.location);
  return makeSet({{first, static_cast<char32_t>(range.location + range.length - 1)}});
}

Ref<CharacterSet> CharacterSet::whitespaceCharacterSet() {
  return namedSet<&detail::isWhitespace>();
}
Ref<CharacterSet> CharacterSet::newlineCharacterSet() { return namedSet<&detail::isNewline>(); }
Ref<CharacterSet> CharacterSet::whitespaceAndNewlineCharacterSet() {
  return namedSet<&isWhitespaceOrNewline>();
}
Ref<CharacterSet> CharacterSet::letterCharacterSet() { return namedSet<&detail::isLetter>(); }
Ref<CharacterSet> CharacterSet::uppercaseLetterCharacterSet() {
  return namedSet<&detail::isUppercase>();
}
Ref<CharacterSet> CharacterSet::lowercaseLetterCharacterSet() {
  return namedSet<&detail::isLowercase>();
}
Ref<CharacterSet> CharacterSet::decimalDigitCharacterSet() {
  return namedSet<&detail::isDecimalDigit>();
}
Ref<CharacterSet> CharacterSet::alphanumericCharacterSet() {
  return namedSet<&detail::isAlphanumeric>();
}
Ref<CharacterSet> CharacterSet::punctuationCharacterSet() {
  return namedSet<&detail::isPunctuation>();
}

bool CharacterSet::longCharacterIsMember(char32_t codePoint) const {
  return detail::CharacterSetAccess::contains(*this, codePoint);
}

bool CharacterSet::isListed(char32_t codePoint) const {
  const auto after =
      std::upper_bound(members_.begin(), members_.end(), codePoint,
                       [](char32_t c, const CodePointInterval& i) { return c < i.first; });
  return after != members_.begin() && codePoint <= (after - 1)->last;
}

Ref<CharacterSet> CharacterSet::invertedSet() const { return makeSet(detail::inverted(members_)); }

Ref<CharacterSet> CharacterSet::setByUnitingWithCharacterSet(In<CharacterSet> other) const {
  CodePointIntervals all = members_;
  if (other) all.insert(all.end(), other->members_.begin(), other->members_.end());
  return makeSet(detail::tidied(std::move(all)));
}

bool CharacterSet::isEqual(const PropertyValue& other) const {
  const auto* set = other.peek<CharacterSet>();
  return set != nullptr && set->members_ == members_;
}

std::size_t CharacterSet::hash() const {
  std::uint64_t h = members_.size();
  for (const CodePointInterval& i : members_)
    h = detail::combineHashes(h, std::uint64_t{i.first} << 32 | i.last);
  return static_cast<std::size_t>(h);
}

Ref<Object> CharacterSet::copy() const { return const_cast<CharacterSet*>(this); }

void describe(ClassBuilder<CharacterSet>& c) {
  c.name("NSCharacterSet").inherits<Object>();
  c.operation(
      "longCharacterIsMember:", +[](const PropertyValue& r, std::uint32_t codePoint) {
        return r.as<CharacterSet>()->longCharacterIsMember(codePoint);
      });
  c.operation(
      "characterIsMember:", +[](const PropertyValue& r, std::uint16_t unit) {
        return r.as<CharacterSet>()->longCharacterIsMember(unit);
      });
  c.operation("invertedSet", &CharacterSet::invertedSet);
}

const Class& classObject(detail::Type<CharacterSet>) {
  return detail::buildLibraryClass<CharacterSet>();
}

}  // namespace qx
