#include <QXFoundation/notification_center.h>

#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {

Notification::Notification(detail::Passkey, Ref<String> name, PropertyValue object,
                           Ref<Dictionary> userInfo)
    : name_(std::move(name)), object_(std::move(object)), userInfo_(std::move(userInfo)) {}

Ref<Notification> Notification::notificationWithName(StringArg name, const PropertyValue& object,
                                                     In<Dictionary> userInfo) {
  if (name.isNil()) {
    detail::raiseInvalidArgument(
        "+[NSNotification notificationWithName:object:userInfo:]: the name is nil");
  }
  return make<Notification>(detail::Passkey{}, name.string(), object,
                            Ref<Dictionary>(userInfo.get()));
}

std::string Notification::description() const {
  std::string text = "<NSNotification " + name_->utf8() + "; object = " + object_.description();
  if (userInfo_ != nullptr) text += "; userInfo = " + userInfo_->description();
  return text + ">";
}
Ref<Object> Notification::copy() const { return const_cast<Notification*>(this); }

void describe(ClassBuilder<Notification>& c) {
  c.name("NSNotification").inherits<Object>();
  c.property("name", &Notification::name)
      .property("object", &Notification::object)
      .property("userInfo", &Notification::userInfo);
}

const Class& classObject(detail::Type<Notification>) {
  return detail::buildLibraryClass<Notification>();
}

}  // namespace qx
