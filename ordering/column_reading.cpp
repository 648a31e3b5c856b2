#include "ordering/column_reading.h"

#include <array>

#include "ordering/key_reader.h"

namespace qx::detail {
namespace {

// How many elements ahead their memory is asked for: first the element's own, then what its key
// refers to in turn.
constexpr std::size_t kAhead = 16;

void prefetchKey(const BorrowedKey& key) {
  if (const PropertyValue* value = key.value()) {
    // Asking for address zero would take its time.
    if (const Object* o = value->object()) __builtin_prefetch(o);
  } else if (key.type == FieldType::text) {
    __builtin_prefetch(key.text().data());
  }
}

}  // namespace

bool readBorrowed(const PropertyValue* elements, std::size_t count, const Ref<String>& key,
                  KeyColumn& column) {
  KeyReader reader(key);
  std::array<BorrowedKey, kAhead> found;
  for (std::size_t i = 0; i < count + kAhead; ++i) {
    BorrowedKey& place = found[i % kAhead];
    if (i >= kAhead) column.add(static_cast<std::uint32_t>(i - kAhead), place);
    if (i >= count) continue;
    if (i + kAhead < count) __builtin_prefetch(elements[i + kAhead].object());
    if (!reader.borrow(elements[i], place)) return false;
    prefetchKey(place);
  }
  return true;
}

std::vector<PropertyValue> readKeys(const Array& elements, const Ref<String>& key) {
  KeyReader reader(key);
  std::vector<PropertyValue> keys;
  keys.reserve(elements.count());
  for (const PropertyValue& element : elements) keys.push_back(reader.read(element));
  return keys;
}

}  // namespace qx::detail
