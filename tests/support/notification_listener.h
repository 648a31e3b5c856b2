#pragma once

// An observer by selector that keeps what it hears.

#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace test_support {

class NotificationListener : public qx::Object {
 public:
  void heard(const qx::Ref<qx::Notification>& n) { notifications.push_back(n); }
  std::vector<std::string> names() const {
    std::vector<std::string> list;
    for (const auto& n : notifications) list.push_back(n->name()->utf8());
    return list;
  }
  std::vector<qx::Ref<qx::Notification>> notifications;
};

inline void describe(qx::ClassBuilder<NotificationListener>& c) {
  c.name("NotificationListener").operation("heard:", &NotificationListener::heard);
}

}  // namespace test_support
