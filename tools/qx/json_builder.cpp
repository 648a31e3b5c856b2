#include "tools/qx/json_builder.h"

#include <algorithm>
#include <string>
#include <utility>

#include <QXFoundation/array.h>
#include <QXFoundation/number.h>

namespace qxtool {
namespace {

constexpr std::size_t kMaxDecimalDigits = 38;

// Integer text of at most so many digits is kept exactly.
bool fitsDecimal(std::string_view text) {
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return text.size() <= kMaxDecimalDigits && std::all_of(text.begin(), text.end(), isDigit);
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
  if (fitsDecimal(text)) return add(qx::DecimalNumber::initWithString(text));
  return add(value);
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

bool JsonBuilder::endDictionary() {
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
