#include "platform/folded_text.h"

#include <utf8proc.h>

#include "frame/unicode.h"

namespace qx::detail {
namespace {

// The forms stand in one block; the wide space alone stands elsewhere.
bool hasWidthForm(char32_t c) { return (c >= 0xFF00 && c <= 0xFFEF) || c == 0x3000; }

bool isMark(char32_t c) {
  return !isAscii(c) && utf8proc_category(static_cast<utf8proc_int32_t>(c)) == UTF8PROC_CATEGORY_MN;
}

class CharacterFolder {
 public:
  explicit CharacterFolder(StringCompareOptions options)
      : ignoreCase_(hasOption(options, StringCompareOptions::caseInsensitive)),
        ignoreMarks_(hasOption(options, StringCompareOptions::diacriticInsensitive)),
        ignoreWidth_(hasOption(options, StringCompareOptions::widthInsensitive)) {}

  // The units that stand for the character; borrowed until the next call.
  std::u16string_view fold(char32_t c) {
    units_.clear();
    if (isAscii(c)) {
      units_.push_back(static_cast<char16_t>(ignoreCase_ ? asciiLower(c) : c));
      return units_;
    }
    appendCodePoint(units_, c);
    if (ignoreWidth_ && hasWidthForm(c)) units_ = normalize(units_, NormalForm::kd);
    if (ignoreMarks_) removeMarks();
    if (ignoreCase_) units_ = caseFold(units_);
    return units_;
  }

 private:
  void removeMarks() {
    const std::u16string parts = normalize(units_, NormalForm::d);
    units_.clear();
    for (const char32_t c : TextSpan(parts).codePoints()) {
      if (!isMark(c)) appendCodePoint(units_, c);
    }
  }

  bool ignoreCase_;
  bool ignoreMarks_;
  bool ignoreWidth_;
  std::u16string units_;
};

}  // namespace

bool changesEquality(StringCompareOptions options) {
  using enum StringCompareOptions;
  return hasOption(options, caseInsensitive | diacriticInsensitive | widthInsensitive);
}

FoldedText::FoldedText(TextSpan text, StringCompareOptions options) : length_(text.size) {
  CharacterFolder folder(options);
  units_.reserve(text.size);
  origins_.reserve(text.size);
  for (std::size_t i = 0; i < text.size;) {
    const std::size_t start = i;
    const std::u16string_view folded = folder.fold(text.next(i));
    append(folded, start, equalUnits(text.substr(start, i - start), folded));
  }
}

// The halves of a pair that stays as it is are places of their own, as in a search without options.
void FoldedText::append(std::u16string_view folded, std::size_t start, bool isUnchanged) {
  for (std::size_t i = 0; i < folded.size(); ++i) {
    units_.push_back(folded[i]);
    origins_.push_back(static_cast<std::uint32_t>(isUnchanged ? start + i : start));
  }
}

}  // namespace qx::detail
