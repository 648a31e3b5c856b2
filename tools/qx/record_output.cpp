#include "tools/qx/record_output.h"

namespace qxtool {
namespace {

constexpr RecordForm kForms[] = {
    {"table", &writeTable}, {"json", &writeJson}, {"plist", &writeXml}, {"binary", &writeBinary}};

}  // namespace

const RecordForm* recordFormNamed(std::string_view name) {
  for (const RecordForm& form : kForms) {
    if (form.name == name) return &form;
  }
  return nullptr;
}

}  // namespace qxtool
