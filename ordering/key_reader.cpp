#include "ordering/key_reader.h"

#include <utility>

#include "frame/class_record.h"

namespace qx::detail {

KeyReader::KeyReader(Ref<String> key) : key_(std::move(key)), text_(key_) {}

// A large dictionary's shape is its own and may change.
std::size_t KeyReader::bindSlot(Shape& shape) {
  if (!shape.isShared()) return shape.slotOf(text_);
  for (std::size_t i = 0; i < places_.size(); ++i) {
    if (places_[i].shape.get() == &shape) {
      recent_ = i;
      return places_[i].slot;
    }
  }
  recent_ = replaced_;
  replaced_ = (replaced_ + 1) % places_.size();
  Place& place = places_[recent_];
  place = {shape.another(), shape.slotOf(text_)};
  return place.slot;
}

const Property* KeyReader::bindProperty(std::uint16_t classIndex) {
  const Property* p = classAtIndex(classIndex).record().findProperty(text_);
  classIndex_ = classIndex;
  property_ = p != nullptr && p->type != FieldType::none ? p : nullptr;
  return property_;
}

PropertyValue KeyReader::read(const PropertyValue& object) {
  BorrowedKey key;
  if (!borrow(object, key)) return object.valueForKey(key_);
  if (const PropertyValue* value = key.value()) return *value;
  return property_->get(Subject::of(*object.object()), property_->payload);
}

}  // namespace qx::detail
