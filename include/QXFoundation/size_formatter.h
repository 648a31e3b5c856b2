// QXSizeFormatter: byte counts as text for people, in decimal units.
//
//     auto f = qx::QXSizeFormatter::init();
//     f->stringForObjectValue(1500);                               // "1.500 KB"
//     qx::QXSizeFormatter::stringForByteCount(1010000000)->utf8(); // "1.1 GB"
//
// KB is 1000 bytes, MB 1000 KB, GB 1000 MB; counts up to 1000, and all negative ones, are bytes.
// What stands after the point is not rounded and HAS NO LEADING ZEROS: for MB and GB it is the
// number of hundredths, for KB the number of bytes left over. So 1005 is "1.5 KB", 1050 is "1.50
// KB", and 1050000 is "1.5 MB".
#pragma once

#include <cstdint>

#include <QXFoundation/formatter.h>

namespace qx {

// Formats only. The class is "QXSizeFormatter". Without state; thread-safe.
class QX_EXPORT QXSizeFormatter : public Formatter {
 public:
  // A new formatter; all are alike.
  static Ref<QXSizeFormatter> init();

  // The text for that number of bytes. Never nil.
  static Ref<String> stringForByteCount(std::int64_t count);

  // For a number and for every other object that answers `longLongValue` the text for that count;
  // for a string the text for the decimal number it starts with (0 where it starts with none), cut
  // to a whole one; nil for everything else.
  PropertyValue stringForObjectValue(const PropertyValue& value) const override;
  // The same with these attributes on all of it.
  Ref<AttributedString> attributedStringForObjectValue(
      const PropertyValue& value, In<Dictionary> withDefaultAttributes) const override;
  // Always false, and stores nothing.
  bool getObjectValue(PropertyValue* object, StringArg forString,
                      Ref<String>* errorDescription) const override;
};

QX_EXPORT const Class& classObject(detail::Type<QXSizeFormatter>);

}  // namespace qx
