#include "qualifiers/key_path.h"

#include <QXFoundation/array.h>
#include <QXFoundation/dictionary.h>

#include "qualifiers/value_kinds.h"

namespace qx::detail {

KeyPath::KeyPath(Ref<String> text) : text_(std::move(text)) {
  if (text_ == nullptr) return;
  if (text_->rangeOfString(".").location == kNotFound) {
    steps_.push_back(text_);
    return;
  }
  const Ref<Array> steps = text_->componentsSeparatedByString(".");
  for (const PropertyValue& step : *steps) steps_.push_back(step.as<String>());
}

const PropertyValue& KeyPath::readFrom(std::size_t first, const PropertyValue& object,
                                       PropertyValue& room) const {
  const PropertyValue* at = steps_.empty() ? &kNil : &object;
  for (std::size_t i = first; i < steps_.size() && !at->isNil(); ++i) {
    if (const Dictionary* dictionary = asDictionary(*at)) {
      at = dictionary->find(*steps_[i]);
      if (at == nullptr) return kNil;
    } else {
      room = at->valueForKey(*steps_[i]);
      at = &room;
    }
  }
  return *at;
}

}  // namespace qx::detail
