// Arbitrary text as a size, and the number in its first bytes in groups: texts that can be read
// back to what they say.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <QXFoundation/number.h>
#include <QXFoundation/size_formatter.h>
#include <QXFoundation/thousand_format.h>

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

// The count that a size text stands for, as far as its digits tell.
std::int64_t countOf(const std::string& text) {
  const std::size_t space = text.find(' ');
  const std::string unit = text.substr(space + 1);
  const std::int64_t step = unit == "GB"   ? 1000000000
                            : unit == "MB" ? 1000000
                            : unit == "KB" ? 1000
                                           : 1;
  require(step > 1 || unit == "bytes");
  std::int64_t count = std::stoll(text) * step;
  const std::size_t point = text.find('.');
  if (point != std::string::npos)
    count += std::stoll(text.substr(point + 1)) * (step == 1000 ? 1 : step / 100);
  return count;
}

void checkSize(std::int64_t n) {
  const std::int64_t shown = countOf(qx::QXSizeFormatter::stringForByteCount(n)->utf8());
  const std::int64_t lost = n >= 1000000000 ? 10000000 : n >= 1000000 ? 10000 : 1;
  require(shown <= n && n - shown < lost);
}

void checkGroups(std::int64_t n) {
  const std::string text = qx::thousandFormat(n)->utf8();
  std::uint64_t value = 0;
  std::size_t at = 0;
  while (at <= text.size()) {
    const std::size_t comma = std::min(text.find(',', at), text.size());
    value = value * 1024 + static_cast<std::uint64_t>(std::stoll(text.substr(at, comma - at)));
    at = comma + 1;
  }
  require(static_cast<std::int64_t>(value) == n);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto formatter = qx::QXSizeFormatter::init();
  const std::int64_t n = qx::DecimalNumber::initWithString(text)->longLongValue();
  require(formatter->stringForObjectValue(text) ==
          qx::PropertyValue(qx::QXSizeFormatter::stringForByteCount(n)));
  checkSize(n);
  checkGroups(n);
  std::int64_t number = 0;
  if (size >= sizeof number) std::memcpy(&number, data, sizeof number);
  checkSize(number);
  checkGroups(number);
  return 0;
}
