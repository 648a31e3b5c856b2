#include "tools/qx/plist_writer.h"

#include <QXFoundation/error.h>

#include "tools/qx/failure.h"

namespace qxtool {

qx::Ref<qx::Data> propertyListOf(const qx::PropertyValue& value, qx::PropertyListFormat format) {
  qx::Ref<qx::Error> error;
  auto bytes = qx::PropertyListSerialization::dataWithPropertyList(value, format, &error);
  if (bytes == nullptr) throw Failure(error->localizedDescription());
  return bytes;
}

}  // namespace qxtool
