#include <QXFoundation/class.h>

#include "frame/class_record.h"
#include "frame/hashing.h"

namespace qx {

const char* Class::name() const { return record_->name; }
const Class* Class::superclass() const { return record_->super; }
bool Class::isSubclassOf(const Class& other) const { return record_->isA(*other.record_); }

bool Class::instancesRespondToSelector(Selector selector) const {
  return detail::responds(*record_, selector);
}

bool Class::conformsToProtocol(const Protocol& protocol) const {
  for (const detail::ProtocolConformance& p : record_->protocols) {
    if (p.protocol == &protocol) return true;
  }
  return false;
}

PropertyValue Class::initWithString(StringArg text) const {
  if (record_->fromText == nullptr || text.isNil()) return {};
  return record_->fromText(text);
}

bool Class::isEqual(const PropertyValue& other) const { return other.object() == this; }
std::size_t Class::hash() const { return Object::hash(); }
std::string Class::description() const { return name(); }
Ref<Object> Class::copy() const { return const_cast<Class*>(this); }

namespace detail {

void* protocolInterface(const PropertyValue& value, const Protocol& protocol) {
  Object* object = value.object();
  if (object == nullptr) return nullptr;
  for (const ProtocolConformance& p : object->cls().record().protocols) {
    if (p.protocol == &protocol) return p.cast(*object);
  }
  return nullptr;
}

}  // namespace detail
}  // namespace qx
