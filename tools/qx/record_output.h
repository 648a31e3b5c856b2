// The forms in which records are written.
#pragma once

#include <string_view>

#include <QXFoundation/array.h>

#include "tools/qx/keys.h"

namespace qxtool {

class Output;
class Progress;

// What is written of the records.
struct RecordView {
  const qx::Array& records;
  // What --keys names; empty: every key.
  const Keys& keys;
};

// A form of --output.
struct RecordForm {
  const char* name;
  void (*write)(const RecordView& view, Output& output, Progress& progress);
};

// The form of that name; null when there is none.
const RecordForm* recordFormNamed(std::string_view name);

// One array, one record a line, the keys in the record's order.
void writeJson(const RecordView& view, Output& output, Progress& progress);

// A property list: one array.
void writeXml(const RecordView& view, Output& output, Progress& progress);
void writeBinary(const RecordView& view, Output& output, Progress& progress);

// A line of keys, then one line a record, in aligned columns. Numbers stand at the right. On a
// terminal, cells are cut where a line would be longer than the screen is wide.
void writeTable(const RecordView& view, Output& output, Progress& progress);

}  // namespace qxtool
