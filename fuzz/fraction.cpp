// Arbitrary pairs and doubles as fractions: nothing may be undefined, and what is made obeys the
// rules.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include <QXFoundation/archiver.h>
#include <QXFoundation/fraction_number.h>

namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

void require(bool condition) {
  if (!condition) std::abort();
}

void check(const qx::Ref<qx::QXFractionNumber>& f) {
  require(!f->description().empty());
  require(f->isInteger() || f->denominator() != 1);
  require(f->intValue() == static_cast<std::int32_t>(f->truncate()));
  require(f->shortValue() == static_cast<std::int16_t>(f->truncate()));
  (void)f->floatValue();
  require(f->getNSNumber().isNumber());
  require(qx::PropertyValue(f) == qx::PropertyValue(f->doubleValue()));
  require(qx::PropertyValue(f).hash() == qx::PropertyValue(f->doubleValue()).hash());
  const auto again =
      qx::Unarchiver::unarchiveObjectWithData(qx::Archiver::archivedDataWithRootObject(f))
          .as<qx::QXFractionNumber>();
  require(again->numerator() == f->numerator() && again->denominator() == f->denominator());
  f->normalize();
  require(f->denominator() >= 0 || f->denominator() == kLeast);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::int64_t parts[2] = {};
  std::memcpy(parts, data, size < sizeof parts ? size : sizeof parts);
  double x = 0;
  std::memcpy(&x, parts, sizeof x);
  const auto [n, d] = parts;
  const auto reduced = qx::QXFractionNumber::initWithNumerator(n, d);
  require(reduced->denominator() > 0 || reduced->denominator() == kLeast ||
          (reduced->denominator() == 0 && d == 0 && reduced->numerator() == 0));
  check(reduced);
  check(qx::QXFractionNumber::initWithDouble(x));
  check(qx::make<qx::QXFractionNumber>(qx::detail::Passkey{}, qx::FractionPair{n, d}));
  return 0;
}
