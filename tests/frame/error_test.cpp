#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/error.h>

#include "tests/frame/print_values.h"
#include "tests/frame/raises.h"

namespace qx {
namespace {

TEST(Errors, CarryDomainCodeAndUserInformation) {
  const auto info = MutableDictionary::dictionaryWithDictionary(
      dict({{NSLocalizedDescriptionKey, "It failed."}, {"k", 1}}));
  const auto e = Error::errorWithDomain(QXExtendedAttributesErrorDomain, -3, info);
  info->removeAllObjects();
  EXPECT_EQ(e->domain()->utf8(), "XAExtendedAttributesErrorDomain");
  EXPECT_EQ(e->code(), -3);
  EXPECT_EQ(e->userInfo()->objectForKey("k"), PropertyValue(1));
  EXPECT_EQ(e->localizedDescription(), "It failed.");
  EXPECT_EQ(e->description(),
            "Error Domain=XAExtendedAttributesErrorDomain Code=-3 \"It failed.\"");
  const PropertyValue v = e;
  EXPECT_EQ(v["domain"], PropertyValue("XAExtendedAttributesErrorDomain"));
  EXPECT_EQ(v["code"], PropertyValue(-3));
  EXPECT_EQ(v["localizedDescription"], PropertyValue("It failed."));
  EXPECT_EQ(v.valueForKeyPath("userInfo.k"), PropertyValue(1));
  EXPECT_TRUE(isSame(v.copy(), v));
}

TEST(Errors, DescribeThemselvesWithoutASentence) {
  const auto e = Error::errorWithDomain("D", 7, nullptr);
  EXPECT_EQ(e->userInfo()->count(), 0U);
  EXPECT_EQ(e->localizedDescription(), "The operation could not be completed (D error 7).");
  const auto odd = Error::errorWithDomain("D", 7, dict({{NSLocalizedDescriptionKey, 5}}));
  EXPECT_EQ(odd->localizedDescription(), "The operation could not be completed (D error 7).");
  EXPECT_EQ(
      reasonOf<InvalidArgumentException>([] { (void)Error::errorWithDomain(nullptr, 1, nullptr); }),
      "+[NSError errorWithDomain:code:userInfo:]: the domain is nil");
}

TEST(Errors, WordTheSystemsCodes) {
  const auto e = Error::posixError(ENOENT);
  EXPECT_EQ(e->domain()->utf8(), NSPOSIXErrorDomain);
  EXPECT_EQ(e->code(), ENOENT);
  // In the words of the process's language, whatever that is.
  char buffer[256] = "";
  EXPECT_EQ(e->localizedDescription(), strerror_r(ENOENT, buffer, sizeof buffer));
  EXPECT_NE(e->localizedDescription(), Error::posixError(EACCES)->localizedDescription());
  EXPECT_NE(Error::posixError(99999)->localizedDescription(), "");
}

TEST(Errors, NameTheirConstants) {
  EXPECT_STREQ(NSPOSIXErrorDomain, "NSPOSIXErrorDomain");
  EXPECT_STREQ(QXExtendedAttributesErrorDomain, "XAExtendedAttributesErrorDomain");
  EXPECT_STREQ(NSLocalizedDescriptionKey, "NSLocalizedDescription");
  EXPECT_STREQ(NSURLErrorKey, "NSURL");
  EXPECT_STREQ(QXUnderlyingErrorsKey, "XAUnderlyingErrors");
  EXPECT_STREQ(QXExtendedAttributeNameKey, "XAExtendedAttributeName");
}

TEST(Errors, FillAPlaceWhereThereIsOne) {
  Ref<Error> place;
  detail::fill(&place, Error::posixError(EACCES));
  EXPECT_EQ(place->code(), EACCES);
  detail::fill(nullptr, Error::posixError(EACCES));
}

}  // namespace
}  // namespace qx
