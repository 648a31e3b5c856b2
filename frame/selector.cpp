#include <mutex>
#include <string>
#include <unordered_set>

#include <QXFoundation/selector.h>
#include <QXFoundation/string.h>

#include "frame/hashing.h"

namespace qx {

Selector Selector::named(StringArg text) {
  struct Hash {
    std::size_t operator()(const std::string& s) const {
      return detail::hashBytes(s.data(), s.size());
    }
  };
  struct Names {
    std::mutex mutex;
    std::unordered_set<std::string, Hash> texts;  // nodes: the texts stay where they are
  };
  static auto* names = new Names;  // never destroyed: selectors point into it
  const std::string name = text.utf8();
  if (name.empty()) return {};
  const std::scoped_lock lock(names->mutex);
  const std::string& kept = *names->texts.insert(name).first;
  return Selector(Interned{}, kept.c_str(), static_cast<std::uint32_t>(kept.size()));
}

}  // namespace qx
