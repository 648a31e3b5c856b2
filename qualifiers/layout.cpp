#include "qualifiers/layout.h"

#include "frame/class_record.h"
#include "frame/key_text.h"

namespace qx::detail {

void Layout::release() {
  if (shape_ != nullptr) shape_->release();
  shape_ = nullptr;
  classIndex_ = kNoClass;
  places_.clear();
  hasEvaluator_ = false;
}

void Layout::bind(const std::vector<Ref<String>>& keys, const Shape& shape) {
  release();
  for (const Ref<String>& key : keys) {
    const std::size_t slot = shape.slotOf(KeyText(key));
    Place place;
    if (slot != Shape::kAbsent)
      place = {Place::Way::slot, static_cast<std::uint32_t>(slot), nullptr};
    places_.push_back(place);
  }
  shape_ = const_cast<Shape*>(&shape);
  shape_->retain();
}

void Layout::bind(const std::vector<Ref<String>>& keys, std::uint16_t classIndex) {
  release();
  const ClassRecord& record = classAtIndex(classIndex).record();
  for (const Ref<String>& key : keys) {
    Place place;
    place.property = record.findProperty(KeyText(key));
    place.way = place.property == nullptr                 ? Place::Way::undefined
                : place.property->type == FieldType::none ? Place::Way::getter
                                                          : Place::Way::native;
    places_.push_back(place);
  }
  for (const ProtocolConformance& p : record.protocols) {
    hasEvaluator_ |= p.protocol == &QXKeyValueQualifierEvaluation::protocol() ||
                     p.protocol == &QXKeyComparisonQualifierEvaluation::protocol();
  }
  classIndex_ = classIndex;
}

}  // namespace qx::detail
