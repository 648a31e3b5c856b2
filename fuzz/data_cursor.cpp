// Arbitrary bytes, read in an order that the first of them tell, beside the plain rules on the
// bytes that are left.

#include <cstdint>
#include <cstdlib>
#include <string>

#include <QXFoundation/data_cursor.h>
#include <QXFoundation/exception.h>

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

// Each byte is the character of its number.
bool isSame(const qx::Ref<qx::String>& text, const std::string& bytes) {
  if (text->length() != bytes.size()) return false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (text->characterAtIndex(i) != static_cast<unsigned char>(bytes[i])) return false;
  }
  return true;
}

void checkLine(qx::QXDataCursor& cursor, std::string& rest) {
  const auto line = cursor.readLine();
  require((line == nullptr) == rest.empty());
  if (line == nullptr) return;
  const std::size_t length = std::min(rest.find_first_of("\r\n"), rest.size());
  require(isSame(line, rest.substr(0, length)));
  rest.erase(0, length);
  rest.erase(0, rest.starts_with("\r\n") ? 2 : 1);
}

void checkString(qx::QXDataCursor& cursor, std::string& rest, std::size_t length) {
  bool raised = false;
  try {
    require(isSame(cursor.readStringOfLength(length), rest.substr(0, length)));
  } catch (const qx::RangeException&) {
    raised = true;
  }
  require(raised == (length > rest.size()));
  if (!raised) rest.erase(0, length);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::size_t steps = size / 4;
  std::string rest(reinterpret_cast<const char*>(data) + steps, size - steps);
  if (rest.size() > 4096) return 0;  // the plain rules take quadratic time
  const auto cursor = qx::QXDataCursor::initWithData(qx::Data::from(rest));
  for (std::size_t i = 0; i < steps; ++i) {
    require(cursor->hasAvailableData() == !rest.empty());
    data[i] < 128 ? checkLine(*cursor, rest) : checkString(*cursor, rest, data[i] - 128U);
  }
  while (!rest.empty()) checkLine(*cursor, rest);
  require(!cursor->hasAvailableData());
  return 0;
}
