#include <algorithm>

#include <QXFoundation/attributed_string.h>

#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {

AttributedString::AttributedString() : text_(String::empty()) {}
AttributedString::~AttributedString() = default;

Ref<AttributedString> AttributedString::withText(const Ref<String>& text) {
  auto made = make<AttributedString>();
  made->text_ = text;
  return made;
}

Ref<AttributedString> AttributedString::initWithString(StringArg text) {
  return initWithString(text, nullptr);
}

Ref<AttributedString> AttributedString::initWithString(StringArg text, In<Dictionary> attributes) {
  if (text.isNil()) detail::raiseNilStored("-[NSAttributedString initWithString:attributes:]");
  auto made = withText(text.string());
  made->addRun(made->length(),
               attributes ? PropertyValue(attributes->copy()).as<Dictionary>() : dict());
  return made;
}

void AttributedString::addRun(std::size_t end, const Ref<Dictionary>& attributes) {
  if (end == (runs_.empty() ? 0 : runs_.back().end)) return;
  if (!runs_.empty() && runs_.back().attributes->isEqualToDictionary(attributes)) {
    runs_.back().end = end;
  } else {
    runs_.push_back({end, attributes});
  }
}

std::size_t AttributedString::runAt(std::size_t index, const char* operation) const {
  if (index >= length()) detail::raiseIndex(operation, index, length());
  const auto after = std::upper_bound(runs_.begin(), runs_.end(), index,
                                      [](std::size_t i, const Run& run) { return i < run.end; });
  return static_cast<std::size_t>(after - runs_.begin());
}

Ref<Dictionary> AttributedString::attributesAtIndex(std::size_t index,
                                                    Range* effectiveRange) const {
  const std::size_t run = runAt(index, "-[NSAttributedString attributesAtIndex:effectiveRange:]");
  if (effectiveRange != nullptr) *effectiveRange = {startOf(run), runs_[run].end - startOf(run)};
  return runs_[run].attributes;
}

PropertyValue AttributedString::attribute(StringArg name, std::size_t atIndex,
                                          Range* effectiveRange) const {
  return attributesAtIndex(atIndex, effectiveRange)->objectForKey(name);
}

Ref<AttributedString> AttributedString::attributedSubstringFromRange(Range range) const {
  auto made = withText(text_->substringWithRange(range));
  const std::size_t end = range.location + range.length;
  for (std::size_t run = 0; run < runs_.size() && startOf(run) < end; ++run) {
    if (runs_[run].end > range.location) {
      made->addRun(std::min(runs_[run].end, end) - range.location, runs_[run].attributes);
    }
  }
  return made;
}

Ref<AttributedString> AttributedString::attributedStringByAppendingAttributedString(
    In<AttributedString> other) const {
  auto made = withText(text_->stringByAppendingString(other->text_));
  made->runs_ = runs_;
  for (const Run& run : other->runs_) made->addRun(length() + run.end, run.attributes);
  return made;
}

bool AttributedString::isEqualToAttributedString(In<AttributedString> other) const {
  return other && text_->isEqualToString(other->text_) &&
         std::equal(runs_.begin(), runs_.end(), other->runs_.begin(), other->runs_.end(),
                    [](const Run& a, const Run& b) {
                      return a.end == b.end && a.attributes->isEqualToDictionary(b.attributes);
                    });
}

bool AttributedString::isEqual(const PropertyValue& other) const {
  return isEqualToAttributedString(other.peek<AttributedString>());
}
std::size_t AttributedString::hash() const { return text_->hash(); }

std::string AttributedString::description() const {
  std::string out;
  for (std::size_t run = 0; run < runs_.size(); ++run) {
    const std::size_t start = startOf(run);
    out += text_->substringWithRange({start, runs_[run].end - start})->utf8();
    out += runs_[run].attributes->description();
  }
  return out;
}

Ref<Object> AttributedString::copy() const { return const_cast<AttributedString*>(this); }

void describe(ClassBuilder<AttributedString>& c) {
  c.name("NSAttributedString").inherits<Object>();
  c.property("string", &AttributedString::string);
  c.property("length", &AttributedString::length);
  c.operation(
      "isEqualToAttributedString:",
      +[](const PropertyValue& r, const Ref<AttributedString>& other) {
        return static_cast<const AttributedString&>(*r.object()).isEqualToAttributedString(other);
      });
}

const Class& classObject(detail::Type<AttributedString>) {
  return detail::buildLibraryClass<AttributedString>();
}

}  // namespace qx
