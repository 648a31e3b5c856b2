#include "tools/qx/plist_reader.h"

#include <algorithm>
#include <string>

#include <QXFoundation/array.h>
#include <QXFoundation/data.h>
#include <QXFoundation/error.h>

#include "tools/qx/failure.h"
#include "tools/qx/input.h"

namespace qxtool {

bool looksLikePropertyList(std::string_view start) {
  using namespace std::string_view_literals;
  if (start.starts_with("bplist")) return true;
  // XML in 16 bits, with and without a mark. JSON is UTF-8 alone.
  for (const std::string_view utf16 : {"\xFF\xFE<\0"sv, "\xFE\xFF\0<"sv, "<\0"sv, "\0<"sv}) {
    if (start.starts_with(utf16)) return true;
  }
  if (start.starts_with("\xEF\xBB\xBF")) start.remove_prefix(3);
  start.remove_prefix(std::min(start.find_first_not_of(" \t\r\n"), start.size()));
  return start.starts_with('<');
}

qx::PropertyValue readPropertyList(Input& input, qx::PropertyListFormat* format) {
  const auto bytes = qx::Data::from(input.takeRest());
  qx::Ref<qx::Error> error;
  qx::PropertyValue list = qx::PropertyListSerialization::propertyListWithData(
      bytes, qx::PropertyListMutability::immutable, format, &error);
  if (list == nullptr) throw Failure(input.name() + ": " + error->localizedDescription());
  return list;
}

void readPropertyListRecords(Input& input, RecordSink& sink) {
  const qx::PropertyValue list = readPropertyList(input, nullptr);
  const auto* records = list.peek<qx::Array>();
  if (records == nullptr) {
    throw Failure(input.name() + ": the root is " + (list.isDictionary() ? "a dictionary, " : "") +
                  "not an array of dictionaries");
  }
  for (std::size_t i = 0; i < records->count(); ++i) {
    if (records->begin()[i].isDictionary()) continue;
    throw Failure(input.name() + ": element " + std::to_string(i + 1) +
                  " of the array is not a dictionary");
  }
  for (const qx::PropertyValue& record : *records) sink.add(record);
}

}  // namespace qxtool
