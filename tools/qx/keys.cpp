#include "tools/qx/keys.h"

#include <set>
#include <string>

#include "tools/qx/failure.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

Key keyOf(std::string_view path) {
  const std::size_t point = path.find('.');
  if (point == std::string_view::npos) return {qx::String::from(path), nullptr};
  return {qx::String::from(path), qx::String::from(path.substr(0, point))};
}

// True when the record has just the keys that were listed last, in their order: then there is
// nothing new in it.
bool hasKeys(const qx::Dictionary& record, const std::vector<const qx::String*>& keys) {
  if (record.count() != keys.size()) return false;
  auto expected = keys.begin();
  for (const auto& [key, value] : record) {
    if (&key != *expected++) return false;
  }
  return true;
}

}  // namespace

Keys keysFromList(std::string_view list) {
  if (!isValidUtf8(list)) throw Failure("--keys: the list is not UTF-8");
  Keys keys;
  std::set<std::string_view> known;
  while (true) {
    const std::size_t comma = list.find(',');
    const std::string_view key = list.substr(0, comma);
    if (key.empty()) throw Failure("--keys: there is an empty key in the list");
    if (known.insert(key).second) keys.push_back(keyOf(key));
    if (comma == std::string_view::npos) return keys;
    list.remove_prefix(comma + 1);
  }
}

Keys keysOf(const qx::Array& records) {
  Keys keys;
  std::set<std::string> known;
  std::vector<const qx::String*> last;
  for (const qx::PropertyValue& element : records) {
    const qx::Dictionary& record = recordOf(element);
    if (hasKeys(record, last)) continue;
    last.clear();
    for (const auto& [key, value] : record) {
      last.push_back(&key);
      if (known.insert(key.utf8()).second) keys.push_back({qx::String::from(key), nullptr});
    }
  }
  return keys;
}

qx::PropertyValue valueAt(const qx::PropertyValue& record, const Key& key) {
  if (const qx::PropertyValue* entry = recordOf(record).find(key.path)) return *entry;
  return key.firstStep == nullptr ? qx::PropertyValue() : record.valueForKeyPath(key.path);
}

qx::PropertyValue chosenFrom(const qx::PropertyValue& record, const Keys& keys) {
  if (keys.empty()) return record;
  std::vector<qx::Entry> entries;
  for (const auto& [entryKey, entry] : recordOf(record)) {
    for (const Key& key : keys) {
      const bool isEntry = key.path->isEqualToString(entryKey);
      if (!isEntry && (key.firstStep == nullptr || !key.firstStep->isEqualToString(entryKey)))
        continue;
      if (!isEntry && recordOf(record).find(key.path) != nullptr) continue;
      const qx::PropertyValue value = isEntry ? entry : record.valueForKeyPath(key.path);
      if (value != nullptr) entries.push_back({*key.path, value});
    }
  }
  return qx::Dictionary::from(entries.data(), entries.size());
}

}  // namespace qxtool
