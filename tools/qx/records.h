// Records: what files are read as, a sequence of dictionaries.
#pragma once

#include <string>

#include <QXFoundation/property_value.h>

namespace qxtool {

class Progress;

// Takes the records of a file in their order.
class RecordSink {
 public:
  virtual void add(qx::PropertyValue record) = 0;

 protected:
  ~RecordSink() = default;
};

// Reads a file to its end, JSON or a property list, as its first bytes tell; "-" is standard input.
// A Failure names the file, and the place where it is malformed.
void readRecords(const std::string& path, RecordSink& sink, Progress& progress);

}  // namespace qxtool
