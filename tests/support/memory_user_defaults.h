#pragma once

// User defaults in memory that remember what was done to them, to stand in for the user's own.

#include <algorithm>
#include <string>
#include <vector>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/user_defaults.h>

#include "platform/immutable_copy.h"
#include "platform/standard_user_defaults.h"

namespace test_support {

class MemoryUserDefaults : public qx::UserDefaults {
 public:
  qx::PropertyValue objectForKey(qx::StringArg key) const override {
    return values->objectForKey(key);
  }
  void setObject(const qx::PropertyValue& value, qx::StringArg forKey) override {
    set.push_back(forKey.utf8());
    values->setObject(qx::detail::immutableDeepCopy(value), forKey);
  }
  void removeObjectForKey(qx::StringArg key) override {
    removed.push_back(key.utf8());
    values->removeObjectForKey(key);
  }
  void registerDefaults(qx::In<qx::Dictionary>) override {}
  qx::Ref<qx::Dictionary> dictionaryRepresentation() const override {
    return qx::PropertyValue(values->copy()).as<qx::Dictionary>();
  }
  bool synchronize() override {
    ++synchronized;
    return answer;
  }

  // Each key once, in the order of the first time.
  static std::vector<std::string> once(const std::vector<std::string>& keys) {
    std::vector<std::string> result;
    for (const std::string& key : keys) {
      if (std::find(result.begin(), result.end(), key) == result.end()) result.push_back(key);
    }
    return result;
  }
  void forget() {
    set.clear();
    removed.clear();
    synchronized = 0;
  }

  qx::Ref<qx::MutableDictionary> values = qx::MutableDictionary::init();
  std::vector<std::string> set;      // keys, in order, as often as they were set
  std::vector<std::string> removed;  // the same
  int synchronized = 0;
  bool answer = true;  // of synchronize
};

inline void describe(qx::ClassBuilder<MemoryUserDefaults>& c) {
  c.name("MemoryUserDefaults").inherits<qx::UserDefaults>();
}

// In the place of the user's own while it lives.
class WithMemoryUserDefaults {
 public:
  qx::Ref<MemoryUserDefaults> defaults = qx::make<MemoryUserDefaults>();

 private:
  qx::detail::ReplacedUserDefaults replaced_{defaults};
};

}  // namespace test_support
