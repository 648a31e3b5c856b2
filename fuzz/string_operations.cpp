// Arbitrary texts: searching and replacing do what their plain definitions do, in both storage
// forms.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <QXFoundation/QXFoundation.h>

namespace {

using qx::Range;
using qx::Ref;
using qx::String;

void require(bool condition) {
  if (!condition) std::abort();
}

// Texts from the input: a byte of length, then as many units, of one byte or two.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  unsigned byte() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }
  std::u16string text(unsigned longest) {
    const unsigned count = byte() % longest;
    const bool wide = byte() % 2 == 1;
    std::u16string units;
    for (unsigned i = 0; i < count; ++i)
      units += static_cast<char16_t>(wide ? byte() << 8 | byte() : byte());
    return units;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
};

std::u16string replacedPlainly(std::u16string text, const std::u16string& target,
                               const std::u16string& with) {
  for (std::size_t at = target.empty() ? std::u16string::npos : text.find(target);
       at != std::u16string::npos; at = text.find(target, at + with.size())) {
    text.replace(at, target.size(), with);
  }
  return text;
}

// The member at or after `from`, by the search that takes a range.
Range nextMember(const Ref<String>& text, const Ref<qx::CharacterSet>& set, std::size_t from) {
  return rangeOfCharacterFromSet(text, set, qx::StringCompareOptions::literal,
                                 {from, text->length() - from});
}

std::u16string membersReplacedPlainly(std::u16string text, const Ref<qx::CharacterSet>& set,
                                      const std::u16string& with) {
  for (std::size_t from = 0; from != text.size();) {
    const Range found = nextMember(String::fromUtf16(text), set, from);
    if (found.location == qx::kNotFound) break;
    text.replace(found.location, found.length, with);
    from = found.location + with.size();
  }
  return text;
}

void checkSearch(const Ref<String>& text, const Ref<String>& part,
                 qx::StringCompareOptions options) {
  const Range first = rangeOfString(text, part, options);
  const Range last = rangeOfString(text, part, options | qx::StringCompareOptions::backwards);
  require((first.location == qx::kNotFound) == (last.location == qx::kNotFound));
  require(containsString(text, part, options) ==
          (first.location != qx::kNotFound || part->length() == 0));
  if (first.location == qx::kNotFound) return;
  require(first.location <= last.location);
  for (const Range& found : {first, last}) {
    require(found.location <= text->length() && found.length <= text->length() - found.location);
    const Range again =
        rangeOfString(text, part, options | qx::StringCompareOptions::anchored, found);
    require(again == found);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const auto options = static_cast<qx::StringCompareOptions>(input.byte() & (1U | 128U)) |
                       static_cast<qx::StringCompareOptions>((input.byte() & 1U) << 8);
  const bool inverted = input.byte() % 4 == 0;
  const std::u16string part = input.text(6);
  const std::u16string with = input.text(6);
  const std::u16string members = input.text(8);
  const std::u16string units = input.text(200);
  const auto text = String::fromUtf16(units);
  const auto target = String::fromUtf16(part);
  require(stringByReplacingAllOccurrencesOfString(text, target, String::fromUtf16(with))->utf16() ==
          replacedPlainly(units, part, with));
  auto set = qx::CharacterSet::characterSetWithCharactersInString(String::fromUtf16(members));
  if (inverted) set = set->invertedSet();
  const auto changed = qx::MutableString::from(text);
  replaceAllOccurrencesOfCharactersInSet(changed, set, String::fromUtf16(with));
  require(changed->utf16() == membersReplacedPlainly(units, set, with));
  checkSearch(text, target, qx::StringCompareOptions::none);
  checkSearch(text, target, options);
  return 0;
}
