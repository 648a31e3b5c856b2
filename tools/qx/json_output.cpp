// Records as one JSON array.

#include <string>

#include "tools/qx/json_writer.h"
#include "tools/qx/output.h"
#include "tools/qx/progress.h"
#include "tools/qx/record_output.h"

namespace qxtool {
namespace {

// Before the first record is written.
void requireJson(const RecordView& view, Progress& progress) {
  for (std::size_t i = 0; i < view.records.count(); ++i) {
    const auto gap = jsonGapOf(chosenFrom(view.records.begin()[i], view.keys));
    if (gap) failFor(*gap, "record " + std::to_string(i + 1));
    if (i % 256 == 0) progress.tick("checking", i, view.records.count());
  }
}

}  // namespace

void writeJson(const RecordView& view, Output& output, Progress& progress) {
  requireJson(view, progress);
  if (outputIsTerminal()) progress.stop();
  const std::size_t count = view.records.count();
  std::string line = "[";
  for (std::size_t i = 0; i < count; ++i) {
    line += i == 0 ? "\n" : ",\n";
    appendJson(line, chosenFrom(view.records.begin()[i], view.keys));
    output.write(line);
    line.clear();
    if (i % 256 == 0) progress.tick("writing", i, count);
  }
  output.write(line + (count == 0 ? "]\n" : "\n]\n"));
}

}  // namespace qxtool
