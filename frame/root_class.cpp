// The root class, whose operations every value answers by selector, and the class of the null
// object.

#include <algorithm>
#include <string_view>

#include <QXFoundation/class.h>
#include <QXFoundation/string.h>

#include "frame/borrowed_selector.h"
#include "frame/comparison_operations.h"
#include "frame/library_class.h"

namespace qx {
namespace detail {

namespace {

// By name, as protocols are no objects that a selector's argument could be.
bool conformsByName(const ClassRecord& record, std::string_view protocol) {
  return std::any_of(record.protocols.begin(), record.protocols.end(),
                     [&](const ProtocolConformance& p) { return p.protocol->name() == protocol; });
}

}  // namespace

// Stands for the class of the null object alone: null itself is inline.
class NullObject : public Object {};

void describe(ClassBuilder<NullObject>& c) {
  c.setCore();
  c.name("NSNull").inherits<Object>();
}

const Class& nullClass() { return buildLibraryClass<NullObject>(); }

}  // namespace detail

void describe(ClassBuilder<Object>& c) {
  using detail::Comparison;
  c.setCore();
  c.name("NSObject");
  // These five call the virtual functions that classes override.
  c.addFunction("isEqual:", &detail::isEqualOperation);
  c.operation("isEqualTo:", &detail::comparisonOperation<Comparison::isEqualTo>);
  c.operation("isNotEqualTo:", &detail::comparisonOperation<Comparison::isNotEqualTo>);
  c.operation("isLessThan:", &detail::comparisonOperation<Comparison::isLessThan>);
  c.operation("isLessThanOrEqualTo:",
              &detail::comparisonOperation<Comparison::isLessThanOrEqualTo>);
  c.operation("isGreaterThan:", &detail::comparisonOperation<Comparison::isGreaterThan>);
  c.operation("isGreaterThanOrEqualTo:",
              &detail::comparisonOperation<Comparison::isGreaterThanOrEqualTo>);
  c.operation("self", +[](const PropertyValue& r) { return r; });
  c.operation("class", +[](const PropertyValue& r) { return PropertyValue(r.cls()); });
  c.addFunction("hash", +[](const PropertyValue& r) { return r.hash(); });
  c.addFunction(
      "description", +[](const PropertyValue& r) {
        return r.isString() ? r.copy() : PropertyValue(r.description());
      });
  c.addFunction("copy", +[](const PropertyValue& r) { return r.copy(); });
  c.addFunction("mutableCopy", +[](const PropertyValue& r) { return r.mutableCopy(); });
  c.operation(
      "isKindOfClass:", +[](const PropertyValue& r, const Ref<Class>& cls) {
        return cls != nullptr && r.isKindOfClass(*cls);
      });
  c.operation(
      "respondsToSelector:", +[](const PropertyValue& r, const PropertyValue& name) {
        if (!name.isString()) return false;
        const std::string text = name.description();
        return r.respondsToSelector(detail::SelectorAccess::borrowed(text));
      });
  c.operation(
      "conformsToProtocol:", +[](const PropertyValue& r, const PropertyValue& name) {
        return name.isString() && detail::conformsByName(r.cls()->record(), name.description());
      });
  c.operation(
      "valueForKey:",
      +[](const PropertyValue& r, const Ref<String>& key) { return r.valueForKey(key); });
  c.operation(
      "valueForKeyPath:",
      +[](const PropertyValue& r, const Ref<String>& path) { return r.valueForKeyPath(path); });
  c.operation(
      "setValue:forKey:", +[](const PropertyValue& r, const PropertyValue& v,
                              const Ref<String>& key) { r.setValue(v, key); });
}

void describe(ClassBuilder<Class>& c) {
  c.setCore();
  c.name("Class").inherits<Object>();
  c.property("name", &Class::name);
  c.property("superclass", &Class::superclass);
}

const Class& classObject(detail::Type<Object>) { return detail::buildLibraryClass<Object>(); }
const Class& classObject(detail::Type<Class>) { return detail::buildLibraryClass<Class>(); }

}  // namespace qx
