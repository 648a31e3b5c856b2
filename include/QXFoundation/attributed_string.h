// AttributedString: text of which every stretch carries a dictionary of attributes.
//
//     auto s = qx::AttributedString::initWithString("12 KB", qx::dict({{"color", "red"}}));
//     qx::Range run;
//     s->attributesAtIndex(0, &run);   // {color = red}, and run is the whole text
#pragma once

#include <cstddef>
#include <vector>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx {

// Immutable text and its runs: the longest stretches of equal attributes, in order, none of them
// empty. Positions count UTF-16 code units. The class is "NSAttributedString". As thread-safe as
// the attributes' values.
class QX_EXPORT AttributedString : public Object {
 public:
  // The whole text with these attributes, which are copied; nil for none. A nil text raises.
  static Ref<AttributedString> initWithString(StringArg text);
  static Ref<AttributedString> initWithString(StringArg text, In<Dictionary> attributes);

  // The text alone, its length in UTF-16 code units, and the number of runs with the same
  // attributes.
  Ref<String> string() const { return text_; }
  std::size_t length() const { return text_->length(); }
  std::size_t runCount() const { return runs_.size(); }

  // The attributes at the place, never nil; the run that it is in is stored, unless
  // `effectiveRange` is null. At or beyond the length these raise RangeException.
  Ref<Dictionary> attributesAtIndex(std::size_t index, Range* effectiveRange) const;
  // One of them, nil where it is not set.
  PropertyValue attribute(StringArg name, std::size_t atIndex, Range* effectiveRange) const;

  // A range that leaves the text raises RangeException.
  Ref<AttributedString> attributedSubstringFromRange(Range range) const;
  Ref<AttributedString> attributedStringByAppendingAttributedString(
      In<AttributedString> other) const;

  // The same text with the same attributes.
  bool isEqualToAttributedString(In<AttributedString> other) const;
  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  // Each run's text with its attributes behind it.
  std::string description() const override;
  Ref<Object> copy() const override;

  // Inside the library: the empty text.
  AttributedString();

 protected:
  ~AttributedString() override;

 private:
  struct Run {
    std::size_t end = 0;  // where the next begins
    Ref<Dictionary> attributes;
  };

  static Ref<AttributedString> withText(const Ref<String>& text);
  // Appends a run up to `end`, to the last one where its attributes are the same; an empty one is
  // left out.
  void addRun(std::size_t end, const Ref<Dictionary>& attributes);
  std::size_t runAt(std::size_t index, const char* operation) const;
  std::size_t startOf(std::size_t run) const { return run == 0 ? 0 : runs_[run - 1].end; }

  Ref<String> text_;
  std::vector<Run> runs_;
};

QX_EXPORT const Class& classObject(detail::Type<AttributedString>);

}  // namespace qx
