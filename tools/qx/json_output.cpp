// Records as one JSON array.

#include <string>

#include "tools/qx/json_writer.h"
#include "tools/qx/output.h"
#include "tools/qx/progress.h"
#include "tools/qx/record_output.h"

namespace qxtool {
namespace {

// The chosen entries as one object. A key path stands where the record has its first step.
void appendChosen(std::string& line, const qx::PropertyValue& record, const Keys& keys) {
  const char* separator = "{";
  for (const auto& [entryKey, entry] : recordOf(record)) {
    for (const Key& key : keys) {
      const bool isEntry = key.path->isEqualToString(entryKey);
      if (!isEntry && (key.firstStep == nullptr || !key.firstStep->isEqualToString(entryKey)))
        continue;
      if (!isEntry && recordOf(record).find(key.path) != nullptr) continue;
      const qx::PropertyValue value = isEntry ? entry : record.valueForKeyPath(key.path);
      if (value == nullptr) continue;
      line += separator;
      appendJsonString(line, key.path->utf8());
      line += ": ";
      appendJson(line, value);
      separator = ", ";
    }
  }
  line += *separator == '{' ? "{}" : "}";
}

}  // namespace

void writeJson(const RecordView& view, Output& output, Progress& progress) {
  if (outputIsTerminal()) progress.stop();
  const std::size_t count = view.records.count();
  std::string line = "[";
  for (std::size_t i = 0; i < count; ++i) {
    line += i == 0 ? "\n" : ",\n";
    const qx::PropertyValue& record = view.records.begin()[i];
    if (view.keys.empty()) {
      appendJson(line, record);
    } else {
      appendChosen(line, record, view.keys);
    }
    output.write(line);
    line.clear();
    if (i % 256 == 0) progress.tick("writing", i, count);
  }
  output.write(line + (count == 0 ? "]\n" : "\n]\n"));
}

}  // namespace qxtool
