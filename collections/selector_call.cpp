#include "collections/selector_call.h"

#include "frame/class_record.h"
#include "frame/operation_call.h"

namespace qx::detail {

// Class objects perform operations of their own, which are none of their class's instances.
PropertyValue SelectorCall::lookUp(const PropertyValue& target) {
  const Object* o = target.object();
  if (o != nullptr && ObjectAccess::kind(*o) != ObjectKind::cls) {
    const Operation* found = o->cls().record().findOperation(selector_);
    if (found != nullptr && found->argumentCount == count_) {
      operation_ = found;
      classIndex_ = ObjectAccess::classIndex(*o);
      return callOperation(*found, target, selector_, &argument_);
    }
  }
  return performSelectorImpl(target, selector_, &argument_, count_);
}

}  // namespace qx::detail
