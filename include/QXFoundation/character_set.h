// CharacterSet: a set of characters, for searching and replacing in strings.
//
//     auto marks = qx::CharacterSet::characterSetWithCharactersInString(",;.");
//     auto drop = marks->setByUnitingWithCharacterSet(qx::CharacterSet::whitespaceCharacterSet());
//     drop->longCharacterIsMember(U' ');   // true
//
// The members are Unicode code points from 0 to U+10FFFF, surrogates included: in a string, a
// surrogate pair is the one character that it encodes, and a surrogate without its partner is a
// character of its own. The named sets follow the Unicode general categories, never a locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <QXFoundation/object.h>
#include <QXFoundation/string.h>

namespace qx {

namespace detail {
struct CodePointInterval;
struct CharacterSetAccess;
}  // namespace detail

// An immutable set. The class is "NSCharacterSet". Thread-safe. Sets of the same members are equal.
class QX_EXPORT CharacterSet : public Object {
 public:
  // Without members.
  static Ref<CharacterSet> init();
  // The characters of the text; nil raises InvalidArgumentException.
  static Ref<CharacterSet> characterSetWithCharactersInString(StringArg characters);
  // As many code points as the range's length, from its location on. A range that leaves the code
  // points raises InvalidArgumentException.
  static Ref<CharacterSet> characterSetWithRange(Range range);

  static Ref<CharacterSet> whitespaceCharacterSet();  // category Zs, and the tab
  static Ref<CharacterSet> newlineCharacterSet();     // U+000A to U+000D, U+0085, U+2028, U+2029
  // White space and newlines together.
  static Ref<CharacterSet> whitespaceAndNewlineCharacterSet();
  static Ref<CharacterSet> letterCharacterSet();           // categories L* and M*
  static Ref<CharacterSet> uppercaseLetterCharacterSet();  // categories Lu and Lt
  static Ref<CharacterSet> lowercaseLetterCharacterSet();  // category Ll
  static Ref<CharacterSet> decimalDigitCharacterSet();     // category Nd
  static Ref<CharacterSet> alphanumericCharacterSet();     // categories L*, M* and N*
  static Ref<CharacterSet> punctuationCharacterSet();      // categories P*

  // Whether the code unit, as a character of its own, is a member.
  bool characterIsMember(char16_t unit) const { return longCharacterIsMember(unit); }
  bool longCharacterIsMember(char32_t codePoint) const;

  // All code points that are no members.
  Ref<CharacterSet> invertedSet() const;
  // The members of both; nil adds none.
  Ref<CharacterSet> setByUnitingWithCharacterSet(In<CharacterSet> other) const;

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  Ref<Object> copy() const override;

  // Inside the library.
  CharacterSet(detail::Passkey, std::vector<detail::CodePointInterval> members);

 protected:
  ~CharacterSet() override;

 private:
  friend struct detail::CharacterSetAccess;
  bool isListed(char32_t codePoint) const;

  std::vector<detail::CodePointInterval> members_;  // ascending, neither touching nor empty
  bool narrow_[256] = {};                           // U+0000 to U+00FF
  // A bit for each unit from U+0100 on; empty where `members_` is short enough to be searched.
  std::vector<std::uint64_t> wide_;
};

QX_EXPORT const Class& classObject(detail::Type<CharacterSet>);

}  // namespace qx
