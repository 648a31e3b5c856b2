#pragma once

// Reading one key from many objects, as key access does, without looking the key up each time.

#include <array>
#include <cstddef>
#include <cstdint>

#include <QXFoundation/class.h>
#include <QXFoundation/string.h>

#include "frame/dictionary_storage.h"
#include "frame/key_text.h"
#include "frame/shape.h"
#include "ordering/borrowed_key.h"

namespace qx::detail {

class KeyReader {
 public:
  // With a nil key every value is missing. The string is immutable.
  explicit KeyReader(Ref<String> key);
  KeyReader(const KeyReader&) = delete;
  KeyReader& operator=(const KeyReader&) = delete;
  ~KeyReader() = default;

  // Until the next change of the object. False where the object has to be asked, which may run code
  // of the application.
  bool borrow(const PropertyValue& object, BorrowedKey& key);

  // The value, nil where it is missing.
  PropertyValue read(const PropertyValue& object);

 private:
  // Where a shape or a class keeps the key. Shapes are held, so that no other comes to stand at
  // their address.
  struct Place {
    ShapeCount shape;
    std::size_t slot = Shape::kAbsent;
  };

  std::size_t slotIn(const Shape& shape) {
    const Place& place = places_[recent_];
    return place.shape.get() == &shape ? place.slot : bindSlot(const_cast<Shape&>(shape));
  }
  std::size_t bindSlot(Shape& shape);
  // Null where reading the property runs code, or may.
  const Property* propertyOf(std::uint16_t classIndex) {
    return classIndex_ == classIndex ? property_ : bindProperty(classIndex);
  }
  const Property* bindProperty(std::uint16_t classIndex);

  static constexpr PropertyValue kNil{};
  static constexpr std::uint32_t kNoClass = ~std::uint32_t{0};

  const Ref<String> key_;
  const KeyText text_;
  std::array<Place, 4> places_;
  std::size_t recent_ = 0;
  std::size_t replaced_ = 0;
  std::uint32_t classIndex_ = kNoClass;
  const Property* property_ = nullptr;  // of that class, where it is a field
};

inline bool KeyReader::borrow(const PropertyValue& object, BorrowedKey& key) {
  key = {FieldType::value, &kNil};
  Object* o = object.object();
  if (o == nullptr || key_ == nullptr) return true;
  switch (ObjectAccess::kind(*o)) {
    case ObjectKind::dictionary: {
      const auto& dictionary = static_cast<const Dictionary&>(*o);
      const std::size_t slot = slotIn(DictionaryStorage::shape(dictionary));
      if (slot != Shape::kAbsent) key.address = DictionaryStorage::values(dictionary) + slot;
      return true;
    }
    case ObjectKind::object: {
      const Property* p = propertyOf(ObjectAccess::classIndex(*o));
      if (p == nullptr) return false;
      key = {p->type, p->field(Subject::of(*o), p->payload)};
      return true;
    }
    default:
      return false;
  }
}

}  // namespace qx::detail
