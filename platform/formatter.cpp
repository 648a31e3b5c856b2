#include <QXFoundation/formatter.h>

#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {

Formatter::~Formatter() = default;

PropertyValue Formatter::stringForObjectValue(const PropertyValue&) const {
  detail::raiseUnsupported(const_cast<Formatter*>(this), "stringForObjectValue:");
}

Ref<AttributedString> Formatter::attributedStringForObjectValue(const PropertyValue&,
                                                                In<Dictionary>) const {
  return nullptr;
}

bool Formatter::getObjectValue(PropertyValue*, StringArg, Ref<String>*) const {
  detail::raiseUnsupported(const_cast<Formatter*>(this),
                           "getObjectValue:forString:errorDescription:");
}

void describe(ClassBuilder<Formatter>& c) {
  c.name("NSFormatter").inherits<Object>();
  c.operation("stringForObjectValue:", &Formatter::stringForObjectValue);
  c.operation(
      "attributedStringForObjectValue:withDefaultAttributes:",
      +[](const PropertyValue& r, const PropertyValue& value, const Ref<Dictionary>& attributes) {
        return static_cast<const Formatter&>(*r.object())
            .attributedStringForObjectValue(value, attributes);
      });
}

const Class& classObject(detail::Type<Formatter>) { return detail::buildLibraryClass<Formatter>(); }

}  // namespace qx
