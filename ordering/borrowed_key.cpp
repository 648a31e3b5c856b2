#include "ordering/borrowed_key.h"

#include <QXFoundation/number.h>

#include "frame/class_record.h"
#include "frame/string_storage.h"
#include "frame/utf.h"
#include "frame/word_access.h"

namespace qx::detail {
namespace {

template <class Field>
Field fieldAt(const void* address) {
  return *static_cast<const Field*>(address);
}

bool isPlainNumberObject(const PropertyValue& value, NumericValue& number) {
  const Object* o = value.object();
  if (o == nullptr || ObjectAccess::kind(*o) != ObjectKind::number || !o->cls().record().core) {
    return false;
  }
  number = static_cast<const Number*>(o)->numeric();
  return true;
}

}  // namespace

bool isPlainNumber(const BorrowedKey& key, NumericValue& number) {
  switch (key.type) {
    case FieldType::value:
      return WordAccess::inlineNumber(*key.value(), number) ||
             isPlainNumberObject(*key.value(), number);
    case FieldType::none:
    case FieldType::text:
      return false;
    case FieldType::boolean:
      number = NumericValue::boolean(fieldAt<bool>(key.address));
      return true;
    case FieldType::int8:
      number = NumericValue::signedInteger(fieldAt<std::int8_t>(key.address));
      return true;
    case FieldType::int16:
      number = NumericValue::signedInteger(fieldAt<std::int16_t>(key.address));
      return true;
    case FieldType::int32:
      number = NumericValue::signedInteger(fieldAt<std::int32_t>(key.address));
      return true;
    case FieldType::int64:
      number = NumericValue::signedInteger(fieldAt<std::int64_t>(key.address));
      return true;
    case FieldType::uint8:
      number = NumericValue::unsignedInteger(fieldAt<std::uint8_t>(key.address));
      return true;
    case FieldType::uint16:
      number = NumericValue::unsignedInteger(fieldAt<std::uint16_t>(key.address));
      return true;
    case FieldType::uint32:
      number = NumericValue::unsignedInteger(fieldAt<std::uint32_t>(key.address));
      return true;
    case FieldType::uint64:
      number = NumericValue::unsignedInteger(fieldAt<std::uint64_t>(key.address));
      return true;
    case FieldType::single:
      number = NumericValue::single(fieldAt<float>(key.address));
      return true;
    case FieldType::real:
      number = NumericValue::real(fieldAt<double>(key.address));
      return true;
  }
  return false;
}

bool isPlainText(const BorrowedKey& key, TextSpan& text) {
  if (key.type == FieldType::text) {
    text = TextSpan::latin1(key.text());
    return asciiPrefix(key.text()) == key.text().size();
  }
  static const std::uint16_t plain = classIndexOf(classOf<String>());
  const PropertyValue* value = key.value();
  const Object* o = value == nullptr ? nullptr : value->object();
  if (o == nullptr || ObjectAccess::classIndex(*o) != plain) return false;
  text = StringStorage::span(static_cast<const String&>(*o));
  return true;
}

}  // namespace qx::detail
