// Values as property lists.
#pragma once

#include <QXFoundation/data.h>
#include <QXFoundation/property_list.h>
#include <QXFoundation/property_value.h>

namespace qxtool {

// The Failure tells which value the format can not hold.
qx::Ref<qx::Data> propertyListOf(const qx::PropertyValue& value, qx::PropertyListFormat format);

}  // namespace qxtool
