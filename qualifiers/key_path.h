#pragma once

// Key paths of qualifiers, split at their dots once.

#include <vector>

#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx::detail {

class KeyPath {
 public:
  // Nil reads nil from every object.
  explicit KeyPath(Ref<String> text);

  const Ref<String>& text() const { return text_; }
  const std::vector<Ref<String>>& steps() const { return steps_; }

  // What valueForKeyPath: gives, borrowed where a dictionary holds it; `room` keeps what was made.
  // The result lives as long as the dictionaries on the way do not change.
  const PropertyValue& read(const PropertyValue& object, PropertyValue& room) const {
    return readFrom(0, object, room);
  }
  // The same from step `first` on.
  const PropertyValue& readFrom(std::size_t first, const PropertyValue& object,
                                PropertyValue& room) const;

 private:
  Ref<String> text_;
  std::vector<Ref<String>> steps_;
};

inline constexpr PropertyValue kNil;

}  // namespace qx::detail
