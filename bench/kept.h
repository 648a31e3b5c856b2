#pragma once

// What several benchmarks, or the repetitions of one, work on.

#include <map>

namespace bench {

// What `make` gives for `key`, made when it is first needed and kept until the program ends. Every
// place in the code that calls this keeps its own.
template <class Key, class Make>
const auto& keptFor(const Key& key, Make make) {
  static std::map<Key, decltype(make(key))> known;
  const auto place = known.find(key);
  return place != known.end() ? place->second : known.emplace(key, make(key)).first->second;
}

}  // namespace bench
