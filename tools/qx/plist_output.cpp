// Records as one property list.

#include <QXFoundation/array.h>

#include "tools/qx/output.h"
#include "tools/qx/plist_writer.h"
#include "tools/qx/progress.h"
#include "tools/qx/record_output.h"

namespace qxtool {
namespace {

void writeList(const RecordView& view, qx::PropertyListFormat format, Output& output,
               Progress& progress) {
  const auto records = qx::MutableArray::arrayWithCapacity(view.records.count());
  for (const qx::PropertyValue& record : view.records) {
    records->addObject(chosenFrom(record, view.keys));
  }
  const auto bytes = propertyListOf(records, format);
  progress.stop();
  output.write(bytes->view());
}

}  // namespace

void writeXml(const RecordView& view, Output& output, Progress& progress) {
  writeList(view, qx::PropertyListFormat::xml, output, progress);
}

void writeBinary(const RecordView& view, Output& output, Progress& progress) {
  requireNoTerminal();
  writeList(view, qx::PropertyListFormat::binary, output, progress);
}

}  // namespace qxtool
