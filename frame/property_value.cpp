// What every value answers: the lenient and strict views, class, hash, equality, description,
// copies.

#include <QXFoundation/number.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

#include "frame/deep.h"
#include "frame/library_class.h"
#include "frame/numeric.h"
#include "frame/raise.h"
#include "frame/word_access.h"

namespace qx {

using detail::NumericValue;

namespace {

// The view of a number object, of an inline number, of a string, else the otherwise.
template <class Result, class OfObject, class OfInline, class OfString>
Result view(const PropertyValue& v, OfObject ofObject, OfInline ofInline, OfString ofString) {
  NumericValue n;
  if (detail::WordAccess::inlineNumber(v, n)) return ofInline(n);
  const Object* o = v.object();
  if (o == nullptr) return {};
  if (detail::ObjectAccess::kind(*o) == detail::ObjectKind::number)
    return ofObject(static_cast<const Number&>(*o));
  if (detail::ObjectAccess::kind(*o) == detail::ObjectKind::string)
    return ofString(static_cast<const String&>(*o));
  return {};
}

}  // namespace

int PropertyValue::intValue() const {
  return view<int>(
      *this, [](const Number& n) { return n.intValue(); }, detail::toInt32,
      [](const String& s) { return s.intValue(); });
}
std::int64_t PropertyValue::integerValue() const {
  return view<std::int64_t>(
      *this, [](const Number& n) { return n.longLongValue(); }, detail::toInt64,
      [](const String& s) { return s.integerValue(); });
}
std::uint64_t PropertyValue::unsignedIntegerValue() const {
  return view<std::uint64_t>(
      *this, [](const Number& n) { return n.unsignedLongLongValue(); }, detail::toUInt64,
      [](const String& s) { return s.unsignedIntegerValue(); });
}
float PropertyValue::floatValue() const {
  return view<float>(
      *this, [](const Number& n) { return n.floatValue(); }, detail::toSingle,
      [](const String& s) { return s.floatValue(); });
}
double PropertyValue::doubleValue() const {
  return view<double>(
      *this, [](const Number& n) { return n.doubleValue(); }, detail::toReal,
      [](const String& s) { return s.doubleValue(); });
}
bool PropertyValue::boolValue() const {
  return view<bool>(
      *this, [](const Number& n) { return n.boolValue(); }, detail::toBool,
      [](const String& s) { return s.boolValue(); });
}

std::optional<std::int64_t> PropertyValue::exactSigned() const {
  NumericValue n;
  if (!detail::numericOf(*this, n)) return std::nullopt;
  if (n.kind == NumberKind::signedInteger) return n.i;
  if (n.kind == NumberKind::unsignedInteger && n.u >> 63 == 0)
    return static_cast<std::int64_t>(n.u);
  return std::nullopt;
}
std::optional<std::uint64_t> PropertyValue::exactUnsigned() const {
  NumericValue n;
  if (!detail::numericOf(*this, n)) return std::nullopt;
  if (n.kind == NumberKind::unsignedInteger) return n.u;
  if (n.kind == NumberKind::signedInteger && n.i >= 0) return static_cast<std::uint64_t>(n.i);
  return std::nullopt;
}
std::optional<double> PropertyValue::exactReal() const {
  NumericValue n;
  if (!detail::numericOf(*this, n) || n.kind == NumberKind::boolean) return std::nullopt;
  return detail::toReal(n);
}
std::optional<float> PropertyValue::exactSingle() const {
  NumericValue n;
  if (!detail::numericOf(*this, n) || n.kind == NumberKind::boolean) return std::nullopt;
  return detail::toSingle(n);
}
std::optional<std::string> PropertyValue::exactText() const {
  if (!isString()) return std::nullopt;
  return static_cast<const String*>(object())->utf8();
}

const Class* PropertyValue::cls() const {
  if (const Object* o = object()) return &o->cls();
  if (isNil()) return nullptr;
  return isNull() ? &detail::nullClass() : &classOf<Number>();
}

bool PropertyValue::isKindOfClass(const Class& c) const {
  const Class* mine = cls();
  return mine != nullptr && mine->isSubclassOf(c);
}

bool PropertyValue::conformsToProtocol(const Protocol& protocol) const {
  const Class* mine = cls();
  return mine != nullptr && mine->conformsToProtocol(protocol);
}

std::size_t PropertyValue::hash() const {
  NumericValue n;
  if (const Object* o = object()) return o->hash();
  if (detail::WordAccess::inlineNumber(*this, n)) return detail::hashNumber(n);
  return static_cast<std::size_t>(word_);
}

std::string PropertyValue::description() const {
  NumericValue n;
  if (const Object* o = object()) return o->description();
  if (detail::WordAccess::inlineNumber(*this, n)) return detail::numberText(n);
  return isNull() ? "<null>" : "";
}

PropertyValue PropertyValue::copy() const {
  const Object* o = object();
  return o == nullptr ? *this : PropertyValue(o->copy());
}
PropertyValue PropertyValue::mutableCopy() const {
  const Object* o = object();
  if (o != nullptr) return o->mutableCopy();
  if (isNil()) return {};
  detail::raiseUnsupported(*this, "mutableCopy");
}

bool PropertyValue::isEqualSlow(const PropertyValue& a, const PropertyValue& b) {
  if (const Object* o = a.object()) return o->isEqual(b);
  NumericValue left;
  NumericValue right;
  return detail::WordAccess::inlineNumber(a, left) && detail::numericOf(b, right) &&
         detail::compareNumbers(left, right) == 0;
}

}  // namespace qx
