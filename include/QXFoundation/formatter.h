// Formatter: the base of what turns values into text for people and, where it can, text into
// values.
//
//     class Celsius : public qx::Formatter {
//      public:
//       qx::PropertyValue stringForObjectValue(const qx::PropertyValue& value) const override {
//         return value.isNumber() ? qx::PropertyValue(value.description() + " C") : nullptr;
//       }
//     };
#pragma once

#include <QXFoundation/attributed_string.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx {

// The class is "NSFormatter". Formatters without changeable fields are thread-safe.
class QX_EXPORT Formatter : public Object {
 public:
  // The text for a value, nil where there is none for its kind. (A formatter may hand back what it
  // can not format.) The base class raises InvalidArgumentException: every formatter has its own.
  virtual PropertyValue stringForObjectValue(const PropertyValue& value) const;
  // The text with attributes, of which the given ones are meant for all text that the formatter has
  // no own for. Nil by default: there is only plain text.
  virtual Ref<AttributedString> attributedStringForObjectValue(
      const PropertyValue& value, In<Dictionary> withDefaultAttributes) const;
  // Stores the value that the text stands for and gives true; or gives false, and may store a text
  // that tells why. Either place may be null. The base class raises InvalidArgumentException.
  virtual bool getObjectValue(PropertyValue* object, StringArg forString,
                              Ref<String>* errorDescription) const;

 protected:
  Formatter() = default;
  ~Formatter() override;
};

QX_EXPORT const Class& classObject(detail::Type<Formatter>);

}  // namespace qx
