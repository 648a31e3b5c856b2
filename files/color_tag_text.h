#pragma once

// Tags as they are stored.

#include <QXFoundation/color_tag.h>

namespace qx::detail {

// "NAME", or "NAME\nCOLOUR". Anything but a tag raises. Nil for a tag with neither name nor colour.
Ref<String> storedTag(const PropertyValue& tag);
// Anything but a string raises.
Ref<QXColorTag> tagFromStored(const PropertyValue& text);

// Whole arrays. Nil gives nil; what is no array raises.
Ref<Array> storedTags(In<Array> tags);
Ref<Array> tagsFromStored(const PropertyValue& texts);

}  // namespace qx::detail
