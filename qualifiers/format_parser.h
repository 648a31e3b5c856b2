#pragma once

// What the run-time parser of qualifier formats makes of a scanner's events: the tree.

#include <cstddef>
#include <string>
#include <string_view>

#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_format.h>

namespace qx::detail {

// The bytes of a format, converted where it came as a String. Borrows what it was made from.
class FormatText {
 public:
  explicit FormatText(StringArg format)
      : converted_(format.object() != nullptr ? format.utf8() : std::string()),
        view_(format.object() != nullptr ? std::string_view(converted_) : format.bytes()) {}
  FormatText(const FormatText&) = delete;
  FormatText& operator=(const FormatText&) = delete;
  // Nil and "" stand for no qualifier.
  bool isEmpty() const { return view_.empty(); }
  std::string_view view() const { return view_; }

 private:
  const std::string converted_;
  const std::string_view view_;
};

// Columns count characters, from 1.
std::size_t columnAt(std::string_view format, std::size_t position);

class TreeBuilder : public format::IgnoringSink {
 public:
  TreeBuilder(std::string_view format, const PropertyValue* arguments, std::size_t count)
      : format_(format), arguments_(arguments), count_(count) {}

  // Once the scan has ended; not for an empty format.
  Ref<QXQualifier> take();

  void beginComparison(bool negated) { negated_ = negated; }
  void beginKey(std::size_t position);
  void endKey();
  void operatorText(std::string_view text, std::size_t position);
  void beginValue(std::size_t position);
  void castTo(std::string_view className, std::size_t position);
  void nilValue() { form_ = Form::nil; }
  void text(std::string_view piece) { text_ += piece; }
  bool argument(char letter, bool whole, std::size_t position);
  void unrecognized(std::size_t position);
  void endComparison(bool constant);
  void connective(format::Connective word, std::size_t position, bool endsText);

 protected:
  // How the right side was written.
  enum class Form { text, nil, argument };

  std::string_view format() const { return format_; }
  const std::string& gathered() const { return text_; }
  Form form() const { return form_; }
  // The right side of the comparison that has just ended.
  const PropertyValue& right() const { return right_; }
  format::Connective combinator() const { return combinator_; }
  std::size_t unusedArguments() const { return count_ - used_; }
  // The class that a cast names; null where there is no cast, or no such class.
  const Class* castClass() const { return castClass_; }

 private:
  const PropertyValue& nextArgument(char letter, std::size_t position);
  PropertyValue converted(char letter, const PropertyValue& argument, std::size_t position) const;
  PropertyValue rightValue() const;
  Ref<QXQualifier> comparison(bool constant) const;
  // Raises where there is none.
  const Ref<QXQualifier>& lastComparison() const;
  [[noreturn]] void raiseMismatch(char letter, const char* wanted, const PropertyValue& got,
                                  std::size_t position) const;

  const std::string_view format_;
  const PropertyValue* arguments_;
  const std::size_t count_;
  std::size_t used_ = 0;

  // The comparison at hand.
  bool negated_ = false;
  Ref<String> key_;
  Selector selector_;
  std::string text_;
  PropertyValue right_;
  Form form_ = Form::text;
  bool isCast_ = false;
  const Class* castClass_ = nullptr;

  // What the comparisons so far combine to.
  format::Connective combinator_ = format::Connective::none;
  Ref<QXQualifier> current_;
  Ref<MutableArray> list_;
};

}  // namespace qx::detail
