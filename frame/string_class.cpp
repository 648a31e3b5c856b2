// What strings answer by selector and by key.

#include <QXFoundation/array.h>
#include <QXFoundation/string.h>

#include "frame/comparison_operations.h"
#include "frame/library_class.h"

namespace qx {
namespace {

Ref<MutableString> mutableFrom(StringArg text) { return MutableString::from(text); }

}  // namespace

void describe(ClassBuilder<String>& c) {
  c.setCore();
  c.name("NSString").inherits<Object>().initialisedFromText<&String::from>();
  c.property("length", &String::length);
  c.operation("UTF8String", &String::UTF8String);
  c.operation("intValue", &String::intValue).operation("integerValue", &String::integerValue);
  c.operation("unsignedIntegerValue", &String::unsignedIntegerValue);
  c.operation("floatValue", &String::floatValue).operation("doubleValue", &String::doubleValue);
  c.operation("boolValue", &String::boolValue);
  c.operation("lowercaseString", &String::lowercaseString);
  c.operation("uppercaseString", &String::uppercaseString);
  c.operation("capitalizedString", &String::capitalizedString);
  c.operation("isEqualToString:", &detail::isEqualOperation);
  c.operation("compare:", &detail::compareOperation);
  c.operation("caseInsensitiveCompare:", &detail::caseInsensitiveCompareOperation);
  c.operation("isLike:", &detail::comparisonOperation<detail::Comparison::isLike>);
  c.operation("isCaseInsensitiveLike:",
              &detail::comparisonOperation<detail::Comparison::isCaseInsensitiveLike>);
  c.operation("doesContain:", &detail::comparisonOperation<detail::Comparison::doesContain>);
  c.operation(
      "hasPrefix:", +[](const PropertyValue& r, const Ref<String>& text) {
        return r.as<String>()->hasPrefix(text);
      });
  c.operation(
      "hasSuffix:", +[](const PropertyValue& r, const Ref<String>& text) {
        return r.as<String>()->hasSuffix(text);
      });
  c.operation(
      "stringByAppendingString:", +[](const PropertyValue& r, const Ref<String>& text) {
        return r.as<String>()->stringByAppendingString(text);
      });
  c.operation(
      "componentsSeparatedByString:", +[](const PropertyValue& r, const Ref<String>& text) {
        return r.as<String>()->componentsSeparatedByString(text);
      });
}

void describe(ClassBuilder<MutableString>& c) {
  c.setCore();
  c.name("NSMutableString").inherits<String>().initialisedFromText<&mutableFrom>();
  c.operation(
      "setString:", +[](const PropertyValue& r, const Ref<String>& text) {
        r.as<MutableString>()->setString(text);
      });
  c.operation(
      "appendString:", +[](const PropertyValue& r, const Ref<String>& text) {
        r.as<MutableString>()->appendString(text);
      });
}

const Class& classObject(detail::Type<String>) { return detail::buildLibraryClass<String>(); }
const Class& classObject(detail::Type<MutableString>) {
  return detail::buildLibraryClass<MutableString>();
}

}  // namespace qx
