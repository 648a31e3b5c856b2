// Arbitrary bytes as the stored tags of a file: they are an array of strings, each of them a tag
// that can be written and read back, or nothing is read of them.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <QXFoundation/color_tag.h>
#include <QXFoundation/data.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/property_list.h>

#include "files/color_tag_text.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

bool isArrayOfStrings(const qx::PropertyValue& value) {
  const auto elements = value.as<qx::Array>();
  if (elements == nullptr) return false;
  for (const qx::PropertyValue& each : *elements) {
    if (!each.isString()) return false;
  }
  return true;
}

// One tag from text, and the same from what is written of it.
void checkTag(const qx::PropertyValue& text) {
  const auto tag = qx::detail::tagFromStored(text);
  const auto again = qx::detail::tagFromStored(qx::detail::storedTag(tag));
  require(again->color() == tag->color());
  require(again->name()->isEqualToString(tag->name()));
}

void checkStored(const qx::PropertyValue& stored) {
  const bool isReadable = isArrayOfStrings(stored);
  try {
    const auto tags = qx::detail::tagsFromStored(stored);
    require(isReadable && tags->count() == stored.as<qx::Array>()->count());
    require(qx::detail::storedTags(tags)->count() == tags->count());
  } catch (const qx::InvalidArgumentException&) {
    require(!isReadable);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (const auto text = qx::String::from(bytes)) checkTag(text);
  const auto stored = qx::PropertyListSerialization::propertyListWithData(
      qx::Data::from(bytes), qx::PropertyListMutability::immutable, nullptr, nullptr);
  if (!stored.isNil()) checkStored(stored);
  return 0;
}
