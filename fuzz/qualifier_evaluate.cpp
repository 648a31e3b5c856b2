// Arbitrary bytes as choices that build a qualifier tree and objects: the compiled forms, the
// explanation, copies and the plain evaluation must agree.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_explanation.h>

#include "tests/qualifiers/generator.h"

namespace {

// Each choice takes a byte; zeros once they are used up, which end every tree.
struct Bytes {
  const std::uint8_t* at;
  const std::uint8_t* end;
  std::size_t operator()(std::size_t n) { return at == end ? 0 : *at++ % n; }
};

void require(bool holds) {
  if (!holds) std::abort();
}

void checkObject(const qx::Ref<qx::QXQualifier>& q, const qx::PropertyValue& object) {
  const bool result = q->evaluateWithObject(object);
  require(qx::explain(q, object).result() == result);
  require(qx::QXNotQualifier::initWithQualifier(q)->evaluateWithObject(object) != result);
  require(qx::PropertyValue(q->copy()).as<qx::QXQualifier>()->evaluateWithObject(object) == result);
  if (object.isNil()) return;
  require(filteredArrayUsingQualifier(qx::array(object), q)->count() == (result ? 1 : 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  qx::generated::Generator g(Bytes{data, data + size});
  const qx::Ref<qx::QXQualifier> q = g.tree();
  require(q->description().size() <= 4096);
  checkObject(q, nullptr);
  checkObject(q, g.value());
  checkObject(q, g.dictionary());
  const auto native = qx::make<qx::generated::Native>();
  g.fill(*native);
  checkObject(q, native);
  qx::generated::Plain plain;
  g.fill(plain);
  require(qx::Matching<qx::generated::Plain>(q)(plain) ==
          q->evaluateWithObject(qx::generated::asDictionary(plain)));
  return 0;
}
