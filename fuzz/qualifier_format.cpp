// Arbitrary text as a qualifier format, with arbitrary arguments: a qualifier or
// InvalidArgumentException, never anything else; the explanation gives the same, and the
// compile-time check refuses nothing that the parser accepts.
//
// The first byte tells the number of arguments (up to 15), a byte for each its kind; the rest is
// the format.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

qx::PropertyValue argument(std::uint8_t kind) {
  switch (kind % 12) {
    case 0:
      return nullptr;
    case 1:
      return qx::null;
    case 2:
      return true;
    case 3:
      return std::numeric_limits<int>::min();
    case 4:
      return std::numeric_limits<std::int64_t>::max();
    case 5:
      return 1e300;
    case 6:
      return 0.1F;
    case 7:
      return "text";
    case 8:
      return std::string("\xFF\0'\"", 4);
    case 9:
      return qx::DecimalNumber::initWithString("1.50");
    case 10:
      return qx::MutableString::from("J*");
    default:
      return qx::array(1, "x");
  }
}

// What a parse gives: the tree, or why it raised.
struct Outcome {
  qx::Ref<qx::QXQualifier> tree;
  std::string reason;
  bool raised = false;
};

template <class Parse>
Outcome outcomeOf(Parse parse) {
  Outcome o;
  try {
    o.tree = parse();
  } catch (const qx::InvalidArgumentException& e) {
    o.raised = true;
    o.reason = e.reason();
  }
  return o;
}

// Formats of this size nest some thousands of levels at most.
bool same(const qx::PropertyValue& a, const qx::PropertyValue& b) {
  if (a.cls() != b.cls()) return false;
  if (a.isNil()) return true;
  if (const auto list = a["qualifiers"].as<qx::Array>()) {
    const auto other = b["qualifiers"].as<qx::Array>();
    return list->count() == other->count() &&
           std::equal(list->begin(), list->end(), other->begin(), same);
  }
  if (!a["qualifier"].isNil()) return same(a["qualifier"], b["qualifier"]);
  for (const char* key : {"key", "leftKey", "rightKey", "selector", "value"}) {
    if (!(a[key] == b[key])) return false;
  }
  return true;
}

void use(const qx::Ref<qx::QXQualifier>& q) {
  if (q == nullptr) return;
  const auto object = qx::dict({{"a", 1}, {"name", "Jim"}, {"", 3}});
  const bool result = q->evaluateWithObject(object);
  require(qx::explain(q, object).result() == result);
  require(filteredArrayUsingQualifier(qx::array(object), q)->count() == (result ? 1 : 0));
  require(q->description().size() <= 4096);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > 8192) return 0;
  const std::size_t count = std::min<std::size_t>(data[0] % 16, size - 1);
  std::vector<qx::PropertyValue> arguments;
  for (std::size_t i = 1; i <= count; ++i) arguments.push_back(argument(data[i]));
  const std::string_view format(reinterpret_cast<const char*>(data) + 1 + count, size - 1 - count);

  const Outcome parsed = outcomeOf([&] {
    return qx::QXQualifier::_qualifierWithQualifierFormat(format, arguments.data(), count);
  });
  const Outcome explained = outcomeOf(
      [&] { return qx::detail::explainFormat(format, arguments.data(), count).qualifier; });
  require(parsed.raised == explained.raised && parsed.reason == explained.reason);
  require(qx::String::fromStrictUtf8(parsed.reason) != nullptr);
  require(same(parsed.tree, explained.tree));

  namespace f = qx::detail::format;
  const std::vector<f::ArgumentKind> kinds(count + 1, f::ArgumentKind::any);
  if (f::firstFault(format, kinds.data(), count) != f::Fault::none) require(parsed.raised);
  use(parsed.tree);
  return 0;
}
