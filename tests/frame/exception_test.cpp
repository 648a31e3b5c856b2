#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/exception.h>

#include "tests/frame/person.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

template <class E>
void expectNamed(const char* name) {
  try {
    throw E("a reason");
  } catch (const Exception& e) {
    EXPECT_STREQ(e.name(), name);
    EXPECT_EQ(e.reason(), "a reason");
    EXPECT_EQ(std::string(e.what()), std::string(name) + ": a reason");
    EXPECT_NE(dynamic_cast<const E*>(&e), nullptr);
  }
  EXPECT_THROW(throw E(""), std::exception);
  const E original("copied");
  const E copy = original;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(copy.reason(), "copied");
}

TEST(Exceptions, CarryTheirNames) {
  expectNamed<InvalidArgumentException>("NSInvalidArgumentException");
  expectNamed<InternalInconsistencyException>("NSInternalInconsistencyException");
  expectNamed<RangeException>("NSRangeException");
  expectNamed<GenericException>("NSGenericException");
  expectNamed<QualifierVariableSubstitutionException>("QXQualifierVariableSubstitutionException");
}

TEST(Exceptions, OfOtherNamesArePossible) {
  const Exception e("OwnException", "why");
  EXPECT_STREQ(e.what(), "OwnException: why");
}

TEST(NilObjects, RaiseWhenTheyAreUsed) {
  const Ref<frame_test::Person> nobody;
  EXPECT_THROW((void)nobody->adult(), InvalidArgumentException);
  EXPECT_THROW((void)*nobody, InvalidArgumentException);
  const In<frame_test::Person> in = nobody;
  EXPECT_THROW((void)in->adult(), InvalidArgumentException);
  EXPECT_THROW((void)*in, InvalidArgumentException);
  EXPECT_FALSE(static_cast<bool>(in));
  const std::string reason = reasonOf<InvalidArgumentException>([&] { (void)nobody->adult(); });
  EXPECT_EQ(reason.rfind("nil was used as an object in ", 0), 0U);
  EXPECT_NE(reason.find("Person"), std::string::npos) << reason;
}

}  // namespace
}  // namespace qx
