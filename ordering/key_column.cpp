#include "ordering/key_column.h"

#include <bit>
#include <limits>
#include <utility>

#include <QXFoundation/date.h>
#include <QXFoundation/number.h>

#include "frame/class_record.h"
#include "frame/string_storage.h"
#include "frame/unicode.h"
#include "frame/utf.h"
#include "frame/word_access.h"
#include "ordering/merge_sort.h"
#include "ordering/text_ranking.h"

namespace qx::detail {
namespace {

constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
// Every integer up to this magnitude is a double.
constexpr std::int64_t kMaxExact = std::int64_t{1} << 53;

// Keys of integers and of doubles order as the numbers do. NaN is below all; both zeros are one.
std::uint64_t keyOf(std::int64_t i) { return static_cast<std::uint64_t>(i) ^ kSign; }
std::int64_t integerOf(std::uint64_t key) { return static_cast<std::int64_t>(key ^ kSign); }
std::uint64_t keyOf(double d) {
  if (d != d) return 0;
  const auto bits = std::bit_cast<std::uint64_t>(d + 0.0);
  return (bits & kSign) != 0 ? ~bits : bits ^ kSign;
}
double realOf(std::uint64_t key) {
  if (key == 0) return std::numeric_limits<double>::quiet_NaN();
  return std::bit_cast<double>((key & kSign) != 0 ? key ^ kSign : ~key);
}

bool isExactReal(std::int64_t i) { return i >= -kMaxExact && i <= kMaxExact; }

bool isAscii(TextSpan text) { return !text.wide && asciiPrefix(text.latin1View()) == text.size; }

}  // namespace

KeyColumn::KeyColumn(std::size_t elements, bool ignoringCase)
    : elements_(elements), ignoringCase_(ignoringCase) {
  entries_.reserve(elements);
}

bool KeyColumn::is(Kind kind) {
  if (kind_ == Kind::empty) kind_ = kind;
  if (kind_ == kind) return true;
  kind_ = Kind::other;
  return false;
}

KeyColumn::Order KeyColumn::order() const {
  if (kind_ == Kind::other) return Order::unknown;
  return kind_ == Kind::inert ? Order::none : Order::total;
}

void KeyColumn::add(std::uint32_t element, const BorrowedKey& key) {
  if (const PropertyValue* value = key.value()) return add(element, *value);
  NumericValue n;
  if (isPlainNumber(key, n)) return addNumber(element, n);
  addUtf8(element, key.text());
}

void KeyColumn::add(std::uint32_t element, const PropertyValue& key) {
  if (WordAccess::isInlineSigned(key) && !ignoringCase_) [[likely]] {
    return addInteger(element, WordAccess::inlineSigned(key));
  }
  if (const Object* o = key.object()) return addObject(element, *o);
  NumericValue n;
  if (WordAccess::inlineNumber(key, n)) return addNumber(element, n);
  is(Kind::inert);  // null, or missing
}

// Subclasses of the value model's classes may compare as they like.
void KeyColumn::addObject(std::uint32_t element, const Object& key) {
  static const std::uint16_t string = classIndexOf(classOf<String>());
  if (ObjectAccess::classIndex(key) != string && !key.cls().record().core) {
    kind_ = Kind::other;
    return;
  }
  switch (ObjectAccess::kind(key)) {
    case ObjectKind::string:
      return addText(element, StringStorage::span(static_cast<const String&>(key)));
    case ObjectKind::number:
      return addNumber(element, static_cast<const Number&>(key).numeric());
    case ObjectKind::date:
      return addDate(element, static_cast<const Date&>(key).timeIntervalSince1970());
    default:
      is(Kind::inert);
  }
}

void KeyColumn::addNumber(std::uint32_t element, const NumericValue& n) {
  if (ignoringCase_) {
    is(Kind::inert);
  } else if (n.isFloating()) {
    addReal(element, n.d);
  } else if (n.kind == NumberKind::unsignedInteger && n.u < kSign) {
    addInteger(element, static_cast<std::int64_t>(n.u));
  } else if (n.kind == NumberKind::unsignedInteger || n.kind == NumberKind::decimal) {
    addMixed(element, n);
  } else {
    addInteger(element, n.i);
  }
}

void KeyColumn::addInteger(std::uint32_t element, std::int64_t i) {
  if (kind_ == Kind::integers) [[likely]] {
    entries_.push_back({keyOf(i), element});
  } else if (kind_ == Kind::reals && isExactReal(i)) {
    entries_.push_back({keyOf(static_cast<double>(i)), element});
  } else if (kind_ == Kind::reals || kind_ == Kind::numbers) {
    addMixed(element, NumericValue::signedInteger(i));
  } else if (is(Kind::integers)) {
    entries_.push_back({keyOf(i), element});
  }
}

void KeyColumn::addReal(std::uint32_t element, double d) {
  if (kind_ == Kind::integers && integersAreReals()) makeReals();
  if (kind_ == Kind::integers || kind_ == Kind::numbers) {
    addMixed(element, NumericValue::real(d));
  } else if (is(Kind::reals)) {
    entries_.push_back({keyOf(d), element});
  }
}

void KeyColumn::addDate(std::uint32_t element, double seconds) {
  if (ignoringCase_) {
    is(Kind::inert);
  } else if (is(Kind::dates)) {
    entries_.push_back({keyOf(seconds), element});
  }
}

void KeyColumn::addMixed(std::uint32_t element, const NumericValue& n) {
  if (kind_ == Kind::integers || kind_ == Kind::reals) makeMixed();
  if (!is(Kind::numbers)) return;
  numbers_.resize(elements_);
  numbers_[element] = n;
  entries_.push_back({0, element});
}

bool KeyColumn::integersAreReals() const {
  for (const SortEntry& e : entries_) {
    if (!isExactReal(integerOf(e.key))) return false;
  }
  return true;
}

void KeyColumn::makeReals() {
  for (SortEntry& e : entries_) e.key = keyOf(static_cast<double>(integerOf(e.key)));
  kind_ = Kind::reals;
}

void KeyColumn::makeMixed() {
  numbers_.resize(elements_);
  for (const SortEntry& e : entries_) {
    numbers_[e.element] = kind_ == Kind::integers ? NumericValue::signedInteger(integerOf(e.key))
                                                  : NumericValue::real(realOf(e.key));
  }
  kind_ = Kind::numbers;
}

void KeyColumn::addText(std::uint32_t element, TextSpan text) {
  if (!is(Kind::texts)) return;
  if (texts_.empty()) texts_.resize(elements_);
  // ASCII is folded while it is compared; other texts are kept folded.
  if (ignoringCase_ && !isAscii(text)) text = kept(caseFold(text));
  wide_ |= text.wide;
  texts_[element] = text;
  entries_.push_back({wide_ ? 0 : leadingKey(text, {false, ignoringCase_}), element});
}

void KeyColumn::addUtf8(std::uint32_t element, std::string_view text) {
  if (asciiPrefix(text) == text.size()) return addText(element, TextSpan::latin1(text));
  if (!is(Kind::texts)) return;
  std::u16string units(scanUtf8(text).units, u'\0');
  utf8ToUtf16(text, units.data());
  addText(element, kept(std::move(units)));
}

TextSpan KeyColumn::kept(std::u16string text) {
  made_.push_back(std::make_unique<const std::u16string>(std::move(text)));
  return TextSpan(*made_.back());
}

std::vector<unsigned char> KeyColumn::tiesByKey() const {
  std::vector<unsigned char> tied(entries_.size());
  for (std::size_t i = 1; i < entries_.size(); ++i) {
    tied[i] = entries_[i].key == entries_[i - 1].key ? 1 : 0;
  }
  return tied;
}

Ranking KeyColumn::rankMixed() {
  Ranking ranking;
  for (const SortEntry& e : entries_) ranking.order.push_back(e.element);
  const auto compare = [&](std::uint32_t a, std::uint32_t b) {
    return compareNumbers(numbers_[a], numbers_[b]);
  };
  mergeSort(ranking.order, compare);
  ranking.tied.resize(ranking.order.size());
  for (std::size_t i = 1; i < ranking.order.size(); ++i) {
    ranking.tied[i] = compare(ranking.order[i - 1], ranking.order[i]) == 0 ? 1 : 0;
  }
  return ranking;
}

Ranking KeyColumn::rank() {
  if (kind_ == Kind::numbers) return rankMixed();
  Ranking ranking;
  if (kind_ == Kind::texts) {
    const TextForm form{wide_, ignoringCase_};
    if (wide_) {
      for (SortEntry& e : entries_) e.key = leadingKey(texts_[e.element], form);
    }
    ranking.tied.resize(entries_.size());
    sortTexts(entries_, texts_, form, ranking.tied);
  } else {
    std::vector<SortEntry> room;
    sortEntries(entries_, room);
    ranking.tied = tiesByKey();
  }
  ranking.order.reserve(entries_.size());
  for (const SortEntry& e : entries_) ranking.order.push_back(e.element);
  return ranking;
}

}  // namespace qx::detail
