#include "tools/qx/records.h"

#include "tools/qx/input.h"
#include "tools/qx/json_reader.h"
#include "tools/qx/plist_reader.h"

namespace qxtool {

void readRecords(const std::string& path, RecordSink& sink, Progress& progress) {
  Input input(path, progress);
  if (looksLikePropertyList(input.start())) {
    readPropertyListRecords(input, sink);
  } else {
    readJsonRecords(input, sink);
  }
}

}  // namespace qxtool
