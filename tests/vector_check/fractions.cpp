// fraction, fraction_pair, fraction_getValue_size, fraction_objCType, gcd

#include <array>
#include <stdexcept>
#include <string>

#include "tests/vector_check/driver.h"
#include "tests/vector_check/exact_double.h"

namespace vector_check {

using namespace qx;

namespace {

// ["nd", n, d], ["int", n], ["float", x], ["double", x], or the pair as it stands: ["raw", n, d].
Ref<QXFractionNumber> made(const json& how) {
  const auto kind = how.at(0).get<std::string>();
  const auto integer = [&](std::size_t i) { return how.at(i).get<std::int64_t>(); };
  if (kind == "nd") {
    return QXFractionNumber::qxFractionNumberWithNumerator(integer(1), integer(2));
  }
  if (kind == "int") {
    return QXFractionNumber::qxFractionNumberWithInt(how.at(1).get<std::int32_t>());
  }
  if (kind == "float") {
    return QXFractionNumber::qxFractionNumberWithFloat(static_cast<float>(doubleOf(how.at(1))));
  }
  if (kind == "double") return QXFractionNumber::qxFractionNumberWithDouble(doubleOf(how.at(1)));
  if (kind == "raw") {
    return make<QXFractionNumber>(qx::detail::Passkey{}, FractionPair{integer(1), integer(2)});
  }
  throw std::runtime_error("unknown way to make a fraction");
}

std::string hexOf(const unsigned char* bytes, std::size_t count) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

json numberJson(const PropertyValue& number) {
  const NumberKind kind = number.as<Number>()->kind();
  if (kind == NumberKind::signedInteger)
    return {{"kind", "integer"}, {"value", number.integerValue()}};
  return {{"kind", kind == NumberKind::single ? "float" : "double"},
          {"value", doubleJson(number.doubleValue())}};
}

json pairJson(const QXFractionNumber& f) { return json::array({f.numerator(), f.denominator()}); }

Outcome fraction(const json& args, const json& expect) {
  const auto f = made(args.at("make"));
  std::array<unsigned char, 16> bytes{};
  f->getValue(bytes.data());
  json actual = {{"numerator", f->numerator()},
                 {"denominator", f->denominator()},
                 {"truncate", f->truncate()},
                 {"short", f->shortValue()},
                 {"int", f->intValue()},
                 {"long", f->longValue()},
                 {"float", doubleJson(static_cast<double>(f->floatValue()))},
                 {"double", doubleJson(f->doubleValue())},
                 {"isInteger", f->isInteger()},
                 {"getNSNumber", numberJson(f->getNSNumber())},
                 {"description", f->description()},
                 {"getValue", hexOf(bytes.data(), bytes.size())}};
  f->normalize();
  actual["normalized"] = pairJson(*f);
  return compare(withExactDoubles(expect), actual);
}

Outcome fractionPair(const json& args, const json& expect) {
  const auto f = made(args.at("make"));
  return compare(expect, {{"numerator", f->numerator()},
                          {"denominator", f->denominator()},
                          {"description", f->description()}});
}

// More than was asked for must not be written: the buffer's end must stay as it was.
Outcome valueOfSize(const json& args, const json& expect) {
  const auto size = args.at("size").get<std::size_t>();
  std::array<unsigned char, 32> bytes;
  bytes.fill(0xEE);
  made(args.at("make"))->getValue(bytes.data(), size);
  const std::size_t copied = std::min(size, std::size_t{16});
  for (std::size_t i = copied; i < bytes.size(); ++i) {
    if (bytes[i] != 0xEE) return {false, "wrote beyond the size"};
  }
  return compare(expect, hexOf(bytes.data(), copied));
}

Outcome greatestDivisor(const json& args, const json& expect) {
  return compare(expect, QXFractionNumber::gcd(args.at("a").get<std::int64_t>(),
                                               args.at("b").get<std::int64_t>()));
}

Outcome encoding(const json& args, const json& expect) {
  const auto f =
      args.contains("make") ? made(args.at("make")) : QXFractionNumber::initWithNumerator(1, 2);
  return compare(expect, f->objCType());
}

}  // namespace

void addFractionOperations(Operations& operations) {
  operations["fraction"] = fraction;
  operations["fraction_pair"] = fractionPair;
  operations["fraction_getValue_size"] = valueOfSize;
  operations["fraction_objCType"] = encoding;
  operations["gcd"] = greatestDivisor;
}

}  // namespace vector_check
