#pragma once

// What the parts of the subsystem need of each other's insides.

#include <memory>
#include <string>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/notification_center.h>
#include <QXFoundation/preferences.h>
#include <QXFoundation/preferences_array.h>
#include <QXFoundation/preferences_dictionary.h>

#include "platform/property_list_file.h"
#include "preferences/branch_index.h"
#include "preferences/key_pool.h"

namespace qx {

struct QXPreferences::Parts {
  Ref<String> path;  // nil, empty, or that of a file
  Ref<NotificationCenter> center;
  Ref<QXPreferencesDictionary> root;
  Ref<MutableDictionary> defaults;  // by whole paths
  // The canonical object for each path ever observed, by its text.
  Ref<MutableDictionary> notificationKeys;
  std::unique_ptr<detail::PropertyListFile> file;
  Ref<Error> saveError;  // of the last saving
  detail::BranchIndex branches;
  detail::KeyPool keys;
  unsigned held = 0;          // SyncScopes
  bool syncWasAsked = false;  // within them
};

namespace detail {

struct PreferencesAccess {
  using Parts = QXPreferences::Parts;

  static const PreferencesLink& link(const QXPreferences& store) { return store.link_; }
  static PreferencesLink link(In<QXPreferences> store) {
    return store ? store->link_ : PreferencesLink();
  }
  static const PreferencesLink& link(const QXPreferencesArray& a) { return a.link_; }
  static const PreferencesLink& link(const QXPreferencesDictionary& d) { return d.link_; }
  static void setLink(QXPreferencesArray& a, const PreferencesLink& link) { a.link_ = link; }
  static void setLink(QXPreferencesDictionary& d, const PreferencesLink& link) { d.link_ = link; }

  static Parts& parts(const QXPreferences& store) { return *store.parts_; }
  static bool onlyMarks(const QXPreferences& store) { return store.onlyMarks_; }
  static void mark(QXPreferences& store) { store.isDirty_ = true; }
};

// While it lives, a store that applies changes immediately waits with saving: one operation saves
// once, at its end, and not with each of its steps. A null store is allowed.
class SyncScope {
 public:
  explicit SyncScope(QXPreferences* store);
  SyncScope(const SyncScope&) = delete;
  SyncScope& operator=(const SyncScope&) = delete;
  ~SyncScope();

 private:
  Ref<QXPreferences> store_;
};

// Tells a container's store of a change: made before the change, called after it.
class ChangeReport {
 public:
  // The key is kept: the change may end what it is borrowed from.
  ChangeReport(const PreferencesLink& link, StringArg key);
  void operator()(Object& container) const;

 private:
  const PreferencesLink& link_;
  Ref<QXPreferences> told_;  // nil where the store is only to be marked, or there is none
  Ref<String> key_;
};

}  // namespace detail
}  // namespace qx
