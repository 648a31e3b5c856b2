// Performing operations by selector.

#include <QXFoundation/class.h>
#include <QXFoundation/selector.h>

#include "frame/class_record.h"
#include "frame/key_text.h"
#include "frame/operation_call.h"
#include "frame/raise.h"

namespace qx::detail {
namespace {

const Class* asClass(const PropertyValue& v) {
  const Object* o = v.object();
  return o != nullptr && ObjectAccess::kind(*o) == ObjectKind::cls ? static_cast<const Class*>(o)
                                                                   : nullptr;
}

const Operation* findFor(const PropertyValue& target, Selector selector) {
  if (const Class* c = asClass(target)) {
    if (const Operation* o = c->record().findClassOperation(selector)) return o;
  }
  const Class* c = target.cls();
  return c == nullptr ? nullptr : c->record().findOperation(selector);
}

void checkCount(Selector selector, std::size_t wanted, std::size_t got) {
  if (wanted == got) return;
  raiseInvalidArgument("performSelector: " + std::string(selector.text()) + " takes " +
                       std::to_string(wanted) + (wanted == 1 ? " argument" : " arguments") +
                       " and was given " + std::to_string(got));
}

PropertyValue accessProperty(const PropertyValue& target, const Property& property,
                             Selector selector, const PropertyValue* arguments, std::size_t count) {
  const Subject subject = Subject::of(*target.object());
  checkCount(selector, selector.argumentCount(), count);
  if (count == 0) return property.get(subject, property.payload);
  try {
    property.set(subject, property.payload, arguments[0]);
  } catch (const KindException& refused) {
    raiseWithin(target, selector, refused);
  }
  return {};
}

}  // namespace

// Undoes setterSelector(): "setAge:" sets "age", or "Age" where there is no "age".
const Property* accessedProperty(const ClassRecord& record, Selector selector) {
  const std::string_view text = selector.text();
  if (selector.argumentCount() == 0)
    return text.empty() ? nullptr : record.findProperty(KeyText(text));
  if (text.size() < 5 || !text.starts_with("set") || text.find(':') != text.size() - 1)
    return nullptr;
  std::string name(text.substr(3, text.size() - 4));
  if (name[0] >= 'a' && name[0] <= 'z') return nullptr;
  const Property* exact = record.findProperty(KeyText(name));
  name[0] = static_cast<char>(asciiLower(static_cast<unsigned char>(name[0])));
  const Property* usual = record.findProperty(KeyText(name));
  const Property* p = usual != nullptr ? usual : exact;
  return p == nullptr || p->set == nullptr ? nullptr : p;
}

bool responds(const ClassRecord& record, Selector selector) {
  return record.findOperation(selector) != nullptr || accessedProperty(record, selector) != nullptr;
}

PropertyValue performSelectorImpl(const PropertyValue& target, Selector selector,
                                  const PropertyValue* arguments, std::size_t count) {
  if (target.isNil()) return {};
  const PropertyValue held = target;  // the operation may change the caller's variable
  if (const Operation* o = findFor(held, selector)) {
    checkCount(selector, o->argumentCount, count);
    return callOperation(*o, held, selector, arguments);
  }
  if (held.object() != nullptr) {
    if (const Property* p = accessedProperty(held.cls()->record(), selector)) {
      return accessProperty(held, *p, selector, arguments, count);
    }
  }
  raiseUnsupported(held, selector);
}

}  // namespace qx::detail

namespace qx {

bool PropertyValue::respondsToSelector(Selector selector) const {
  if (isNil() || selector.isNull()) return false;
  if (const Class* c = detail::asClass(*this)) {
    if (c->record().findClassOperation(selector) != nullptr) return true;
  }
  const detail::ClassRecord& record = cls()->record();
  return object() != nullptr ? detail::responds(record, selector)
                             : record.findOperation(selector) != nullptr;
}

}  // namespace qx
