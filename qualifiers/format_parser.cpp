#include "qualifiers/format_parser.h"

#include <charconv>
#include <cstdint>
#include <iterator>

#include <QXFoundation/exception.h>

#include "frame/number_text.h"
#include "frame/numeric.h"
#include "frame/raise.h"
#include "frame/utf.h"
#include "qualifiers/operator_table.h"

namespace qx::detail {
namespace {

bool startsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

// The character at the position as valid UTF-8: U+FFFD for an ill-formed one, nothing at the end of
// the text and for a NUL, which would hide the rest of a reason.
std::string characterAt(std::string_view text, std::size_t position) {
  if (position >= text.size() || text[position] == '\0') return {};
  std::size_t end = position + 1;
  while (end < text.size() && !startsCharacter(text[end])) ++end;
  const std::string_view bytes = text.substr(position, end - position);
  return isValidUtf8(bytes) ? std::string(bytes) : "\xEF\xBF\xBD";
}

constexpr char kPrefix[] = "qualifierParser -- QXQualifier: ";

std::string conversionAt(char letter, std::string_view format, std::size_t position) {
  return std::string("the conversion specification (%") + letter + ") at column " +
         std::to_string(columnAt(format, position));
}

std::string kindName(const PropertyValue& v) { return v.isNil() ? "nil" : v.cls()->name(); }

std::string addressText(const void* address) {
  char digits[2 * sizeof address];
  const auto end =
      std::to_chars(digits, std::end(digits), reinterpret_cast<std::uintptr_t>(address), 16).ptr;
  return {digits, end};
}

Ref<QXQualifier> joined(format::Connective word, const Ref<MutableArray>& members) {
  const Ref<Array> fixed = Array::from(members->begin(), members->count());
  if (word == format::Connective::conjunction) return QXAndQualifier::initWithQualifierArray(fixed);
  return QXOrQualifier::initWithQualifierArray(fixed);
}

}  // namespace

std::size_t columnAt(std::string_view format, std::size_t position) {
  std::size_t column = 1;
  for (std::size_t i = 0; i < position && i < format.size(); ++i)
    column += startsCharacter(format[i]) ? 1 : 0;
  return column;
}

void TreeBuilder::beginKey(std::size_t) { text_.clear(); }
void TreeBuilder::endKey() { key_ = String::from(text_); }
void TreeBuilder::operatorText(std::string_view text, std::size_t) {
  selector_ = operatorSelector(text);
}

void TreeBuilder::beginValue(std::size_t) {
  text_.clear();
  right_ = nullptr;
  form_ = Form::text;
  isCast_ = false;
  castClass_ = nullptr;
}

void TreeBuilder::castTo(std::string_view className, std::size_t) {
  isCast_ = true;
  castClass_ = classNamed(className);
}

bool TreeBuilder::argument(char letter, bool whole, std::size_t position) {
  const PropertyValue value = converted(letter, nextArgument(letter, position), position);
  if (whole) {
    right_ = value;
    form_ = Form::argument;
  } else if (letter == 'f') {
    text_ += fixedText(*value.to<float>());
  } else {
    text_ += value.description();
  }
  return true;
}

const PropertyValue& TreeBuilder::nextArgument(char letter, std::size_t position) {
  if (used_ == count_) {
    raiseInvalidArgument(kPrefix + conversionAt(letter, format_, position) +
                         " has no argument: there are " + std::to_string(count_));
  }
  return arguments_[used_++];
}

PropertyValue TreeBuilder::converted(char letter, const PropertyValue& argument,
                                     std::size_t position) const {
  if (letter == 'd') {
    const auto integer = argument.to<std::int32_t>();
    if (!integer) raiseMismatch(letter, "an integer of 32 bits", argument, position);
    return *integer;
  }
  if (letter == 'f') {
    NumericValue number;
    if (!numericOf(argument, number) || !number.isFloating()) {
      raiseMismatch(letter, "a floating-point number", argument, position);
    }
    return static_cast<float>(number.d);
  }
  if (letter == 's') {
    if (!argument.isString()) raiseMismatch(letter, "text", argument, position);
    return PropertyValue(argument.copy());
  }
  return argument;
}

void TreeBuilder::raiseMismatch(char letter, const char* wanted, const PropertyValue& got,
                                std::size_t position) const {
  std::string reason = kPrefix + conversionAt(letter, format_, position) + " takes " + wanted +
                       " and was given a value of the class " + kindName(got);
  if (got.isNumber()) reason += ": " + got.description();
  raiseInvalidArgument(std::move(reason));
}

void TreeBuilder::unrecognized(std::size_t position) {
  raiseInvalidArgument(std::string(kPrefix) + "unrecognized character (" +
                       characterAt(format_, position + 1) + ") in the conversion specification");
}

PropertyValue TreeBuilder::rightValue() const {
  if (form_ == Form::nil) return {};
  if (form_ == Form::argument) return right_;
  if (!isCast_) return text_;
  return castClass_ == nullptr ? PropertyValue() : castClass_->initWithString(text_);
}

// A right key made by a cast stands for the text it was made from.
Ref<QXQualifier> TreeBuilder::comparison(bool constant) const {
  if (constant) return QXKeyValueQualifier::initWithKey(key_, selector_, right_);
  if (right_.isNil()) return QXKeyComparisonQualifier::initWithLeftKey(key_, selector_, nullptr);
  return QXKeyComparisonQualifier::initWithLeftKey(key_, selector_, text_);
}

void TreeBuilder::endComparison(bool constant) {
  right_ = rightValue();
  current_ = comparison(constant);
  if (negated_) current_ = QXNotQualifier::initWithQualifier(current_);
}

// A scanner tells of a connective, and of the end, behind a comparison only.
const Ref<QXQualifier>& TreeBuilder::lastComparison() const {
  if (current_ == nullptr) {
    raiseInvalidArgument("_qualifierWithQualifierFormat:arguments: -- QXQualifier 0x" +
                         addressText(&classOf<QXQualifier>()) + ": missing qualifier");
  }
  return current_;
}

// A change of the connective wraps what there is, and leaves the comparison before it out.
void TreeBuilder::connective(format::Connective word, std::size_t, bool) {
  const Ref<QXQualifier>& comparison = lastComparison();
  if (word == combinator_) {
    list_->addObject(comparison);
    return;
  }
  const PropertyValue first =
      combinator_ == format::Connective::none ? comparison : joined(combinator_, list_);
  list_ = MutableArray::init();
  list_->addObject(first);
  combinator_ = word;
}

Ref<QXQualifier> TreeBuilder::take() {
  if (combinator_ == format::Connective::none) return current_;
  list_->addObject(lastComparison());
  return joined(combinator_, list_);
}

}  // namespace qx::detail

namespace qx {

Ref<QXQualifier> QXQualifier::_qualifierWithQualifierFormat(StringArg format,
                                                            const PropertyValue* arguments,
                                                            std::size_t count) {
  const detail::FormatText text(format);
  if (text.isEmpty()) return nullptr;
  detail::TreeBuilder builder(text.view(), arguments, count);
  detail::format::Scanner(text.view(), builder).run();
  return builder.take();
}

}  // namespace qx
