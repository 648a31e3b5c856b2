#pragma once

// User defaults in a file that several processes of one application share.

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include <QXFoundation/user_defaults.h>

#include "platform/property_list_file.h"

namespace qx::detail {

class FileUserDefaults : public UserDefaults {
 public:
  // Reads the file; none, and one that can not be read, count as empty. With an empty path nothing
  // is ever saved.
  explicit FileUserDefaults(std::string path);

  PropertyValue objectForKey(StringArg key) const override;
  void setObject(const PropertyValue& value, StringArg forKey) override;
  void removeObjectForKey(StringArg key) override;
  void registerDefaults(In<Dictionary> values) override;
  Ref<Dictionary> dictionaryRepresentation() const override;
  bool synchronize() override;
  Ref<Error> lastSaveError() const override;

  // How long to wait for another process that keeps the lock.
  void setPatience(unsigned milliseconds) { patience_ = milliseconds; }

 private:
  // A key that was set, or removed where the value is nil, and not saved since.
  struct Change {
    Ref<String> key;
    PropertyValue value;
    std::int64_t number;
  };
  using Changes = std::vector<Change>;

  void change(const PropertyValue& value, StringArg key);
  Changes changes() const;
  bool save(const Changes& changed, Ref<Error>& error);
  bool write(const Ref<Dictionary>& content, const Changes& changed, Ref<Error>* error);
  void readAgain();
  void keepError(Ref<Error> error);
  void adopt(const Dictionary& content, const Changes& saved);

  std::mutex synchronizing_;  // taken before mutex_; guards file_ and stored_
  PropertyListFile file_;
  Ref<Dictionary> stored_;  // what the file held when it was last read or written
  unsigned patience_ = 10'000;

  mutable std::mutex mutex_;           // guards what follows
  Ref<MutableDictionary> current_;     // stored_ with every change since
  Ref<MutableDictionary> changed_;     // the keys of these changes, each with its last number
  Ref<MutableDictionary> registered_;  // below the values
  std::int64_t lastNumber_ = 0;
  Ref<Error> lastSaveError_;
};

const Class& classObject(Type<FileUserDefaults>);

}  // namespace qx::detail
