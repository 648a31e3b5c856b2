#include "qualifiers/class_operations.h"

#include <QXFoundation/qualifier.h>

namespace qx::detail {
namespace {

using Call = PropertyValue (*)(const PropertyValue* arguments);

// The receiver, the class, is of no interest to any of them.
PropertyValue forward(const PropertyValue&, const Payload& payload,
                      const PropertyValue* arguments) {
  return unpack<Call>(payload)(arguments);
}

void add(ClassBuilderBase& builder, Selector selector, Call call) {
  builder.addClassOperation({selector, &forward, selector.argumentCount(), pack(call)});
}

Ref<String> text(const PropertyValue& v) { return FromValue<Ref<String>>::get(v); }
Ref<Dictionary> dictionary(const PropertyValue& v) { return FromValue<Ref<Dictionary>>::get(v); }

}  // namespace

// Selectors stand as their names.
void addQualifierClassOperations(ClassBuilderBase& builder) {
  add(builder, "allQualifierOperators",
      [](const PropertyValue*) -> PropertyValue { return QXQualifier::allQualifierOperators(); });
  add(builder, "relationalQualifierOperators", [](const PropertyValue*) -> PropertyValue {
    return QXQualifier::relationalQualifierOperators();
  });
  add(builder, "stringForOperatorSelector:", [](const PropertyValue* a) -> PropertyValue {
    return QXQualifier::stringForOperatorSelector(Selector::named(text(a[0])));
  });
  add(builder, "operatorSelectorForString:", [](const PropertyValue* a) -> PropertyValue {
    const Selector selector = QXQualifier::operatorSelectorForString(text(a[0]));
    return selector.isNull() ? PropertyValue() : PropertyValue(selector.text());
  });
  add(builder, "qualifierToMatchAllValues:", [](const PropertyValue* a) -> PropertyValue {
    return QXQualifier::qualifierToMatchAllValues(dictionary(a[0]));
  });
  add(builder, "qualifierToMatchAnyValue:", [](const PropertyValue* a) -> PropertyValue {
    return QXQualifier::qualifierToMatchAnyValue(dictionary(a[0]));
  });
  add(builder, "qualifierWithQualifierFormat:", [](const PropertyValue* a) -> PropertyValue {
    return QXQualifier::_qualifierWithQualifierFormat(text(a[0]), nullptr, 0);
  });
}

void addVariableClassOperations(ClassBuilderBase& builder) {
  add(builder, "variableWithKey:", [](const PropertyValue* a) -> PropertyValue {
    return QXQualifierVariable::variableWithKey(text(a[0]));
  });
}

}  // namespace qx::detail
