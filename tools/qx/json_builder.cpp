#include "tools/qx/json_builder.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include <QXFoundation/array.h>
#include <QXFoundation/number.h>

#include "tools/qx/printable.h"

namespace qxtool {
namespace {

constexpr std::size_t kMaxDecimalDigits = 38;

constexpr std::size_t kMaxQuotation = 40;

// How many digits an integer has; 0 for a number of another form.
std::size_t digitsOfInteger(std::string_view text) {
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return std::all_of(text.begin(), text.end(), isDigit) ? text.size() : 0;
}

}  // namespace

const qx::String& KeyTable::keyFor(std::string_view text) {
  Table::value_type* expected = last_ == nullptr ? nullptr : last_->second.next;
  if (expected != nullptr && expected->first == text) {
    last_ = expected;
    return *last_->second.string;
  }
  auto found = keys_.find(text);
  if (found == keys_.end()) found = keys_.emplace(text, Key{qx::String::from(text)}).first;
  if (last_ != nullptr) last_->second.next = &*found;
  last_ = &*found;
  return *last_->second.string;
}

bool JsonBuilder::unsignedInteger(std::uint64_t value) {
  if (std::in_range<std::int64_t>(value)) return add(static_cast<std::int64_t>(value));
  return add(value);
}

bool JsonBuilder::real(double value, const std::string& text) {
  const std::size_t digits = digitsOfInteger(text);
  if (digits == 0) return add(value);
  if (rules_ == JsonRules::strict) {
    throw JsonFault("an integer that 64 bits do not hold: " + cutToWidth(text, kMaxQuotation));
  }
  // Up to here an integer is kept exactly.
  return digits <= kMaxDecimalDigits ? add(qx::DecimalNumber::initWithString(text)) : add(value);
}

bool JsonBuilder::startDictionary() {
  if (sink_ != nullptr && frames_.empty())
    throw JsonFault("the root is a dictionary, not an array of dictionaries");
  return open(true);
}

bool JsonBuilder::startArray() { return open(false); }

bool JsonBuilder::open(bool isDictionary) {
  if (frames_.size() == kMaxJsonDepth) {
    throw JsonFault("nested more than " + std::to_string(kMaxJsonDepth) + " levels deep");
  }
  frames_.push_back({isDictionary, isDictionary ? entries_.size() : elements_.size()});
  return true;
}

bool JsonBuilder::key(const std::string& text) {
  entries_.push_back({keys_.keyFor(text), nullptr});
  return true;
}

// Strings of one text are one object here.
void JsonBuilder::requireDistinctKeys(std::size_t begin) const {
  std::set<const qx::String*> known;
  for (std::size_t i = begin; i < entries_.size(); ++i) {
    const qx::String* key = entries_[i].key.object();
    if (known.insert(key).second) continue;
    throw JsonFault("the key \"" + cutToWidth(printable(key->utf8()), kMaxQuotation) +
                    "\" is given twice");
  }
}

bool JsonBuilder::endDictionary() {
  if (rules_ == JsonRules::strict) requireDistinctKeys(frames_.back().begin);
  const auto begin = entries_.begin() + static_cast<std::ptrdiff_t>(frames_.back().begin);
  auto made = qx::Dictionary::from(entries_.data() + frames_.back().begin,
                                   static_cast<std::size_t>(entries_.end() - begin));
  entries_.erase(begin, entries_.end());
  frames_.pop_back();
  return add(std::move(made));
}

bool JsonBuilder::endArray() {
  if (sink_ != nullptr && frames_.size() == 1) {
    frames_.pop_back();
    return true;
  }
  const auto begin = elements_.begin() + static_cast<std::ptrdiff_t>(frames_.back().begin);
  auto made = qx::Array::from(elements_.data() + frames_.back().begin,
                              static_cast<std::size_t>(elements_.end() - begin));
  elements_.erase(begin, elements_.end());
  frames_.pop_back();
  return add(std::move(made));
}

bool JsonBuilder::add(qx::PropertyValue value) {
  if (sink_ != nullptr && frames_.size() <= 1) {
    addRecord(std::move(value));
  } else if (frames_.empty()) {
    root_ = std::move(value);
  } else if (frames_.back().isDictionary) {
    entries_.back().value = std::move(value);
  } else {
    elements_.push_back(std::move(value));
  }
  return true;
}

void JsonBuilder::addRecord(qx::PropertyValue value) {
  if (frames_.empty()) throw JsonFault("the root is not an array of dictionaries");
  ++records_;
  if (!value.isDictionary()) {
    throw JsonFault("element " + std::to_string(records_) + " of the array is not a dictionary");
  }
  sink_->add(std::move(value));
}

}  // namespace qxtool
